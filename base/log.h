// The two plain-text logs. Thread-safe: a line is one write to a file opened for appending, so that the lines of
// several threads and processes do not mix.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/format.h"
#include "base/paths.h"

// Appends a line: local time, space, message. Creates a missing file and its directories. Ignores all errors, also a
// missing path, a message that is not UTF-8, and a path of something other than a regular file.
void HLAppendLineToPath(const std::optional<std::string>& path, std::string_view message);

// Appends to the status log: what the user did and what followed.
template <class... Args>
void HLAppendLog(HLFormatString<std::type_identity_t<Args>...> format, const Args&... args) {
  HLAppendLineToPath(HLStatusLogPath(), HLFormat<Args...>(format, args...));
}

// Appends to the diagnostics log: the steps of engine, routing and daemon.
template <class... Args>
void HLAppendDiagnostics(HLFormatString<std::type_identity_t<Args>...> format, const Args&... args) {
  HLAppendLineToPath(HLDiagnosticsLogPath(), HLFormat<Args...>(format, args...));
}
