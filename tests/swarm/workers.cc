#include "tests/swarm/workers.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <iostream>
#include <map>
#include <new>
#include <streambuf>

namespace {

constexpr unsigned kLongestRun = 120;  // real seconds
constexpr int kFailed = 3;

struct Shared {
  std::uint64_t seed = 0;  // under way
  Statistics statistics;
};

class Silence : public std::streambuf {
 protected:
  int overflow(int character) override { return character; }
};

double realTime() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

template <class T>
T* share() {
  void* memory = ::mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  return new (memory) T();
}

// What a scene names and does not have is told on standard error, and self-checks print.
void silenceStreams() {
  static Silence silence;
  std::cout.rdbuf(&silence);
  std::cerr.rdbuf(&silence);
}

std::string printable(const std::string& text) {
  std::string made;
  for (const char character : text.substr(0, 600))
    made += static_cast<unsigned char>(character) < 0x20 ? '?' : character;
  return made;
}

[[noreturn]] void runBlock(Shared& shared, std::uint64_t first, std::uint64_t end, const std::string& home) {
  silenceStreams();
  for (std::uint64_t seed = first; seed < end; ++seed) {
    ::alarm(kLongestRun);
    shared.seed = seed;
    PlanShape shape;
    const Plan plan = MakePlan(seed, shape);
    const RunReport report = RunPlan(plan, home);
    shared.statistics.add(plan, shape, report);
    std::string last;
    for (const Violation& violation : report.violations) {
      if (violation.check == last) continue;
      last = violation.check;
      std::printf("seed %lu (%s): %s: %s\n", static_cast<unsigned long>(seed), NameOfMode(plan.mode).data(),
                  violation.check.c_str(), printable(violation.detail).c_str());
    }
    std::fflush(stdout);
  }
  std::_Exit(0);
}

std::string endOf(int status) {
  if (!WIFSIGNALED(status)) return "ended with code " + std::to_string(WEXITSTATUS(status));
  return WTERMSIG(status) == SIGALRM ? "does not end" : "ended by signal " + std::to_string(WTERMSIG(status));
}

struct Worker {
  Shared* shared = nullptr;
  std::uint64_t end = 0;
  std::string home;
};

}  // namespace

Statistics RunSeeds(const Workload& workload, const std::string& folder) {
  const double start = realTime();
  std::map<pid_t, Worker> workers;
  std::vector<Worker> idle;
  for (int i = 0; i < workload.processes; ++i) {
    const std::string home = folder + "/" + std::to_string(i);
    ::mkdir(home.c_str(), 0700);
    idle.push_back({share<Shared>(), 0, home});
  }
  std::vector<Shared*> all;
  for (const Worker& worker : idle) all.push_back(worker.shared);

  std::int64_t crashes = 0;
  std::uint64_t next = workload.first;
  const std::uint64_t last =
      workload.count > UINT64_MAX - workload.first ? UINT64_MAX : workload.first + workload.count;
  const auto launch = [&workers](Worker worker, std::uint64_t first, std::uint64_t end) {
    worker.end = end;
    std::fflush(stdout);
    const pid_t pid = ::fork();
    if (pid == 0) runBlock(*worker.shared, first, end, worker.home);
    workers[pid] = worker;
  };
  for (;;) {
    while (!idle.empty() && next < last && realTime() - start < workload.seconds) {
      const Worker worker = idle.back();
      idle.pop_back();
      const std::uint64_t end = std::min(last, (next / kBlock + 1) * kBlock);
      launch(worker, next, end);
      next = end;
    }
    if (workers.empty()) break;
    int status = 0;
    const pid_t pid = ::wait(&status);
    const Worker worker = workers[pid];
    workers.erase(pid);
    if (status == 0) {
      idle.push_back(worker);
      continue;
    }
    ++crashes;
    const std::uint64_t seed = worker.shared->seed;
    std::printf("seed %lu %s\n", static_cast<unsigned long>(seed), endOf(status).c_str());
    if (seed + 1 < worker.end) {
      launch(worker, seed + 1, worker.end);
    } else {
      idle.push_back(worker);
    }
  }
  Statistics sum;
  for (const Shared* shared : all) sum.add(shared->statistics);
  sum.failures += crashes;
  return sum;
}

std::vector<Violation> RunApart(const Plan& plan, const std::string& folder) {
  struct Line {
    std::array<char, 2000> text{};
  };
  auto* line = share<Line>();
  const pid_t pid = ::fork();
  if (pid == 0) {
    silenceStreams();
    ::alarm(kLongestRun);
    const RunReport report = RunPlan(plan, folder);
    if (report.violations.empty()) std::_Exit(0);
    const Violation& first = report.violations.front();
    std::snprintf(line->text.data(), line->text.size(), "%s\n%s", first.check.c_str(), first.detail.c_str());
    std::_Exit(kFailed);
  }
  int status = 0;
  ::waitpid(pid, &status, 0);
  const std::string text = line->text.data();
  ::munmap(line, sizeof(Line));
  if (status == 0) return {};
  if (text.empty()) return {{endOf(status), ""}};
  const std::size_t end = text.find('\n');
  return {{text.substr(0, end), text.substr(end + 1)}};
}
