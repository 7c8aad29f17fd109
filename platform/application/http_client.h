// Fetching one document over HTTP.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

struct HLHTTPAnswer {
  std::int64_t status = 0;          // 0 when no HTTP answer came
  std::optional<std::string> body;  // nothing when the request failed, as by running out of time
};

class HLHTTPClient {
 public:
  HLHTTPClient() = default;
  HLHTTPClient(const HLHTTPClient&) = delete;
  HLHTTPClient& operator=(const HLHTTPClient&) = delete;
  virtual ~HLHTTPClient() = default;

  // One GET in a session of its own: no cache, cookies or credentials are kept or used. Answers once, on any thread,
  // after that many seconds at the latest. Several requests may be under way. Main thread.
  virtual void get(const std::string& address, double timeout, std::function<void(HLHTTPAnswer)> answer) = 0;
};
