// The user's preferences in their file.
#include "platform/linux/files/linux_user_defaults.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "tests/platform/linux/session/fake_process.h"
#include "tests/support/processes.h"
#include "tests/support/temporary_directory.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

class Preferences : public testing::Test {
 protected:
  [[nodiscard]] std::string folder() const { return directory_.path() + "/config/org.example.one"; }
  [[nodiscard]] std::string file() const { return folder() + "/defaults.json"; }

  void write(const std::string& content) const {
    fs::create_directories(folder());
    std::ofstream(file(), std::ios::binary) << content;
  }

  [[nodiscard]] std::vector<std::string> names() const {
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator(folder())) found.push_back(entry.path().filename());
    return found;
  }

  // What is written to standard error meanwhile.
  static std::string complaints(const std::function<void()>& action) {
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
  }

  // By a user whom permissions stop; returns what the action returned there.
  std::string withoutPrivileges(const std::function<std::string()>& action) {
    fs::permissions(directory_.path(), fs::perms::all);
    return InUnprivilegedChildProcess(action);
  }

  TemporaryDirectory directory_;
};

TEST_F(Preferences, StandInTheConfigurationDirectory) {
  FakeProcess process("/home/ada");
  EXPECT_EQ(HLUserDefaultsPath(process), "/home/ada/.config/org.example.one/defaults.json");
  process.variables["XDG_CONFIG_HOME"] = "/settings";
  EXPECT_EQ(HLUserDefaultsPath(process), "/settings/org.example.one/defaults.json");
  process.variables["XDG_CONFIG_HOME"] = "settings";
  EXPECT_EQ(HLUserDefaultsPath(process), "/home/ada/.config/org.example.one/defaults.json");
  process.identifier = std::nullopt;
  EXPECT_EQ(HLUserDefaultsPath(process), "/home/ada/.config/dismiss/defaults.json");
}

TEST_F(Preferences, OutliveTheProcess) {
  const std::string said = complaints([this] {
    HLLinuxUserDefaults defaults(file());
    EXPECT_TRUE(defaults.value("code").isMissing());
    defaults.setValue("code", std::int64_t{-1});
    defaults.setValue("label", std::string("⎋ \"ä\""));
    defaults.setValue("on", true);
    EXPECT_EQ(HLIntegerDefault(defaults, "code"), -1);
  });
  EXPECT_EQ(said, "");
  HLLinuxUserDefaults defaults(file());
  EXPECT_EQ(HLIntegerDefault(defaults, "code"), -1);
  EXPECT_EQ(HLStringDefault(defaults, "label"), "⎋ \"ä\"");
  EXPECT_TRUE(HLBooleanDefault(defaults, "on"));
  ASSERT_NE(defaults.value("on").as<bool>(), nullptr);
}

TEST_F(Preferences, FallBackOnUnstoredRegisteredDefaults) {
  HLLinuxUserDefaults defaults(file());
  defaults.registerDefaults({{"code", std::int64_t{45}}, {"label", std::string("N")}});
  defaults.registerDefaults({{"code", std::int64_t{46}}});
  EXPECT_EQ(HLIntegerDefault(defaults, "code"), 46);
  EXPECT_EQ(HLStringDefault(defaults, "label"), "N");
  EXPECT_FALSE(fs::exists(file()));
  defaults.setValue("code", std::int64_t{1});
  EXPECT_EQ(HLIntegerDefault(defaults, "code"), 1);
  EXPECT_EQ(FileContent(file()), "{\n  \"code\": 1\n}\n");
}

TEST_F(Preferences, AreForTheirUserOnly) {
  HLLinuxUserDefaults defaults(file());
  defaults.setValue("code", std::int64_t{1});
  EXPECT_EQ(FileMode(file()), 0600U);
  EXPECT_EQ(FileMode(folder()), 0700U);
  fs::permissions(file(), fs::perms::all);
  defaults.setValue("code", std::int64_t{2});
  EXPECT_EQ(FileMode(file()), 0600U);
}

TEST_F(Preferences, LeaveOtherFileEntriesUnchanged) {
  write(R"({"z": {"deep": [1, 2.5, null, {"x": "y"}]}, "code": 7, "big": 18446744073709551615, "a": null})");
  HLLinuxUserDefaults defaults(file());
  defaults.setValue("code", std::int64_t{8});
  defaults.setValue("new", std::string("last"));
  std::string content = FileContent(file());
  std::erase_if(content, [](char c) { return c == ' ' || c == '\n'; });
  EXPECT_EQ(content,
            R"({"z":{"deep":[1,2.5,null,{"x":"y"}]},"code":8,"big":18446744073709551615,"a":null,"new":"last"})");
}

