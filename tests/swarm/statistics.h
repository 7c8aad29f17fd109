// What a number of runs was made of. Plain data: processes share it.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "tests/swarm/generate/plan.h"
#include "tests/swarm/run.h"

struct Statistics {
  static constexpr std::array<std::int64_t, 6> kSizes = {0, 10, 50, 500, 1400, INT64_MAX};  // elements at most
  static constexpr std::array<std::string_view, 12> kOutcomes = {"success",
                                                                 "nothing",
                                                                 "accessDenied",
                                                                 "notificationCenterUnavailable",
                                                                 "failed",
                                                                 "ran",
                                                                 "named what was not there",
                                                                 "served",
                                                                 "watched",
                                                                 "not watched",
                                                                 "matched",
                                                                 "not matched"};

  std::int64_t seeds = 0;
  std::int64_t failures = 0;
  std::int64_t elements = 0;
  std::int64_t faults = 0;  // of the scene and the plan
  std::int64_t withFaults = 0;
  std::int64_t callFaults = 0;
  std::int64_t cutAnswers = 0;
  std::int64_t refusedThreads = 0;
  std::int64_t logFaults = 0;
  std::int64_t inputs = 0;
  std::int64_t presses = 0;
  double seconds = 0;
  std::array<std::int64_t, kSizes.size()> sizes = {};
  std::array<std::int64_t, ModeCount> modes = {};
  std::array<std::int64_t, kOutcomes.size()> outcomes = {};

  void add(const Plan& plan, const PlanShape& shape, const RunReport& report) {
    ++seeds;
    failures += report.violations.empty() ? 0 : 1;
    elements += shape.elements;
    faults += shape.sceneFaults;
    withFaults += shape.sceneFaults > 0 ? 1 : 0;
    callFaults += report.callFaults;
    cutAnswers += report.cutAnswers;
    refusedThreads += report.refusedThreads;
    logFaults += report.logFaults;
    inputs += shape.inputs;
    presses += report.presses;
    seconds += report.seconds;
    const auto size =
        std::find_if(kSizes.begin(), kSizes.end(), [&](std::int64_t most) { return shape.elements <= most; });
    ++sizes[static_cast<std::size_t>(size - kSizes.begin())];
    ++modes[static_cast<std::size_t>(plan.mode)];
    const auto outcome = std::find(kOutcomes.begin(), kOutcomes.end(), report.outcome);
    if (outcome != kOutcomes.end()) ++outcomes[static_cast<std::size_t>(outcome - kOutcomes.begin())];
  }

  void add(const Statistics& other) {
    const auto sum = [](auto& to, const auto& from) {
      for (std::size_t i = 0; i < to.size(); ++i) to[i] += from[i];
    };
    seeds += other.seeds;
    failures += other.failures;
    elements += other.elements;
    faults += other.faults;
    withFaults += other.withFaults;
    callFaults += other.callFaults;
    cutAnswers += other.cutAnswers;
    refusedThreads += other.refusedThreads;
    logFaults += other.logFaults;
    inputs += other.inputs;
    presses += other.presses;
    seconds += other.seconds;
    sum(sizes, other.sizes);
    sum(modes, other.modes);
    sum(outcomes, other.outcomes);
  }

  void print(double realSeconds) const {
    const double count = static_cast<double>(std::max<std::int64_t>(seeds, 1));
    const auto share = [count](std::int64_t part) { return 100 * static_cast<double>(part) / count; };
    std::printf("seeds %ld in %.1f s, %.0f a second; failing %ld\n", static_cast<long>(seeds), realSeconds,
                static_cast<double>(seeds) / realSeconds, static_cast<long>(failures));
    std::printf("elements %.0f a seed:", static_cast<double>(elements) / count);
    for (std::size_t i = 0; i < kSizes.size(); ++i) {
      if (i + 1 < kSizes.size()) {
        std::printf(" up to %ld %.1f%%", static_cast<long>(kSizes[i]), share(sizes[i]));
      } else {
        std::printf(" more %.1f%%\n", share(sizes[i]));
      }
    }
    std::printf(
        "faults %.1f a seed, in %.1f%% of them; calls failed %ld, of which cut short %ld; threads refused %ld; log "
        "records cut or lost %ld; inputs %ld; presses %ld; virtual time %.0f s\n",
        static_cast<double>(faults) / count, share(withFaults), static_cast<long>(callFaults),
        static_cast<long>(cutAnswers), static_cast<long>(refusedThreads), static_cast<long>(logFaults),
        static_cast<long>(inputs), static_cast<long>(presses), seconds);
    for (int i = 0; i < ModeCount; ++i) {
      const std::string_view name = NameOfMode(static_cast<Mode>(i));
      std::printf("%.*s %.1f%%  ", static_cast<int>(name.size()), name.data(),
                  share(modes[static_cast<std::size_t>(i)]));
    }
    std::printf("\n");
    for (std::size_t i = 0; i < kOutcomes.size(); ++i) {
      std::printf("%.*s %.1f%%  ", static_cast<int>(kOutcomes[i].size()), kOutcomes[i].data(), share(outcomes[i]));
    }
    std::printf("\n");
  }
};
