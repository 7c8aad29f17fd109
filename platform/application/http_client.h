// HTTP GET.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

struct HLHTTPAnswer {
  std::int64_t status = 0;          // 0 without an HTTP response
  std::optional<std::string> body;  // nullopt if the request failed, for example by the timeout
};

class HLHTTPClient {
 public:
  HLHTTPClient() = default;
  HLHTTPClient(const HLHTTPClient&) = delete;
  HLHTTPClient& operator=(const HLHTTPClient&) = delete;
  virtual ~HLHTTPClient() = default;

  // Starts one GET in its own session, without cache, cookies or credentials. Calls `answer` once, on any thread, after
  // at most `timeout` seconds. Several requests may be in flight. Main thread only.
  virtual void get(const std::string& address, double timeout, std::function<void(HLHTTPAnswer)> answer) = 0;
};
