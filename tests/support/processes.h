// Child processes: programs, and functions that need a process of their own.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

struct ProgramRun {
  int exitCode = 0;  // 128 + the signal's number if a signal ended it
  std::string out;
  std::string err;
};

// A started program. Its output goes to temporary files. Destruction waits for its end.
class RunningProgram {
 public:
  // Adds these variables to this process's environment; a nullptr removes one. Throws if the program cannot be started.
  RunningProgram(const std::vector<std::string>& command, const std::map<std::string, const char*>& environment);
  RunningProgram(RunningProgram&& other) noexcept;
  RunningProgram(const RunningProgram&) = delete;
  RunningProgram& operator=(const RunningProgram&) = delete;
  ~RunningProgram();

  [[nodiscard]] int pid() const { return pid_; }

  // Blocks until it has ended. Called once.
  [[nodiscard]] ProgramRun wait();

 private:
  int pid_ = -1;
  std::string out_;
  std::string err_;
};

[[nodiscard]] ProgramRun RunProgram(const std::vector<std::string>& command,
                                    const std::map<std::string, const char*>& environment);

// Returns a command that runs `command` under a limit at which Linux refuses every new thread, since its stack would be
// larger than the memory.
[[nodiscard]] std::vector<std::string> WithoutThreads(std::vector<std::string> command);

// Runs the function in a child process and returns its result, for code that decides something once per process. Throws
// if the child fails.
[[nodiscard]] std::string InChildProcess(const std::function<std::string()>& function);

// The same for code that needs file permissions to apply: if this process is root, the child becomes the user nobody.
[[nodiscard]] std::string InUnprivilegedChildProcess(const std::function<std::string()>& function);
