// Put before a program's libraries: counts the messages that the program sends on sockets, and holds one of them until
// the test lets it go on.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>

#include "tests/platform/linux/desktop/message_count.h"

namespace {

MessageCount* sharedCount() {
  const char* path = std::getenv(kMessageCountVariable);
  const int file = path == nullptr ? -1 : open(path, O_RDWR | O_CLOEXEC);
  if (file < 0) return nullptr;
  void* memory = mmap(nullptr, sizeof(MessageCount), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  close(file);
  return memory == MAP_FAILED ? nullptr : static_cast<MessageCount*>(memory);
}

void count() {
  static MessageCount* const messages = sharedCount();
  if (messages == nullptr || ++messages->sent != messages->holdAt) return;
  messages->holds = true;
  constexpr timespec kMoment = {0, 200'000};
  while (!messages->mayGoOn) nanosleep(&kMoment, nullptr);
}

}  // namespace

extern "C" ssize_t sendmsg(int socket, const msghdr* message, int flags) {
  static const auto next = reinterpret_cast<decltype(&sendmsg)>(dlsym(RTLD_NEXT, "sendmsg"));
  count();
  return next(socket, message, flags);
}
