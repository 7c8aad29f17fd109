// What sockets do differently from one host to the next; the rest of them is POSIX and called directly.
#pragma once

#include <sys/types.h>

#include <string_view>

// Creates a Unix-domain stream socket that an exec closes. Returns a descriptor, or -1. The caller closes it.
[[nodiscard]] int HLOpenLocalSocket();

// send() that reports a peer that is gone as EPIPE instead of raising SIGPIPE. May block.
[[nodiscard]] ssize_t HLSendWithoutSignal(int socket, std::string_view bytes);
