// A dismissal during which the notification server is stopped, ends, is replaced, or shows and closes banners, at each
// message that the program sends. A sample of the messages; with HL_EVERY_MESSAGE=1 in the environment, each of them.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "core/dismissal/result.h"
#include "tests/platform/linux/desktop/message_count.h"
#include "tests/platform/linux/desktop/real_desktop.h"
#include "tests/support/sanitizers.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::IsEmpty;

constexpr int kBanners = 3;
// Reading a silent server twice, waiting for its presses, and the machine's own delays.
constexpr seconds kLongest(12);

enum class Interruption { stopped, paused, killed, replaced, changed };
constexpr std::array kInterruptions = {Interruption::stopped, Interruption::paused, Interruption::killed,
                                       Interruption::replaced, Interruption::changed};
const char* nameOf(Interruption interruption) {
  constexpr std::array kNames = {"stopped", "stopped and continued", "killed", "replaced", "changed"};
  return kNames[static_cast<std::size_t>(interruption)];
}

std::int64_t residentKilobytes(const ChildProcess& process) {
  std::ifstream status("/proc/" + std::to_string(process.pid()) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmRSS:")) return std::stoll(line.substr(6));
  }
  return 0;
}

class InterruptedDismissal : public RealDesktop, public testing::WithParamInterface<Server> {
 protected:
  void SetUp() override {
    begin();
    countFile_ = session_->directory() + "/messages";
    const int file = open(countFile_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(ftruncate(file, sizeof(MessageCount)), 0);
    void* memory = mmap(nullptr, sizeof(MessageCount), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    ASSERT_NE(memory, MAP_FAILED);
    messages_ = new (memory) MessageCount();
    startServerAgain();
    if (!closesByNumber()) return;
    keeper_ = start({"--daemon"});
    waitForDaemon();
  }

  void waitForDaemon() {
    ASSERT_TRUE(Eventually([this] { return run("--daemon-self-check").starts_with("reachable=true"); }));
  }

  // Whether a daemon has to see what is posted.
  [[nodiscard]] static bool closesByNumber() { return GetParam().name == kXfce.name || GetParam().name == kDunst.name; }

  void TearDown() override {
    keeper_ = nullptr;
    if (messages_ != nullptr) munmap(messages_, sizeof(MessageCount));
    RealDesktop::TearDown();
  }

  [[nodiscard]] std::unique_ptr<ChildProcess> startCounted(const std::string& mode) const {
    Environment environment = session_->environment();
    environment["LD_PRELOAD"] = HL_MESSAGE_HOLD;
    environment["ASAN_OPTIONS"] = "verify_asan_link_order=0";
    environment[kMessageCountVariable] = countFile_;
    return std::make_unique<ChildProcess>(std::vector<std::string>{HL_PROGRAM, mode}, environment,
                                          session_->directory() + "/interrupted");
  }

  void startServerAgain() {
    server_ = nullptr;
    server_ = session_->startServer(GetParam().command);
    // The new server's numbers begin again, and must not be taken for those that another one has closed.
    if (sender_ != nullptr) {
      EXPECT_THAT(sender_->invoked(), IsEmpty());
    }
    sender_ = std::make_unique<NotificationSender>(session_->environment());
  }

  // With buttons of the application, which no dismissal may press.
  void sendBanners(int count) {
    for (int i = 0; i < count; ++i) {
      const std::string number = std::to_string(++sent_);
      ids_.push_back(sender_->send("Chat " + number, "Ada", "Lunch at " + number + "?",
                                   {"default", "Show", "reply", "Reply", "close", "Close"}));
    }
  }

  // As many banners as at each beginning, of a server that answers.
  void prepare() {
    ids_.clear();
    if (isSpent_) startServerAgain();
    isSpent_ = false;
    sendBanners(kBanners);
    ASSERT_TRUE(Eventually([this] { return targets() == kBanners; })) << run("--self-check");
  }

  void interrupt(Interruption interruption) {
    switch (interruption) {
      case Interruption::stopped:
      case Interruption::paused:
        server_->signal(SIGSTOP);
        break;
      case Interruption::killed:
        server_->signal(SIGKILL);
        isSpent_ = true;
        break;
      case Interruption::replaced:
        server_->signal(SIGKILL);
        (void)server_->wait(seconds(5));
        startServerAgain();
        break;
      case Interruption::changed:
        sender_->close(ids_[1]);
        sendBanners(1);
        break;
    }
  }

  // Interrupts the server once the message is held, and lets it go on. False where the program ends before.
  bool interruptWhenHeld(Interruption interruption, ChildProcess& program) {
    const bool holds =
        Eventually([&] { return messages_->holds || program.wait(milliseconds(0)).has_value(); }, kLongest) &&
        messages_->holds;
    if (holds) interrupt(interruption);
    messages_->mayGoOn = true;
    if (holds && interruption == Interruption::paused) {
      (void)program.wait(milliseconds(30));
      server_->signal(SIGCONT);
    }
    return holds;
  }

  void holdAt(int message) {
    messages_->holdAt = 0;
    messages_->sent = 0;
    messages_->holds = false;
    messages_->mayGoOn = false;
    messages_->holdAt = message;
  }

  // The application hears of no action, and where nothing is said to be left, nothing is.
  void expectHonest(const std::string& answer, Interruption interruption) {
    if (interruption == Interruption::stopped) server_->signal(SIGCONT);
    HLDismissResult result;
    ASSERT_TRUE(HLParseResultString(answer, result)) << answer;
    const bool saysNothingLeft = result.status <= HLDismissStatusNothing && result.remaining == 0;
    const bool isAnotherServer = interruption == Interruption::killed || interruption == Interruption::replaced;
    if (saysNothingLeft && !isAnotherServer) {
      const std::vector<std::uint32_t> shown(ids_.begin(), ids_.begin() + kBanners);
      EXPECT_TRUE(sender_->waitUntilClosed(shown, seconds(5))) << answer;
    }
    if (interruption == Interruption::stopped) {
      EXPECT_NE(result.status, HLDismissStatusNothing) << answer;
    }
    EXPECT_LE(result.dismissed, static_cast<std::int64_t>(ids_.size())) << answer;
    EXPECT_THAT(sender_->invoked(), IsEmpty()) << answer;
    if (!isAnotherServer) closeAll();
  }

  void closeAll() {
    for (std::uint32_t id : ids_) {
      if (!sender_->closed().contains(id)) sender_->close(id);
    }
    ASSERT_TRUE(Eventually([this] { return targets() == 0; })) << run("--self-check");
  }

  // The messages to try: all of so many, or that many of them, others for each interruption.
  [[nodiscard]] static std::vector<int> points(int messages, int sample, std::size_t interruption) {
    std::vector<int> list;
    const bool isEach = std::getenv("HL_EVERY_MESSAGE") != nullptr;
    const int step = isEach ? 1 : std::max(messages / sample, 1);
    for (int at = isEach ? 1 : 1 + static_cast<int>(interruption) * step / 5; at <= messages; at += step) {
      list.push_back(at);
    }
    return list;
  }

  MessageCount* messages_ = nullptr;
  std::unique_ptr<ChildProcess> keeper_;  // the daemon that knows the numbers, undisturbed
  std::string countFile_;
  std::vector<std::uint32_t> ids_;
  int sent_ = 0;
  bool isSpent_ = false;
};

INSTANTIATE_TEST_SUITE_P(Servers, InterruptedDismissal, testing::Values(kMate, kLxqt, kXfce, kDunst),
                         [](const auto& server) { return server.param.name; });

TEST_P(InterruptedDismissal, TellsTheTruthAndEnds) {
  prepare();
  holdAt(0);
  {
    const auto program = startCounted("--dismiss-now");
    ASSERT_EQ(program->wait(kLongest), 0);
    EXPECT_EQ(program->output(), "success|3|0\n");
  }
  const int messages = messages_->sent;
  ASSERT_GT(messages, 5) << "the library does not count";

  int tried = 0;
  std::map<std::string, int> answers;
  for (std::size_t i = 0; i < kInterruptions.size(); ++i) {
    for (int message : points(messages, kInterruptions[i] == Interruption::changed ? 8 : 2, i)) {
      SCOPED_TRACE(std::string(nameOf(kInterruptions[i])) + " at message " + std::to_string(message));
      prepare();
      holdAt(message);
      const auto program = startCounted("--dismiss-now");
      if (interruptWhenHeld(kInterruptions[i], *program)) ++tried;
      ASSERT_EQ(program->wait(kLongest), 0) << "it hangs";
      const std::string answer = program->output();
      ++answers[std::string(nameOf(kInterruptions[i])) + " " + answer.substr(0, answer.find('\n'))];
      expectHonest(answer, kInterruptions[i]);
      if (HasFatalFailure()) return;
    }
  }
  std::cout << messages << " messages, interrupted at " << tried << " points\n";
  for (const auto& [answer, count] : answers) std::cout << "  " << count << " x " << answer << '\n';
  RecordProperty("points", tried);
}

TEST_P(InterruptedDismissal, LeavesNothingBehindInADaemon) {
  keeper_ = nullptr;
  holdAt(0);
  const auto daemon = startCounted("--daemon");
  const std::string folder = "/proc/" + std::to_string(daemon->pid());
  const auto descriptors = [&folder] {
    const std::filesystem::directory_iterator files(folder + "/fd");
    return std::distance(std::filesystem::begin(files), std::filesystem::end(files));
  };
  // Without a bus, so that the daemon is asked.
  Environment outside = session_->environment();
  outside.erase("DBUS_SESSION_BUS_ADDRESS");
  outside["XDG_RUNTIME_DIR"] = session_->directory() + "/home";
  int tried = 0;
  const auto dismissInDaemon = [&](int message, Interruption interruption) {
    prepare();
    holdAt(message);
    ChildProcess client({HL_PROGRAM, "--daemon-dismiss"}, outside, session_->directory() + "/client");
    if (interruptWhenHeld(interruption, client)) ++tried;
    ASSERT_EQ(client.wait(kLongest), 0) << "it hangs";
    expectHonest(client.output(), interruption);
  };
  waitForDaemon();
  dismissInDaemon(0, Interruption::changed);
  const int messages = messages_->sent;
  ASSERT_GT(messages, 5) << "the daemon was not asked, or the library does not count";
  const auto before = descriptors();
  const std::int64_t residentBefore = residentKilobytes(*daemon);
  for (std::size_t i = 0; i < kInterruptions.size(); ++i) {
    for (int message : points(messages, 1, i)) {
      SCOPED_TRACE(std::string(nameOf(kInterruptions[i])) + " at message " + std::to_string(message));
      dismissInDaemon(message, kInterruptions[i]);
      if (HasFatalFailure()) return;
    }
  }
  dismissInDaemon(0, Interruption::changed);
  EXPECT_LE(descriptors(), before);
  if (!kIsSanitized) {
    EXPECT_LE(residentKilobytes(*daemon), residentBefore + 4096);
  }
  std::cout << messages << " messages, interrupted at " << tried << " points; resident before " << residentBefore
            << " kB, after " << residentKilobytes(*daemon) << " kB\n";
}

}  // namespace
