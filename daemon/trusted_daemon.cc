#include "daemon/trusted_daemon.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <optional>
#include <string>

#include "base/log.h"
#include "base/paths.h"
#include "core/dismissal/dismiss_run.h"
#include "core/dismissal/launch_context.h"
#include "core/dismissal/result.h"
#include "core/scan/element_access.h"
#include "daemon/local_socket.h"

namespace {

constexpr int kBacklog = 8;
constexpr mode_t kSocketMode = 0600;  // who may open the file may ask: there is no other check of a caller

HLDismissResult trustReport() {
  return {HLIsAccessibilityTrusted(false) ? HLDismissStatusNothing : HLDismissStatusAccessDenied, 0, 0};
}

HLDismissResult answer(const std::string& command) {
  if (command == "dismiss") return HLDismissNotificationsNow();
  if (command == "self-check" || command == "ping") return trustReport();
  if (command == "quit-daemon") return {HLDismissStatusSuccess, 0, 0};
  return {HLDismissStatusFailed, 0, 0};
}

// Serves one connection; whether the daemon goes on.
bool serve(int connection) {
  const HLSocket client(connection);
  ::fcntl(connection, F_SETFD, FD_CLOEXEC);
  const std::string command = HLReadClientLine(connection);
  HLWriteClientLine(connection, HLResultWireString(answer(command)));
  return command != "quit-daemon";
}

bool startListening(int listener, const std::string& path) {
  if (!HLBindLocalSocket(listener, path)) return false;
  ::chmod(path.c_str(), kSocketMode);
  if (::listen(listener, kBacklog) == 0) return true;
  ::unlink(path.c_str());
  return false;
}

}  // namespace

int HLRunTrustedDaemon() {
  std::signal(SIGHUP, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
  HLEnsureStateDirectory();
  const std::optional<std::string> path = HLLocalSocketPath();
  if (!path) return EXIT_FAILURE;
  ::unlink(path->c_str());  // left behind by a daemon that was killed

  const HLSocket listener(HLOpenLocalSocket());
  if (!listener.isOpen() || !startListening(listener.descriptor(), *path)) return EXIT_FAILURE;
  HLAppendDiagnostics("trusted daemon starting trusted=%@ %@", HLIsAccessibilityTrusted(false),
                      HLLaunchContextSummary());

  for (bool serving = true; serving;) {
    const int connection = ::accept(listener.descriptor(), nullptr, nullptr);
    if (connection >= 0) serving = serve(connection);
  }
  ::unlink(path->c_str());
  return EXIT_SUCCESS;
}
