#include "entry/modes.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using Arguments = std::vector<std::string>;

// The switches in the order in which they are tested.
const std::vector<std::pair<std::string, HLModeValue>> kTable = {{"--request-accessibility", HLModeValue::none},
                                                                 {"--daemon", HLModeValue::none},
                                                                 {"--daemon-dismiss", HLModeValue::none},
                                                                 {"--daemon-self-check", HLModeValue::none},
                                                                 {"--auto-close-match", HLModeValue::required},
                                                                 {"--close-matching", HLModeValue::required},
                                                                 {"--auto-close-probe", HLModeValue::seconds},
                                                                 {"--observe-nc", HLModeValue::seconds},
                                                                 {"--self-check", HLModeValue::none},
                                                                 {"--send-test-notifications", HLModeValue::none},
                                                                 {"--dismiss-now", HLModeValue::none},
                                                                 {"--help", HLModeValue::none},
                                                                 {"--version", HLModeValue::none},
                                                                 {"--explain", HLModeValue::none},
                                                                 {"--record-scene", HLModeValue::expected}};

std::string selected(Arguments arguments) {
  arguments.insert(arguments.begin(), "/opt/hushlet/hushlet");
  return std::string(HLSelectMode(arguments).mode.switchName);
}

double secondsOf(const std::string& value) {
  const HLSelectedMode mode = HLSelectMode({"hushlet", "--observe-nc", value});
  EXPECT_EQ(mode.mode.switchName, "--observe-nc");
  return mode.seconds;
}

TEST(ModeTable, EndsWithTheApplication) {
  ASSERT_EQ(HLModes().size(), kTable.size() + 1);
  for (std::size_t i = 0; i < kTable.size(); ++i) {
    EXPECT_EQ(HLModes()[i].switchName, kTable[i].first);
    EXPECT_EQ(HLModes()[i].value, kTable[i].second) << kTable[i].first;
  }
  EXPECT_EQ(HLModes().back().switchName, "");
  EXPECT_EQ(HLModes().back().value, HLModeValue::none);
}

std::string outputOf(const std::string& name) {
  std::ostringstream out;
  std::ostringstream err;
  EXPECT_EQ(HLRunMode(HLSelectMode({"hushlet", name}), out, err), 0);
  EXPECT_EQ(err.str(), "");
  return out.str();
}

TEST(Help, ListsEveryModeWithItsSummary) {
  const std::string text = outputOf("--help");
  EXPECT_EQ(text.find("Usage: hushlet "), 0U);
  for (const auto& [name, value] : kTable) {
    const std::string placeholder = value == HLModeValue::expected   ? " FILE"
                                    : value == HLModeValue::none     ? ""
                                    : value == HLModeValue::required ? " TEXT"
                                                                     : " [SECONDS]";
    const std::size_t line = text.find("\n  " + name + placeholder + "  ");
    ASSERT_NE(line, std::string::npos) << name;
    const std::size_t end = text.find('\n', line + 1);
    EXPECT_NE(text[end - 1], ' ') << name;
    EXPECT_LE(end - line, 100U) << name;
  }
  for (const char* option :
       {"--json", "--keep-texts", "--open-settings", "--appearance-dark", "--snapshot-windows DIRECTORY"}) {
    EXPECT_NE(text.find(option), std::string::npos);
  }
}

TEST(Help, ListsNoUnknownMode) {
  std::string text = outputOf("--help");
  text.resize(text.find("\nOptions of --explain and --record-scene:"));
  std::size_t modes = 0;
  for (std::size_t at = text.find("\n  --"); at != std::string::npos; at = text.find("\n  --", at + 1)) ++modes;
  EXPECT_EQ(modes, kTable.size());
}

TEST(Version, PrintsNameAndNumber) { EXPECT_EQ(outputOf("--version"), "hushlet " HL_VERSION "\n"); }

TEST(ModeSelection, DefaultsToTheApplication) {
  for (const Arguments& arguments :
       {Arguments{}, Arguments{"--unknown"}, Arguments{"--open-settings", "--appearance-dark"},
        Arguments{"dismiss-now"}, Arguments{"--Dismiss-Now"}, Arguments{"--dismiss-now "}, Arguments{"--dismiss"},
        Arguments{"--daemonx"}, Arguments{""}, Arguments{"--self-check=1"}}) {
    EXPECT_EQ(selected(arguments), "");
  }
  EXPECT_EQ(HLSelectMode({}).mode.switchName, "");
}

TEST(ModeSelection, FindsItsSwitchAnywhere) {
  for (const auto& [name, value] : kTable) {
    EXPECT_EQ(selected({name, "2"}), name);
    EXPECT_EQ(selected({"--unknown", "text", name, "2"}), name);
  }
}

TEST(ModeSelection, PrefersEarlierTableRows) {
  for (std::size_t i = 0; i < kTable.size(); ++i) {
    for (std::size_t j = i; j < kTable.size(); ++j) {
      // A value between them, so that neither is the other's.
      EXPECT_EQ(selected({kTable[i].first, "2", kTable[j].first, "2"}), kTable[i].first);
      EXPECT_EQ(selected({kTable[j].first, "2", kTable[i].first, "2"}), kTable[i].first);
      EXPECT_EQ(selected({kTable[j].first, kTable[i].first, "2"}), kTable[i].first) << "even as the other's value";
    }
  }
}

TEST(ModeSelection, DistinguishesDaemonSwitches) {
  EXPECT_EQ(selected({"--daemon-dismiss"}), "--daemon-dismiss");
  EXPECT_EQ(selected({"--daemon-self-check"}), "--daemon-self-check");
  EXPECT_EQ(selected({"--daemon-dismiss", "--daemon"}), "--daemon");
  EXPECT_EQ(selected({"--dismiss-now", "--self-check"}), "--self-check");
}

