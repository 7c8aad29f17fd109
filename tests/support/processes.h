// Other processes: programs that are run, and functions that need a process of their own.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

struct ProgramRun {
  int exitCode = 0;  // 128 and the signal's number where one ended it
  std::string out;
  std::string err;
};

// A program that has been started; its output goes to files.
class RunningProgram {
 public:
  // In this process's environment with these variables set; one without a value is taken out.
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

// Runs the function in a child process and returns what it returned there. For what is decided once per process. Throws
// when the child does not end well.
[[nodiscard]] std::string InChildProcess(const std::function<std::string()>& function);

// The same, in a child process that permissions bind: a test of root's becomes the user nobody there.
[[nodiscard]] std::string InUnprivilegedChildProcess(const std::function<std::string()>& function);
