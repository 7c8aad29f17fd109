// Reads the update server's document, and words the result for the user.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

// The values are logged.
enum QLMUpdateKind : std::int64_t { QLMUpdateUpToDate = 0, QLMUpdateAvailable = 1, QLMUpdateFailed = 3 };

struct QLMUpdateVerdict {
  QLMUpdateKind kind = QLMUpdateFailed;
  std::string version;     // the newest; empty when the check failed
  std::int64_t build = 0;  // the newest; 0 when the check failed
  std::string title;
  std::string message;

  [[nodiscard]] bool offersDownload() const { return kind == QLMUpdateAvailable; }
};

[[nodiscard]] std::string QLMUpdateFeedURL();
[[nodiscard]] std::string QLMDownloadURL();

// Compares the build in `data` with the installed one; versions are only shown. A missing or invalid document gives
// QLMUpdateFailed. Pure; thread-safe.
[[nodiscard]] QLMUpdateVerdict QLMReadUpdateFeed(const std::optional<std::string>& data,
                                                 const std::string& installedVersion, std::int64_t installedBuild);
