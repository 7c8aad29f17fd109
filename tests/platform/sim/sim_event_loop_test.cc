// The application's event loop on a scene: what it waits for, in what order things come, and when it ends.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/platform/sim/scene_menu_bar.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kQuality = HLQualityOfService::userInitiated;

TEST(EventLoop, EndsWhenNothingIsDue) {
  MenuBar program("{}");
  EXPECT_EQ(program.run(program.noting("launched")), 0);
  EXPECT_THAT(program.entries(), ElementsAre("launched@0"));
}

TEST(EventLoop, EndsWithOnlyRepeatingTimers) {
  MenuBar program(Timeline(R"({"at": 2.5, "quit": 9})"));
  std::unique_ptr<HLTimer> one;
  std::unique_ptr<HLTimer> two;
  EXPECT_EQ(program.run([&] {
    one = program.runLoop().scheduleTimer(1, program.noting("one"));
    two = program.runLoop().scheduleTimer(2, program.noting("two"));
  }),
            0);
  EXPECT_THAT(program.entries(), ElementsAre("one@1000", "two@2000", "one@2000"));
  EXPECT_EQ(program.desktop().simulator().elapsed(), 2.5);
  EXPECT_EQ(program.dump()["timers"], 2);
}

TEST(EventLoop, WaitsForDelayedSteps) {
  MenuBar program("{}");
  std::unique_ptr<HLTimer> timer;
  (void)program.run([&] {
    timer = program.runLoop().scheduleTimer(1, program.noting("timer"));
    program.at(1.5, program.noting("later"));
  });
  EXPECT_THAT(program.entries(), ElementsAre("timer@1000", "later@1500"));
}

TEST(EventLoop, WaitsForWorkInTheBackground) {
  MenuBar program("{}");
  std::unique_ptr<HLTimer> timer;
  (void)program.run([&] {
    timer = program.runLoop().scheduleTimer(1, program.noting("timer"));
    program.runLoop().postToGlobalQueue(kQuality, [&] {
      program.runLoop().sleep(2.5);
      program.runLoop().postToMainQueue(program.noting("done"));
    });
  });
  EXPECT_THAT(program.entries(), ElementsAre("timer@1000", "timer@2000", "done@2500"));
}

TEST(EventLoop, WaitsForEffects) {
  MenuBar program(Scene(R"({"id": "w", "actions": ["AXPress"], "onAction": {"AXPress": {"after": 3,
    "effects": [{"openMenu": true}]}}})"));
  (void)program.run([&] {
    program.host().statusItem->install({"", {}, {"", {}, program.noting("menu")}});
    EXPECT_EQ(program.desktop().press("w"), HLAXErrorSuccess);
  });
  EXPECT_THAT(program.entries(), ElementsAre("menu@3000"));
}

TEST(EventLoop, IsEndedByTheScene) {
  MenuBar program(Timeline(R"({"at": 1, "terminate": true}, {"at": 1, "openMenu": true}, {"at": 5, "quit": 9})"));
  EXPECT_EQ(program.run([&] {
    program.host().statusItem->install({"", {}, {"", {}, program.noting("menu")}});
    program.at(1, program.noting("step"));
  }),
            0);
  EXPECT_THAT(program.entries(), IsEmpty());
  EXPECT_EQ(program.desktop().simulator().elapsed(), 1);
}

TEST(EventLoop, IsEndedByTheProgram) {
  MenuBar program(Timeline(R"({"at": 5, "quit": 9})"));
  EXPECT_EQ(program.run([&] { program.at(2, [&] { program.host().application->terminate(); }); }), 0);
  EXPECT_EQ(program.desktop().simulator().elapsed(), 2);
}