TEST(ModeSelection, IncludesTheExecutablePath) {
  EXPECT_EQ(HLSelectMode({"--dismiss-now"}).mode.switchName, "--dismiss-now");
}

TEST(ModeValue, FollowsTheFirstOccurrence) {
  for (const std::string name : {"--auto-close-match", "--close-matching"}) {
    EXPECT_EQ(HLSelectMode({"hushlet", name, "Shortcuts, Running"}).value, "Shortcuts, Running");
    EXPECT_EQ(HLSelectMode({"hushlet", name, ""}).value, "");
    EXPECT_EQ(HLSelectMode({"hushlet", name, "first", name, "second"}).value, "first");
    EXPECT_EQ(HLSelectMode({"hushlet", name, name}).value, name);
    EXPECT_EQ(HLSelectMode({"hushlet", name, "--unknown"}).value, "--unknown");
  }
}

TEST(ModeValue, SkipsModesMissingRequiredValues) {
  EXPECT_EQ(selected({"--auto-close-match"}), "");
  EXPECT_EQ(selected({"--close-matching"}), "");
  EXPECT_EQ(selected({"--dismiss-now", "--auto-close-match"}), "--dismiss-now");
  EXPECT_EQ(selected({"--dismiss-now", "--close-matching"}), "--dismiss-now");
  EXPECT_EQ(selected({"--close-matching", "--auto-close-match"}), "--close-matching");
  EXPECT_EQ(HLSelectMode({"hushlet", "--close-matching", "--auto-close-match"}).value, "--auto-close-match");
}

TEST(ModeValue, DefaultsToTenSeconds) {
  for (const std::string name : {"--auto-close-probe", "--observe-nc"}) {
    EXPECT_EQ(selected({name}), name);
    EXPECT_EQ(HLSelectMode({"hushlet", name}).seconds, 10.0);
    EXPECT_EQ(HLSelectMode({"hushlet", name, "2.5"}).seconds, 2.5);
    EXPECT_EQ(HLSelectMode({"hushlet", name, "1", name, "2"}).seconds, 1.0);
  }
}

TEST(ModeValue, ReplacesNonpositiveSecondsByTen) {
  for (const char* value : {"0", "0.0", "-0", "-3", "-0.001", "word", "", " ", "nan", "NaN", "inf", "-inf", "x2", "+",
                            "-", ".", "e5", "+-3", "--self-check"}) {
    EXPECT_EQ(secondsOf(value), 10.0) << value;
  }
}

TEST(ModeValue, ReadsLeadingSeconds) {
  for (const auto& [value, seconds] : std::vector<std::pair<std::string, double>>{
           {"2.5", 2.5},         {" 2.5", 2.5},  {"\t\n\v\f\r 7", 7.0}, {"2.5abc", 2.5},  {"2e1", 20.0},
           {"2e+1", 20.0},       {"2E1", 20.0},  {"2e0x", 2.0},         {"25E-1", 2.5},   {"2e12", 2e12},
           {"3e", 3.0},          {"3e+", 3.0},   {"3e-", 3.0},          {"3e+x", 3.0},    {"  3e+x", 3.0},
           {"3ex1", 3.0},        {".5", 0.5},    {"5.", 5.0},           {"5.e1", 50.0},   {"+3", 3.0},
           {"1,5", 1.0},         {"1.5.5", 1.5}, {"007", 7.0},          {"0.001", 0.001}, {"4 5", 4.0},
           {"1290.95", 1290.95}, {"0x10", 10.0}}) {
    EXPECT_EQ(secondsOf(value), seconds) << value;
  }
}

TEST(ModeValue, IsEmptyForOtherModes) {
  for (const auto& [name, value] : kTable) {
    const HLSelectedMode mode = HLSelectMode({"hushlet", name, "2.5"});
    const bool hasText = value == HLModeValue::required || value == HLModeValue::expected;
    EXPECT_EQ(mode.value, hasText ? "2.5" : "") << name;
    EXPECT_EQ(mode.seconds, value == HLModeValue::seconds ? 2.5 : 0.0) << name;
  }
  EXPECT_EQ(HLSelectMode({"hushlet", "text"}).value, "");
  EXPECT_EQ(HLSelectMode({"hushlet", "2.5"}).seconds, 0.0);
}

TEST(ModeValue, MayBeMissingForSomeModes) {
  EXPECT_EQ(selected({"--record-scene"}), "--record-scene");
  EXPECT_EQ(HLSelectMode({"hushlet", "--record-scene"}).value, "");
}

TEST(ModeValue, ConsumesASwitch) {
  const HLSelectedMode mode = HLSelectMode({"hushlet", "--observe-nc", "--self-check"});
  EXPECT_EQ(mode.mode.switchName, "--observe-nc");
  EXPECT_EQ(mode.seconds, 10.0);
}

std::string lastValue;
double lastSeconds = 0;

int noteAndPrint(const HLModeCall& call) {
  lastValue = call.value;
  lastSeconds = call.seconds;
  call.out << "out";
  call.err << "err";
  return 7;
}

TEST(RunningAMode, PassesItsArguments) {
  const HLMode mode = {"--some-mode", HLModeValue::required, noteAndPrint};
  std::ostringstream out;
  std::ostringstream err;
  EXPECT_EQ(HLRunMode({mode, "the value", 2.5}, out, err), 7);
  EXPECT_EQ(lastValue, "the value");
  EXPECT_EQ(lastSeconds, 2.5);
  EXPECT_EQ(out.str(), "out");
  EXPECT_EQ(err.str(), "err");
}

}  // namespace
