// The two plain-text logs. Appending never fails its caller and takes no lock: a line is one write to a file opened for
// appending, so that lines of many threads and processes come out whole. Any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/format.h"
#include "base/paths.h"

// Adds a line: the local time, a blank, the message. Does nothing without a path, or when the message cannot be
// encoded.
void HLAppendLineToPath(const std::optional<std::string>& path, std::string_view message);

// The status log: what the user did and what came of it.
template <class... Args>
void HLAppendLog(HLFormatString<std::type_identity_t<Args>...> format, const Args&... args) {
  HLAppendLineToPath(HLStatusLogPath(), HLFormat<Args...>(format, args...));
}

// The diagnostics log: the inner life of engine, routing and daemon.
template <class... Args>
void HLAppendDiagnostics(HLFormatString<std::type_identity_t<Args>...> format, const Args&... args) {
  HLAppendLineToPath(HLDiagnosticsLogPath(), HLFormat<Args...>(format, args...));
}
