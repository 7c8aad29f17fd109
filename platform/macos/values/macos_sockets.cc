#include <fcntl.h>
#include <sys/socket.h>

#include "platform/sockets.h"

namespace {

// macOS has an option of the socket where other systems have a flag of send(). Once the peer is gone it can no longer
// be set, so a socket of ours gets it at its creation; an accepted one gets it here at the latest.
void preventSignal(int socket) {
  const int on = 1;
  ::setsockopt(socket, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
}

}  // namespace

int HLOpenLocalSocket() {
  const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
  if (descriptor < 0) return -1;
  ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  preventSignal(descriptor);
  return descriptor;
}

ssize_t HLSendWithoutSignal(int socket, std::string_view bytes) {
  preventSignal(socket);
  return ::send(socket, bytes.data(), bytes.size(), 0);
}
