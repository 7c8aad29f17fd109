#include "platform/linux/session/detached_program.h"

#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

#include "platform/file_mode_mask.h"
#include "platform/linux/files/files.h"

namespace {

// In the forked process, where only what needs no lock may be called.
[[noreturn]] void becomeProgram(const char* program, char* const* words, int report) {
  setsid();
  if (fork() != 0) _exit(0);
  const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
  for (int standard = 0; standard <= 2; ++standard) dup2(nowhere, standard);
  // The report ends by itself when the program begins.
  close_range(3, ~0U, CLOSE_RANGE_CLOEXEC);
  HLRestoreFileModeMask();
  signal(SIGPIPE, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  execv(program, words);
  (void)!write(report, "!", 1);
  _exit(127);
}

}  // namespace

bool HLStartDetached(const std::string& program, const std::vector<std::string>& words) {
  std::vector<char*> pointers;
  for (const std::string& word : words) pointers.push_back(const_cast<char*>(word.c_str()));
  pointers.push_back(nullptr);
  std::array<int, 2> pipe{};
  if (pipe2(pipe.data(), O_CLOEXEC) != 0) return false;
  const HLDescriptor reading(pipe[0]);
  const pid_t child = fork();
  if (child == 0) becomeProgram(program.c_str(), pointers.data(), pipe[1]);
  close(pipe[1]);
  if (child < 0) return false;
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  char failed = 0;
  ssize_t count = 0;
  while ((count = read(reading.number(), &failed, 1)) < 0 && errno == EINTR) {
  }
  return count == 0 && status == 0;
}
