// Whether there is a newer build: what the update server's document says, and what the user is told of it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

inline constexpr std::int64_t QLMUpdateUpToDate = 0;
inline constexpr std::int64_t QLMUpdateAvailable = 1;
inline constexpr std::int64_t QLMUpdateFailed = 3;

struct QLMUpdateVerdict {
  std::int64_t kind = QLMUpdateFailed;
  std::string version;     // the newest; empty when the check failed
  std::int64_t build = 0;  // the newest; 0 when the check failed
  std::string title;
  std::string message;

  [[nodiscard]] bool offersDownload() const { return kind == QLMUpdateAvailable; }
};

[[nodiscard]] std::string QLMUpdateFeedURL();
[[nodiscard]] std::string QLMDownloadURL();

// Judges the document, or the want of one. Build numbers are compared, versions only shown. Pure; any thread.
[[nodiscard]] QLMUpdateVerdict QLMReadUpdateFeed(const std::optional<std::string>& data,
                                                 const std::string& installedVersion, std::int64_t installedBuild);
