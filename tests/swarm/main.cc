// Random desktops, faults and input, each from a seed; docs/swarm.md.
//
//   swarm [--first N] [--count N] [--seconds S] [--jobs N]   runs seeds and prints what they were made of
//   swarm --seed N [--to FOLDER]                             runs one, and writes its scene
//   swarm --shrink N [--to FOLDER]                           makes a failing one small, and writes its scene
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <string>
#include <thread>

#include "tests/swarm/shrink.h"
#include "tests/swarm/workers.h"

namespace {

// What no scene can express, in words.
void print(const Plan& plan) {
  std::cout << NameOfMode(plan.mode) << ", " << (plan.isProduct ? "product" : "personal") << " flavor\n";
  for (const CallFault& fault : plan.callFaults) std::cout << "call " << fault.call << " gives " << fault.code << '\n';
  for (const ClockJump& jump : plan.clockJumps) {
    std::cout << "reading " << jump.reading << " of the clock and later ones are off by " << jump.seconds << " s\n";
  }
  if (plan.failingAllocation > 0) std::cout << "allocation " << plan.failingAllocation << " of the batches fails\n";
  for (const ThreadRefusal& refusal : plan.threadRefusals) {
    std::cout << "threads are refused from start " << refusal.start << " on, " << refusal.count << " times\n";
  }
  for (const ShortAnswer& answer : plan.shortAnswers) {
    std::cout << "reading " << answer.reading << " ends behind " << answer.attributes << " attributes\n";
  }
  for (const LogFault& fault : plan.logFaults) {
    std::cout << "from log record " << fault.record << " on, " << fault.count << " have room for " << fault.room
              << " bytes\n";
  }
  for (const Caller& caller : plan.callers) {
    std::cout << "caller of manner " << static_cast<int>(caller.manner) << ", " << caller.request.size() << " bytes\n";
  }
  for (const std::size_t reply : plan.daemonReplies) std::cout << "a daemon beside gives reply " << reply << '\n';
}

int finish(const Plan& plan, const std::vector<Violation>& violations, const std::string& file) {
  std::ofstream(file, std::ios::binary) << plan.scene << '\n';
  print(plan);
  std::cout << "scene " << file << '\n';
  for (const Violation& violation : violations) std::cout << violation.check << ": " << violation.detail << '\n';
  return violations.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  const std::set<std::string> known = {"--first", "--count", "--seconds", "--jobs", "--seed", "--shrink", "--to"};
  std::map<std::string, std::string> options;
  for (int i = 1; i < argc; i += 2) {
    if (!known.contains(argv[i]) || i + 1 == argc) {
      std::cerr << "swarm: '" << argv[i] << "' is no option, or has no value\n";
      return EXIT_FAILURE;
    }
    options[argv[i]] = argv[i + 1];
  }
  const auto number = [&options](const char* name, double otherwise) {
    const auto found = options.find(name);
    return found == options.end() ? otherwise : std::strtod(found->second.c_str(), nullptr);
  };

  std::string folder =
      std::filesystem::is_directory("/dev/shm") ? "/dev/shm/hushlet-swarm-XXXXXX" : "/tmp/hushlet-swarm-XXXXXX";
  if (::mkdtemp(folder.data()) == nullptr) return EXIT_FAILURE;
  int code = EXIT_SUCCESS;
  if (options.contains("--seed") || options.contains("--shrink")) {
    const bool shrinks = options.contains("--shrink");
    const std::string seed = options[shrinks ? "--shrink" : "--seed"];
    PlanShape shape;
    Plan plan = MakePlan(std::strtoull(seed.c_str(), nullptr, 10), shape);
    if (shrinks) plan = Shrunk(plan, folder);
    const std::string to = options.contains("--to") ? options["--to"] : ".";
    code = finish(plan, RunApart(plan, folder), to + "/swarm-" + seed + ".json");
  } else {
    Workload workload;
    workload.first = static_cast<std::uint64_t>(number("--first", 0));
    if (options.contains("--count")) workload.count = static_cast<std::uint64_t>(number("--count", 0));
    if (options.contains("--seconds")) workload.seconds = number("--seconds", 0);
    workload.processes = static_cast<int>(number("--jobs", std::max(1U, std::thread::hardware_concurrency())));
    const auto start = std::chrono::steady_clock::now();
    const Statistics statistics = RunSeeds(workload, folder);
    statistics.print(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    code = statistics.failures == 0 && statistics.seeds > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
  }
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
  return code;
}
