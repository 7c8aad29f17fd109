#include "daemon/trusted_daemon.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

#include "base/log.h"
#include "base/paths.h"
#include "core/dismissal/dismiss_run.h"
#include "core/dismissal/launch_context.h"
#include "core/dismissal/result.h"
#include "core/scan/element_access.h"
#include "daemon/local_socket.h"
#include "platform/accessibility.h"
#include "platform/platform.h"
#include "platform/sockets.h"

namespace {

constexpr int kBacklog = 8;
constexpr mode_t kSocketMode = 0600;  // the only access check

HLDismissResult trustReport() {
  return {HLIsAccessibilityTrusted(false) ? HLDismissStatusNothing : HLDismissStatusAccessDenied, 0, 0};
}

HLDismissResult answer(const std::string& command) {
  if (command == "dismiss") return HLDismissNotificationsNow();
  if (command == "self-check" || command == "ping") return trustReport();
  if (command == "quit-daemon") return {HLDismissStatusSuccess, 0, 0};
  return {HLDismissStatusFailed, 0, 0};
}

// Serves one connection. Returns false after "quit-daemon".
bool serve(int connection) {
  const HLSocket client(connection);
  ::fcntl(connection, F_SETFD, FD_CLOEXEC);
  const std::string command = HLReadClientLine(connection);
  HLWriteClientLine(connection, HLResultWireString(answer(command)));
  return command != "quit-daemon";
}

using FileIdentity = std::pair<dev_t, ino_t>;

// Returns nullopt if the path is longer than a socket address, since the file then has a shorter name.
std::optional<FileIdentity> identityOf(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return std::nullopt;
  return FileIdentity(status.st_dev, status.st_ino);
}

// Removes the socket file unless a later daemon has replaced it by its own.
void removeOwnFile(const std::string& path, const std::optional<FileIdentity>& own) {
  if (own && identityOf(path) == own) ::unlink(path.c_str());
}

}  // namespace

int HLRunTrustedDaemon() {
  std::signal(SIGHUP, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
  HLEnsureStateDirectory();
  const std::optional<std::string> path = HLLocalSocketPath();
  if (!path) return EXIT_FAILURE;
  ::unlink(path->c_str());  // left behind by a daemon that was killed

  std::optional<HLSocket> listener(HLOpenLocalSocket());
  if (!listener->isOpen() || !HLBindLocalSocket(listener->descriptor(), *path)) return EXIT_FAILURE;
  const std::optional<FileIdentity> own = identityOf(*path);
  ::chmod(path->c_str(), kSocketMode);
  if (::listen(listener->descriptor(), kBacklog) != 0) {
    removeOwnFile(*path, own);
    return EXIT_FAILURE;
  }
  HLAppendDiagnostics("trusted daemon starting trusted=%@ %@", HLIsAccessibilityTrusted(false),
                      HLLaunchContextSummary());

  HLCurrentPlatform().accessibility->prepareToStay();
  for (bool serving = true; serving;) {
    const int connection = ::accept(listener->descriptor(), nullptr, nullptr);
    if (connection >= 0) serving = serve(connection);
  }
  // Once the listener is closed, the system may give its inode number to the file of a later daemon.
  const bool isReplaced = identityOf(*path) != own;
  listener.reset();
  if (!isReplaced) removeOwnFile(*path, own);
  return EXIT_SUCCESS;
}
