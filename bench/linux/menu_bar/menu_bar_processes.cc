#include "bench/linux/menu_bar/menu_bar_processes.h"

#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace {

std::string procPath(pid_t pid, const char* file) { return "/proc/" + std::to_string(pid) + "/" + file; }

// The number behind the name at the beginning of a line; 0 where there is none.
long field(const std::string& path, const std::string& name) {
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(name + ":")) return std::strtol(line.c_str() + name.size() + 1, nullptr, 10);
  }
  return 0;
}

std::vector<std::filesystem::path> threadsOf(pid_t pid) {
  std::error_code error;
  std::vector<std::filesystem::path> threads;
  for (const auto& entry : std::filesystem::directory_iterator(procPath(pid, "task"), error)) {
    threads.push_back(entry.path());
  }
  return threads;
}

void addTimesBelow(pid_t pid, std::map<std::string, double>& times) {
  for (const std::filesystem::path& thread : threadsOf(pid)) {
    std::ifstream file(thread / "children");
    for (pid_t child = 0; file >> child;) {
      std::string name;
      std::ifstream comm(procPath(child, "comm"));
      std::getline(comm, name);
      times[name] += processorTime(child);
      addTimesBelow(child, times);
    }
  }
}

}  // namespace

double milliseconds(Clock::duration duration) { return std::chrono::duration<double, std::milli>(duration).count(); }

double median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + std::ssize(values) / 2, values.end());
  return values[values.size() / 2];
}

double processorTime(pid_t pid) {
  clockid_t clock{};
  timespec time{};
  if (clock_getcpuclockid(pid, &clock) != 0 || clock_gettime(clock, &time) != 0) return 0;
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

std::map<std::string, double> processorTimes() {
  std::map<std::string, double> times;
  addTimesBelow(getpid(), times);
  return times;
}

Waits waits(pid_t pid) {
  Waits waits;
  for (const std::filesystem::path& thread : threadsOf(pid)) {
    const long count = field(thread / "status", "voluntary_ctxt_switches");
    if (thread.filename() == std::to_string(pid)) waits.main = count;
    waits.all += count;
    ++waits.threads;
  }
  return waits;
}

Memory memory(pid_t pid) {
  constexpr double kKibibytes = 1024;
  return {static_cast<double>(field(procPath(pid, "status"), "VmRSS")) / kKibibytes,
          static_cast<double>(field(procPath(pid, "smaps_rollup"), "Pss")) / kKibibytes};
}
