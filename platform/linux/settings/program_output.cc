#include "platform/linux/settings/program_output.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

#include "platform/linux/files/files.h"

namespace {

using Clock = std::chrono::steady_clock;

// Returns the process, whose output goes to the descriptor, or -1.
pid_t spawn(const std::vector<std::string>& words, int output) {
  std::vector<char*> pointers;
  for (const std::string& word : words) pointers.push_back(const_cast<char*>(word.c_str()));
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = -1;
  const int error = posix_spawnp(&child, pointers[0], &files, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&files);
  return error == 0 ? child : -1;
}

// Whether the process has ended by the deadline, with code 0. Kills it if it has not ended.
bool endsWell(pid_t child, Clock::time_point deadline) {
  int status = 0;
  pid_t ended = 0;
  while ((ended = waitpid(child, &status, WNOHANG)) == 0 && Clock::now() < deadline) poll(nullptr, 0, 1);
  if (ended == 0) {
    kill(child, SIGKILL);  // not reaped yet, so the number is still its own
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
  }
  return ended == child && status == 0;
}

}  // namespace

std::optional<std::string> HLProgramOutput(const std::vector<std::string>& words, std::chrono::milliseconds timeout) {
  const Clock::time_point deadline = Clock::now() + timeout;
  std::array<int, 2> pipe{};
  if (pipe2(pipe.data(), O_CLOEXEC) != 0) return std::nullopt;
  const HLDescriptor reading(pipe[0]);
  const pid_t child = spawn(words, pipe[1]);
  close(pipe[1]);
  if (child < 0) return std::nullopt;
  std::optional<std::string> text = HLReadUntilEnd(reading.number(), deadline);
  if (!endsWell(child, text ? deadline : Clock::now())) return std::nullopt;
  return text;
}

std::optional<std::string> HLReadUntilEnd(int descriptor, Clock::time_point deadline) {
  std::string text;
  std::array<char, 4096> part{};
  while (true) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    if (left.count() <= 0) return std::nullopt;
    pollfd waiting{descriptor, POLLIN, 0};
    const int ready = poll(&waiting, 1, static_cast<int>(left.count()));
    if (ready < 0 && errno != EINTR) return std::nullopt;
    if (ready <= 0) continue;
    const ssize_t count = read(descriptor, part.data(), part.size());
    if (count < 0 && errno != EINTR) return std::nullopt;
    if (count == 0) return text;
    if (count > 0) text.append(part.data(), static_cast<std::size_t>(count));
  }
}

std::optional<std::string> HLReadDesktopSetting(const std::string& schema, const std::string& key) {
  std::optional<std::string> text = HLProgramOutput({"gsettings", "get", schema, key});
  if (text && text->ends_with('\n')) text->pop_back();
  return text;
}