TEST_F(Preferences, TreatStoredNullsAsMissing) {
  write(R"({"code": null})");
  HLLinuxUserDefaults defaults(file());
  defaults.registerDefaults({{"code", std::int64_t{45}}});
  EXPECT_EQ(HLIntegerDefault(defaults, "code"), 45);
}

TEST_F(Preferences, KeepOtherKeysSetByOthers) {
  HLLinuxUserDefaults one(file());
  HLLinuxUserDefaults other(file());
  EXPECT_TRUE(one.value("code").isMissing());
  other.setValue("label", std::string("N"));
  one.setValue("code", std::int64_t{3});
  EXPECT_EQ(HLStringDefault(one, "label"), "N");
  HLLinuxUserDefaults third(file());
  EXPECT_EQ(HLStringDefault(third, "label"), "N");
  EXPECT_EQ(HLIntegerDefault(third, "code"), 3);
}

TEST_F(Preferences, LoseNoKeysToConcurrentWriters) {
  constexpr int kProcesses = 4;
  constexpr int kKeys = 20;
  std::vector<pid_t> children;
  for (int process = 0; process < kProcesses; ++process) {
    const pid_t child = fork();
    if (child == 0) {
      HLLinuxUserDefaults defaults(file());
      for (int i = 0; i < kKeys; ++i) {
        defaults.setValue("key-" + std::to_string(process) + "-" + std::to_string(i), std::int64_t{i});
      }
      _exit(0);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) waitpid(child, nullptr, 0);
  HLLinuxUserDefaults defaults(file());
  int found = 0;
  for (int process = 0; process < kProcesses; ++process) {
    for (int i = 0; i < kKeys; ++i) {
      found += defaults.value("key-" + std::to_string(process) + "-" + std::to_string(i)).isMissing() ? 0 : 1;
    }
  }
  EXPECT_EQ(found, kProcesses * kKeys);
  EXPECT_THAT(names(), ElementsAre("defaults.json"));
}

TEST_F(Preferences, AreStoredDespiteALastingLock) {
  fs::create_directories(folder());
  const int lock = open(folder().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_EQ(flock(lock, LOCK_EX), 0);
  constexpr std::chrono::milliseconds kTimeout{100};
  HLLinuxUserDefaults defaults(file(), kTimeout);
  const auto began = std::chrono::steady_clock::now();
  defaults.setValue("code", std::int64_t{1});
  EXPECT_GE(std::chrono::steady_clock::now() - began, kTimeout);
  close(lock);
  EXPECT_THAT(FileContent(file()), HasSubstr("\"code\": 1"));
}

TEST_F(Preferences, PutDamagedFilesAsideAndReport) {
  for (const char* damaged : {"{\"code\": 1", "", "[1]", "7", "{\"code\": \"\xFF\"}"}) {
    write(damaged);
    const std::string said = complaints([this] {
      HLLinuxUserDefaults defaults(file());
      EXPECT_TRUE(defaults.value("code").isMissing());
    });
    EXPECT_THAT(said, HasSubstr("are damaged and have been put aside as " + file() + ".damaged"));
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
  }
  EXPECT_THAT(names(),
              UnorderedElementsAre("defaults.json.damaged", "defaults.json.damaged-2", "defaults.json.damaged-3",
                                   "defaults.json.damaged-4", "defaults.json.damaged-5"));
  EXPECT_EQ(FileContent(file() + ".damaged"), "{\"code\": 1");
  EXPECT_EQ(FileContent(file() + ".damaged-3"), "[1]");
  HLLinuxUserDefaults defaults(file());
  defaults.setValue("code", std::int64_t{2});
  EXPECT_EQ(HLIntegerDefault(defaults, "code"), 2);
}

TEST_F(Preferences, IgnoreUnfinishedFilesOfACrash) {
  write("{\"code\": 7}");
  std::ofstream(folder() + "/.defaults.json.AbCdEf") << "{\"code\": 9, \"la";
  HLLinuxUserDefaults defaults(file());
  EXPECT_EQ(HLIntegerDefault(defaults, "code"), 7);
  defaults.setValue("label", std::string("N"));
  EXPECT_EQ(FileContent(file()), "{\n  \"code\": 7,\n  \"label\": \"N\"\n}\n");
}

TEST_F(Preferences, AreReadWholeDuringWrites) {
  HLLinuxUserDefaults defaults(file());
  defaults.setValue("text", std::string(20'000, 'x'));
  const pid_t child = fork();
  if (child == 0) {
    HLLinuxUserDefaults writer(file());
    for (int i = 0; i < 50; ++i) writer.setValue("text", std::string(20'000, static_cast<char>('a' + i % 26)));
    _exit(0);
  }
  int status = 0;
  int readings = 0;
  while (waitpid(child, &status, WNOHANG) == 0) {
    ++readings;
    HLLinuxUserDefaults reader(file());
    ASSERT_EQ(HLStringDefault(reader, "text").value_or("").size(), 20'000U);
  }
  EXPECT_GT(readings, 0);
  EXPECT_THAT(names(), ElementsAre("defaults.json"));
}

TEST_F(Preferences, LastForTheProcessIfUnwritable) {
  write("{\"code\": 7}");
  fs::permissions(file(), fs::perms::all);
  fs::permissions(folder(),
                  fs::perms::all & ~(fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write));
  fs::permissions(folder() + "/..", fs::perms::all);
  const std::string said = withoutPrivileges([this] {
    testing::internal::CaptureStderr();
    HLLinuxUserDefaults defaults(file());
    defaults.setValue("code", std::int64_t{8});
    defaults.setValue("code", std::int64_t{9});
    return std::to_string(HLIntegerDefault(defaults, "code")) + testing::internal::GetCapturedStderr();
  });
  EXPECT_EQ(said, "9hushlet: the preferences cannot be stored in " + file() + ": Permission denied\n");
  EXPECT_EQ(FileContent(file()), "{\"code\": 7}");
}

TEST_F(Preferences, LeaveUnreadableFilesUnchanged) {
  write("{\"code\": 7}");
  fs::permissions(file(), fs::perms::none);
  for (const std::string& path : {folder(), folder() + "/.."}) fs::permissions(path, fs::perms::all);
  const std::string said = withoutPrivileges([this] {
    testing::internal::CaptureStderr();
    HLLinuxUserDefaults defaults(file());
    const bool missing = defaults.value("code").isMissing();
    defaults.setValue("code", std::int64_t{8});
    return std::to_string(missing) + std::to_string(HLIntegerDefault(defaults, "code")) +
           testing::internal::GetCapturedStderr();
  });
  EXPECT_EQ(said, "18hushlet: the preferences in " + file() + " cannot be read: Permission denied\n");
  EXPECT_EQ(FileContent(file()), "{\"code\": 7}");
}

TEST_F(Preferences, RetryFailedStoresWithTheNext) {
  std::ofstream(directory_.path() + "/config") << "in the way";
  HLLinuxUserDefaults defaults(file());
  EXPECT_THAT(complaints([&] { defaults.setValue("code", std::int64_t{8}); }), HasSubstr("cannot be stored"));
  fs::remove(directory_.path() + "/config");
  EXPECT_EQ(complaints([&] { defaults.setValue("label", std::string("N")); }), "");
  EXPECT_EQ(FileContent(file()), "{\n  \"code\": 8,\n  \"label\": \"N\"\n}\n");
}

TEST_F(Preferences, WriteThroughSymbolicLinks) {
  fs::create_directories(folder());
  fs::create_directories(directory_.path() + "/dotfiles");
  const std::string target = directory_.path() + "/dotfiles/hushlet.json";
  fs::create_symlink("../../dotfiles/link.json", file());
  fs::create_symlink("hushlet.json", directory_.path() + "/dotfiles/link.json");
  for (int code : {1, 2}) {  // the link leads nowhere the first time
    HLLinuxUserDefaults defaults(file());
    defaults.setValue("code", std::int64_t{code});
    EXPECT_TRUE(fs::is_symlink(file()));
    EXPECT_EQ(FileContent(target), "{\n  \"code\": " + std::to_string(code) + "\n}\n");
  }
  EXPECT_THAT(names(), ElementsAre("defaults.json"));
}

TEST_F(Preferences, LeavePipesInPlace) {
  fs::create_directories(folder());
  ASSERT_EQ(mkfifo(file().c_str(), 0600), 0);
  const std::string said = complaints([this] {
    HLLinuxUserDefaults defaults(file());
    defaults.setValue("code", std::int64_t{8});
    EXPECT_EQ(HLIntegerDefault(defaults, "code"), 8);
  });
  EXPECT_THAT(said, HasSubstr("cannot be read"));
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1);
  EXPECT_TRUE(fs::is_fifo(file()));
}

TEST_F(Preferences, ReplaceOnlyInvalidBytesOfTexts) {
  HLLinuxUserDefaults defaults(file());
  defaults.setValue("label", std::string("a\xFFz"));
  HLLinuxUserDefaults next(file());
  EXPECT_EQ(HLStringDefault(next, "label"), "a\xEF\xBF\xBDz");
}

TEST_F(Preferences, TakeTheLastOfRepeatedKeys) {
  write(R"({"code": 1, "other": 2, "code": 3})");
  HLLinuxUserDefaults defaults(file());
  EXPECT_EQ(HLIntegerDefault(defaults, "code"), 3);
}

}  // namespace