TEST(EventLoop, SkipsATerminatedProgram) {
  MenuBar program(Timeline(R"({"at": 0, "openMenu": true}, {"at": 1, "openMenu": true})"));
  EXPECT_EQ(program.run([&] {
    program.host().statusItem->install({"", {}, {"", {}, program.noting("menu")}});
    program.runLoop().postToMainQueue(program.noting("step"));
    program.host().application->terminate();
  }),
            0);
  EXPECT_THAT(program.entries(), IsEmpty());
}

TEST(EventLoop, LetsBackgroundWorkFinish) {
  MenuBar program(Timeline(R"({"at": 1, "terminate": true})"));
  bool done = false;
  (void)program.run([&] {
    program.runLoop().postToGlobalQueue(kQuality, [&] {
      program.runLoop().sleep(2);
      done = true;
    });
  });
  EXPECT_TRUE(done);
}

TEST(EventLoop, ExitsDuringWorkIfAllowed) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (const auto& [event, code] : {std::pair{R"("terminate": true)", 0}, {R"("choose": "Nothing")", 2}}) {
    const auto run = [what = event] {
      MenuBar program(Timeline(R"({"at": 1, )" + std::string(what) + "}", R"(, "record": "/dev/stderr")"),
                      {.arguments = {}, .environment = {}, .endsProcess = true});
      (void)program.run([&] {
        program.runLoop().postToGlobalQueue(kQuality, [&] {
          program.runLoop().sleep(1);
          std::cerr << "still at work";
        });
      });
      std::cerr << "returned";
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(code),
                testing::AllOf(testing::HasSubstr(R"({"at":1.0,)"), testing::Not(testing::HasSubstr("still at work")),
                               testing::Not(testing::HasSubstr("returned"))))
        << event;
  }
}

// Orders

TEST(UserEvents, WaitForTheLaunch) {
  MenuBar program(Timeline(R"({"at": 0, "openMenu": true}, {"at": 1, "click": "left"}, {"at": 3, "openMenu": true})"));
  (void)program.run([&] {
    program.host().statusItem->install({"", program.noting("click"), {"", {}, program.noting("menu")}});
    program.runLoop().runFor(2);
    program.note("launched");
  });
  EXPECT_THAT(program.entries(), ElementsAre("launched@2000", "menu@2000", "click@2000", "menu@3000"));
}

