#include "daemon/local_socket.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>

#include "base/log.h"
#include "base/paths.h"
#include "platform/sockets.h"
#include "platform/text.h"

namespace {

constexpr std::size_t kAddressPathBytes = 103;  // fits every system's sockaddr_un with its terminator
constexpr std::size_t kRequestBytes = 1025;
constexpr std::size_t kReadBytes = 1024;
constexpr std::size_t kResponseBytes = 16384;

sockaddr_un addressOf(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(static_cast<char*>(address.sun_path), kAddressPathBytes);
  return address;
}

std::string decoded(std::string bytes) { return HLIsEncodable(bytes) ? std::move(bytes) : std::string(); }

}  // namespace

HLSocket::~HLSocket() {
  if (isOpen()) ::close(descriptor_);
}

bool HLBindLocalSocket(int descriptor, const std::string& path) {
  const sockaddr_un address = addressOf(path);
  return ::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

bool HLConnectLocalSocket(int descriptor, const std::string& path) {
  const sockaddr_un address = addressOf(path);
  return ::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

bool HLRunLocalSocketCommand(std::string_view command, HLDismissResult& result) {
  const std::optional<std::string> path = HLLocalSocketPath();
  if (!path) return false;
  const HLSocket socket(HLOpenLocalSocket());
  if (!socket.isOpen() || !HLConnectLocalSocket(socket.descriptor(), *path)) return false;
  if (!HLWriteSocketRequest(socket.descriptor(), command)) return false;
  std::string response;
  if (!HLReadSocketResponse(socket.descriptor(), response)) return false;
  const std::string_view reply = HLTrim(response);
  HLAppendDiagnostics("socket client command=%@ response=%@", command, reply);
  return HLParseResultString(reply, result);
}

bool HLWriteSocketRequest(int descriptor, std::string_view command) {
  const std::string request = std::string(command) + '\n';
  for (std::size_t sent = 0; sent < request.size();) {
    const ssize_t count = HLSendWithoutSignal(descriptor, std::string_view(request).substr(sent));
    if (count < 1) return false;
    sent += static_cast<std::size_t>(count);
  }
  ::shutdown(descriptor, SHUT_WR);
  return true;
}

bool HLReadSocketResponse(int descriptor, std::string& text) {
  std::string held;
  std::array<char, kReadBytes> buffer{};
  while (held.size() <= kResponseBytes) {
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    if (count == 0) break;
    // A daemon that left request bytes unread resets the connection after its reply: the reply counts.
    if (count < 0 && errno == ECONNRESET && !held.empty()) break;
    if (count < 0) return false;
    held.append(buffer.data(), static_cast<std::size_t>(count));
  }
  text = decoded(std::move(held));
  return true;
}

std::string HLReadClientLine(int descriptor) {
  std::string line;
  char byte = '\0';
  while (line.size() < kRequestBytes && ::read(descriptor, &byte, 1) == 1 && byte != '\n') line += byte;
  return std::string(HLTrim(decoded(std::move(line))));
}

void HLWriteClientLine(int descriptor, std::string_view text) {
  (void)HLSendWithoutSignal(descriptor, std::string(text) + '\n');
}
