// Round trips a second to the daemon, beside a server that does nothing but accept, read, write and close.
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "daemon/local_socket.h"
#include "platform/sockets.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kRounds = 31;
constexpr int kRoundTrips = 2000;  // in a round, of each
constexpr std::string_view kReply = "nothing|0|0\n";

double seconds(Clock::duration time) { return std::chrono::duration<double>(time).count(); }

// Connect, ask, read until the end. Whether the reply was the right one.
bool roundTrip(const std::string& path) {
  const HLSocket socket(HLOpenLocalSocket());
  std::string reply;
  return HLConnectLocalSocket(socket.descriptor(), path) && HLWriteSocketRequest(socket.descriptor(), "ping") &&
         HLReadSocketResponse(socket.descriptor(), reply) && reply == kReply;
}

// A process that serves on the path with the least that a server can do.
pid_t startFloor(const std::string& path) {
  const HLSocket listener(HLOpenLocalSocket());
  if (!HLBindLocalSocket(listener.descriptor(), path) || ::listen(listener.descriptor(), 8) != 0) return -1;
  const pid_t pid = ::fork();
  if (pid != 0) return pid;
  for (std::array<char, 1024> request{};;) {
    const int connection = ::accept(listener.descriptor(), nullptr, nullptr);
    if (::read(connection, request.data(), request.size()) > 0) {
      (void)::send(connection, kReply.data(), kReply.size(), MSG_NOSIGNAL);
    }
    ::close(connection);
  }
}

pid_t startDaemon(const std::string& home) {
  ::setenv("HOME", home.c_str(), 1);
  ::unsetenv("HUSHLET_SCENE");
  std::string program = HUSHLET_SIM;
  std::string mode = "--daemon";
  const std::array<char*, 3> arguments = {program.data(), mode.data(), nullptr};
  pid_t pid = -1;
  return ::posix_spawn(&pid, HUSHLET_SIM, nullptr, nullptr, arguments.data(), environ) == 0 ? pid : -1;
}

bool waitUntilServed(const std::string& path) {
  const Clock::time_point deadline = Clock::now() + std::chrono::seconds(15);
  while (!roundTrip(path)) {
    if (Clock::now() > deadline) return false;
    ::usleep(1000);
  }
  return true;
}

// Round trips a second; 0 when one failed.
double rate(const std::string& path) {
  const Clock::time_point begin = Clock::now();
  for (int i = 0; i < kRoundTrips; ++i) {
    if (!roundTrip(path)) return 0;
  }
  return kRoundTrips / seconds(Clock::now() - begin);
}

double median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + std::ssize(values) / 2, values.end());
  return values[values.size() / 2];
}

bool compare(const std::string& floor, const std::string& daemon) {
  std::vector<double> floors;
  std::vector<double> daemons;
  std::vector<double> ratios;
  for (int i = 0; i < kRounds; ++i) {  // in turns, so that a busy moment hits both alike
    floors.push_back(rate(floor));
    daemons.push_back(rate(daemon));
    if (floors.back() == 0 || daemons.back() == 0) return false;
    ratios.push_back(floors.back() / daemons.back());
  }
  std::printf("\n%-52s%14s%12s\n", "one connection for each \"ping\"", "median", "fastest");
  const auto row = [](const char* title, const std::vector<double>& rates) {
    std::printf("%-52s%14.0f%12.0f\n", title, median(rates), *std::max_element(rates.begin(), rates.end()));
  };
  row("accept, read, write, close; round trips a second", floors);
  row("the daemon", daemons);
  std::printf("%-52s%14.2f   aim: at most 1.3\n", "the former / the latter", median(ratios));
  return true;
}

void end(pid_t pid) {
  if (pid <= 0) return;
  ::kill(pid, SIGTERM);
  ::waitpid(pid, nullptr, 0);
}

}  // namespace

int main() {
  std::string home = (std::filesystem::temp_directory_path() / "hushlet-bench-XXXXXX").string();
  if (::mkdtemp(home.data()) == nullptr) return EXIT_FAILURE;
  const std::string floorPath = home + "/floor.sock";
  const std::string daemonPath = home + "/.local/state/hushlet/daemon.sock";
  const pid_t floor = startFloor(floorPath);
  const pid_t daemon = startDaemon(home);
  const bool served = floor > 0 && daemon > 0 && waitUntilServed(floorPath) && waitUntilServed(daemonPath);
  const bool compared = served && compare(floorPath, daemonPath);
  end(floor);
  end(daemon);
  std::filesystem::remove_all(home);
  if (!compared) std::fprintf(stderr, "bench_round_trips: a server did not answer\n");
  return compared ? EXIT_SUCCESS : EXIT_FAILURE;
}