TEST(UserEvents, KeepTheOrderOfTheScene) {
  MenuBar program(Timeline(R"({"at": 2, "click": "none"}, {"at": 1, "openMenu": true}, {"at": 1, "click": "left"},
    {"at": 1, "hotKey": null}, {"at": 1, "click": "left"}, {"at": 0, "openMenu": true})"));
  (void)program.run([&] {
    program.host().statusItem->install({"", program.noting("click"), {"", {}, program.noting("menu")}});
    program.host().hotKeys->installHandler([&](const auto&) {
      program.note("hot key");
      return HLHotKeyStatus::success;
    });
  });
  EXPECT_THAT(program.entries(),
              ElementsAre("menu@0", "menu@1000", "click@1000", "hot key@1000", "click@1000", "click@2000"));
}

TEST(UserEvents, HaveNoEffectWithoutTheApplication) {
  MenuBar program(Timeline(R"({"at": 0, "click": "left"}, {"at": 1, "choose": "Nothing"}, {"at": 1, "press": "B",
    "window": "W"}, {"at": 1, "terminate": true}, {"at": 1, "dump": "/nowhere/at/all"}, {"at": 2, "quit": 9})"));
  program.host().statusItem->install({"", program.noting("click"), {}});
  testing::internal::CaptureStderr();
  program.at(1.5, program.noting("step"));
  program.runLoop().runFor(3);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_THAT(program.entries(), ElementsAre("step@1500"));
  EXPECT_EQ(program.desktop().simulator().elapsed(), 3);
}

TEST(MainQueue, RunsStepsByTimeThenOrder) {
  MenuBar program("{}");
  (void)program.run([&] {
    program.at(2, program.noting("a"));
    program.at(1, program.noting("b"));
    program.at(2, program.noting("c"));
    program.at(0, program.noting("d"));
    program.at(-1, program.noting("e"));
    program.runLoop().postToMainQueue(program.noting("f"));
  });
  EXPECT_THAT(program.entries(), ElementsAre("f@0", "d@0", "e@0", "b@1000", "a@2000", "c@2000"));
}

TEST(MainQueue, RunsNestedStepsLast) {
  MenuBar program("{}");
  (void)program.run([&] {
    program.runLoop().postToMainQueue([&] {
      program.note("a");
      program.runLoop().postToMainQueue(program.noting("c"));
    });
    program.runLoop().postToMainQueue(program.noting("b"));
  });
  EXPECT_THAT(program.entries(), ElementsAre("a@0", "b@0", "c@0"));
}

TEST(GlobalQueue, RunsConcurrently) {
  MenuBar program("{}");
  (void)program.run([&] {
    for (const char* name : {"a", "b"}) {
      program.runLoop().postToGlobalQueue(kQuality, [&program, name] {
        program.note(name);
        program.runLoop().sleep(60);
        program.note(name);
      });
    }
    program.note("main");
  });
  EXPECT_THAT(program.entries(), ElementsAre("main@0", "a@0", "b@0", "a@60000", "b@60000"));
}

TEST(GlobalQueue, KeepsWorkUntilAThreadStarts) {
  int refused = 0;
  MenuBar program("{}", {.refusesThreads = [&refused] { return ++refused <= 20; }});
  (void)program.run([&] {
    program.runLoop().postToGlobalQueue(kQuality, program.noting("work"), program.noting("refused"));
    program.runLoop().postToMainQueue(program.noting("step"));
  });
  EXPECT_THAT(program.entries(), ElementsAre("step@0", "work@2000"));
}

TEST(GlobalQueue, RefusesAfterFiveSeconds) {
  bool refuses = true;
  MenuBar program("{}", {.refusesThreads = [&refuses] { return refuses; }});
  (void)program.run([&] {
    program.runLoop().postToGlobalQueue(kQuality, program.noting("work"), program.noting("refused"));
    program.at(6, [&] { refuses = false; });
    program.at(20, program.noting("end"));
  });
  EXPECT_THAT(program.entries(), ElementsAre("refused@5000", "end@20000"));
}

// Timers

TEST(Timer, MayEndItself) {
  MenuBar program(Timeline(R"({"at": 9, "quit": 9})"));
  std::unique_ptr<HLTimer> timer;
  int turns = 0;
  (void)program.run([&] {
    timer = program.runLoop().scheduleTimer(1, [&] {
      program.note("turn");
      if (++turns == 3) timer = nullptr;
    });
  });
  EXPECT_THAT(program.entries(), ElementsAre("turn@1000", "turn@2000", "turn@3000"));
  EXPECT_EQ(program.dump()["timers"], 0);
}

TEST(Timer, SkipsMissedTicks) {
  MenuBar program(Timeline(R"({"at": 5.5, "quit": 9})"));
  std::unique_ptr<HLTimer> timer;
  (void)program.run([&] {
    timer = program.runLoop().scheduleTimer(1, program.noting("turn"));
    program.at(0.5, [&] { program.runLoop().sleep(3); });
  });
  EXPECT_THAT(program.entries(), ElementsAre("turn@3500", "turn@4000", "turn@5000"));
}

TEST(Timer, PollsForAnHourInMilliseconds) {
  MenuBar program(Timeline(R"({"at": 3600, "quit": 9})"));
  std::unique_ptr<HLTimer> timer;
  int turns = 0;
  const auto begin = std::chrono::steady_clock::now();
  (void)program.run([&] { timer = program.runLoop().scheduleTimer(1, [&] { ++turns; }); });
  EXPECT_EQ(turns, 3600);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

// Launches

TEST(LaunchObserver, ReportsOnlyLaunches) {
  MenuBar program(R"({"applications": [{"pid": 4, "bundleIdentifier": "there"}, {"pid": 5, "name": "crashing",
      "relaunch": {"after": 1.5, "application": {"pid": 7, "bundleIdentifier": "again"}}}],
    "timeline": [{"at": 0, "launch": {"pid": 6, "bundleIdentifier": "early"}},
      {"at": 1, "launch": {"pid": 8, "bundleIdentifier": "launched", "name": "n"}}, {"at": 2, "quit": 5}]})");
  (void)program.run([&] {
    program.desktop().applications().observeLaunches([&](const HLRunningApplication& application) {
      program.note(application.bundleIdentifier.value_or("?") + " " + std::to_string(application.pid) + " " +
                   application.name.value_or("none"));
    });
  });
  EXPECT_THAT(program.entries(), ElementsAre("launched 8 n@1000", "again 7 none@3500"));
  const std::vector<HLRunningApplication> list = program.desktop().applications().list();
  ASSERT_EQ(list.size(), 4U);
  EXPECT_EQ(list.back().pid, 7);
}

