// What a client reads from whatever listens on the socket.
#include <cstdlib>

#include "daemon/local_socket.h"
#include "platform/text.h"
#include "tests/fuzz/socket_pair.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const SentBytes sent(data, size);
  std::string text;
  if (!HLReadSocketResponse(sent.reader(), text)) return 0;
  if (!HLIsEncodable(text) || text.size() > 16384 + 1024) std::abort();
  HLDismissResult result;
  (void)HLParseResultString(HLTrim(text), result);
  return 0;
}
