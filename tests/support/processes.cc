#include "tests/support/processes.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "tests/support/sanitizers.h"
#include "tests/support/temporary_directory.h"

extern char** environ;

namespace {

std::string emptyFile() {
  std::string path = (std::filesystem::temp_directory_path() / "hushlet-output-XXXXXX").string();
  const int file = mkstemp(path.data());
  if (file < 0) throw std::runtime_error("no temporary file");
  close(file);
  return path;
}

std::vector<std::string> environmentWith(const std::map<std::string, const char*>& changes) {
  std::vector<std::string> entries;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view text(*entry);
    if (changes.count(std::string(text.substr(0, text.find('=')))) == 0) entries.emplace_back(text);
  }
  for (const auto& [name, value] : changes) {
    if (value != nullptr) entries.push_back(name + "=" + value);
  }
  return entries;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

int exitCodeOf(int pid) {
  int status = 0;
  if (waitpid(pid, &status, 0) != pid) throw std::runtime_error("the process cannot be waited for");
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

RunningProgram::RunningProgram(const std::vector<std::string>& command,
                               const std::map<std::string, const char*>& environment)
    : out_(emptyFile()), err_(emptyFile()) {
  std::vector<std::string> arguments = command;
  std::vector<std::string> variables = environmentWith(environment);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", 0, 0);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, out_.c_str(), O_WRONLY | O_APPEND, 0);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, err_.c_str(), O_WRONLY | O_APPEND, 0);
  const int failure = posix_spawn(&pid_, command.at(0).c_str(), &files, nullptr, pointersTo(arguments).data(),
                                  pointersTo(variables).data());
  posix_spawn_file_actions_destroy(&files);
  if (failure != 0) throw std::runtime_error("cannot start " + command.at(0));
}

RunningProgram::RunningProgram(RunningProgram&& other) noexcept
    : pid_(std::exchange(other.pid_, -1)), out_(std::exchange(other.out_, {})), err_(std::exchange(other.err_, {})) {}

RunningProgram::~RunningProgram() {
  if (pid_ > 0) waitpid(pid_, nullptr, 0);
  for (const std::string& file : {out_, err_}) {
    if (!file.empty()) unlink(file.c_str());
  }
}

ProgramRun RunningProgram::wait() {
  const int code = exitCodeOf(std::exchange(pid_, -1));
  return {code, FileContent(out_), FileContent(err_)};
}

ProgramRun RunProgram(const std::vector<std::string>& command, const std::map<std::string, const char*>& environment) {
  return RunningProgram(command, environment).wait();
}

std::vector<std::string> WithoutThreads(std::vector<std::string> command) {
  // The thread sanitizer needs the addresses that a larger limit sets aside.
  const std::string kilobytes = kIsThreadSanitized ? "268435456" : "1073741824";
  command.insert(command.begin(), {"/bin/sh", "-c", "ulimit -S -s " + kilobytes + " && exec \"$@\"", "sh"});
  return command;
}

std::string InChildProcess(const std::function<std::string()>& function) {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe");
  std::fflush(nullptr);  // or the child would print it again
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    const std::string answer = function();
    const bool written = write(ends[1], answer.data(), answer.size()) == static_cast<ssize_t>(answer.size());
    std::exit(written ? 0 : 1);
  }
  close(ends[1]);
  std::string answer;
  char buffer[4096];
  for (ssize_t count = 0; (count = read(ends[0], buffer, sizeof buffer)) > 0;) {
    answer.append(buffer, static_cast<std::size_t>(count));
  }
  close(ends[0]);
  if (child < 0 || exitCodeOf(child) != 0) throw std::runtime_error("the child process failed");
  return answer;
}

std::string InUnprivilegedChildProcess(const std::function<std::string()>& function) {
  return InChildProcess([&function]() -> std::string {
    constexpr uid_t kNobody = 65534;
    if (geteuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0)) return "cannot become nobody";
    return function();
  });
}