TEST(LaunchObserver, ReportsARelaunchAfterASignal) {
  MenuBar program(R"({"applications": [{"pid": 5, "relaunch": {"application": {"pid": 7}}}]})");
  (void)program.run([&] {
    for (const char* name : {"a", "b"}) {
      program.desktop().applications().observeLaunches([&program, name](const auto&) { program.note(name); });
    }
    EXPECT_EQ(program.desktop().applications().sendSignal(5, SIGTERM), HLSignalOutcome::sent);
  });
  EXPECT_THAT(program.entries(), ElementsAre("a@0", "b@0"));
}

// The real clock

TEST(RealTime, RunsTheSameApplication) {
  MenuBar program(Timeline(R"({"at": 0, "openMenu": true}, {"at": 0.03, "click": "right"},
    {"at": 0.05, "press": "Box", "window": "W"}, {"at": 0.06, "dump": "/dev/null"}, {"at": 600, "quit": 9})",
                           R"(, "clock": "real", "services": {"http": {"/a": {"body": "x", "seconds": 0.01}}})"));
  std::vector<std::string> entries;
  std::unique_ptr<HLWindow> window;
  std::unique_ptr<HLTimer> timer;
  int turns = 0;
  const auto note = [&](const std::string& what) { return [&entries, what] { entries.push_back(what); }; };
  EXPECT_EQ(program.run([&] {
    program.host().statusItem->install({"", note("click"), {"", {}, note("menu")}});
    window = program.open("W", {{HLCheckBox{"", "Box", [&](bool) { entries.emplace_back("box"); }}}});
    timer = program.runLoop().scheduleTimer(0.01, [&] {
      ++turns;
      if (entries.size() == 5) program.host().application->terminate();
    });
    program.host().httpClient->get("http://x/a", 15, [&](const HLHTTPAnswer&) { entries.emplace_back("answer"); });
    program.runLoop().postToGlobalQueue(kQuality, [&] { program.runLoop().postToMainQueue(note("work")); });
  }),
            0);
  EXPECT_GE(program.desktop().simulator().elapsed(), 0.05);
  EXPECT_LT(program.desktop().simulator().elapsed(), 500);
  EXPECT_GT(turns, 1);
  EXPECT_THAT(entries, testing::UnorderedElementsAre("menu", "work", "answer", "click", "box"));
}

TEST(RealTime, EndsWithOnlyRepeatingTimers) {
  MenuBar program(Timeline(R"({"at": 0.02, "quit": 9})", R"(, "clock": "real")"));
  std::unique_ptr<HLTimer> timer;
  EXPECT_EQ(program.run([&] { timer = program.runLoop().scheduleTimer(0.001, [] {}); }), 0);
  EXPECT_GE(program.desktop().simulator().elapsed(), 0.02);
}

}  // namespace
