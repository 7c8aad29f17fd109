// What the daemon reads from whoever connects.
#include <cstdlib>

#include "daemon/local_socket.h"
#include "platform/text.h"
#include "tests/fuzz/socket_pair.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const SentBytes sent(data, size);
  const std::string command = HLReadClientLine(sent.reader());
  if (command.size() > 1025 || !HLIsEncodable(command) || HLTrim(command) != command) std::abort();
  return 0;
}
