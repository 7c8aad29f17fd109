#include "tests/platform/linux/support/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace {

constexpr std::chrono::milliseconds kGrace = std::chrono::seconds(3);
constexpr int kLookInterval = 5;  // milliseconds

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<pid_t> children() {
  std::ifstream file("/proc/self/task/" + std::to_string(getpid()) + "/children");
  return {std::istream_iterator<pid_t>(file), std::istream_iterator<pid_t>()};
}

}  // namespace

bool Eventually(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    poll(nullptr, 0, kLookInterval);
  }
  return true;
}

ChildProcess::ChildProcess(const std::vector<std::string>& command, const Environment& environment,
                           std::string outputFile)
    : outputFile_(std::move(outputFile)) {
  std::vector<std::string> words = command;
  std::vector<std::string> entries;
  for (const auto& [name, value] : environment) entries.push_back(name + "=" + value);
  const std::vector<char*> arguments = pointersTo(words);
  const std::vector<char*> variables = pointersTo(entries);
  const pid_t parent = getpid();
  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("no new process");
  if (pid_ > 0) return;
  // Only calls that are allowed between fork and exec from here on.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(127);
  const int input = open("/dev/null", O_RDONLY);
  const int output = open(outputFile_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  dup2(input, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(output, STDERR_FILENO);
  execvpe(arguments.front(), arguments.data(), variables.data());
  _exit(127);
}

ChildProcess::~ChildProcess() {
  if (exitCode_) return;
  signal(SIGCONT);
  signal(SIGTERM);
  if (wait(kGrace)) return;
  signal(SIGKILL);
  (void)wait(kGrace);
}

std::string ChildProcess::output() const {
  std::ifstream file(outputFile_, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::optional<int> ChildProcess::wait(std::chrono::milliseconds limit) {
  (void)Eventually(
      [this] {
        int status = 0;
        if (exitCode_) return true;
        if (waitpid(pid_, &status, WNOHANG) != pid_) return false;
        exitCode_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        return true;
      },
      limit);
  return exitCode_;
}

void ChildProcess::signal(int number) const {
  if (!exitCode_) kill(pid_, number);
}

OrphanReaper::OrphanReaper() { prctl(PR_SET_CHILD_SUBREAPER, 1); }

OrphanReaper::~OrphanReaper() {
  (void)Eventually(
      [] {
        for (pid_t child : children()) kill(child, SIGKILL);
        while (waitpid(-1, nullptr, WNOHANG) > 0) {
        }
        return children().empty();
      },
      kGrace);
}
