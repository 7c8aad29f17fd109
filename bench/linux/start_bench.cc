// What a command costs before it does anything: processor time of a self-check, beside the smallest program that
// connects to the same bus.
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "tests/platform/linux/support/desktop_session.h"

namespace {

constexpr int kRuns = 301;  // of each

double milliseconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

// User and system time of one run, in milliseconds; nothing when it did not end by itself.
std::optional<double> cost(std::string program, std::string argument) {
  const std::array<char*, 3> arguments = {program.data(), argument.empty() ? nullptr : argument.data(), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t pid = -1;
  const int error = posix_spawn(&pid, program.c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  rusage usage{};
  if (error != 0 || ::wait4(pid, &status, 0, &usage) != pid || !WIFEXITED(status)) return std::nullopt;
  return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

double median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + std::ssize(values) / 2, values.end());
  return values[values.size() / 2];
}

bool measure(const char* title, const SessionSetup& setup, const char* aim) {
  DesktopSession session(setup);
  const SessionEnvironment environment(session.environment());
  std::vector<double> floors;
  std::vector<double> commands;
  std::vector<double> ratios;
  for (int i = 0; i < kRuns; ++i) {  // in turns, so that a busy moment hits both alike
    const std::optional<double> floor = cost(HL_SMALLEST_CLIENT, "");
    const std::optional<double> command = cost(HL_HUSHLET, "--self-check");
    if (!floor || !command) return false;
    floors.push_back(*floor);
    commands.push_back(*command);
    ratios.push_back(*command / *floor);
  }
  const auto row = [](const char* what, const std::vector<double>& values) {
    std::printf("  %-50s%14.2f%12.2f\n", what, median(values), *std::min_element(values.begin(), values.end()));
  };
  std::printf("%s\n", title);
  row("smallest program that connects to the bus", floors);
  row("hushlet --self-check", commands);
  std::printf("  %-50s%14.2f   aim: %s\n", "the latter / the former", median(ratios), aim);
  std::fflush(stdout);
  return true;
}

}  // namespace

int main() {
  std::printf("\n%-52s%14s%12s\n", "processor time of a command, ms", "median", "fastest");
  const bool both = measure("with a session bus alone", WithoutAccessibility(), "at most 1.5") &&
                    measure("with accessibility, which is asked too", SessionSetup(), "none");
  return both ? EXIT_SUCCESS : EXIT_FAILURE;
}
