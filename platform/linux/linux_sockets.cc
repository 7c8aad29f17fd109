#include <sys/socket.h>

#include "platform/sockets.h"

int HLOpenLocalSocket() { return ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0); }

ssize_t HLSendWithoutSignal(int socket, std::string_view bytes) {
  return ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}
