// HTTP through URL sessions.
#pragma once

#include <functional>
#include <string>

#include "platform/application/http_client.h"

class HLMacHTTPClient : public HLHTTPClient {
 public:
  void get(const std::string& address, double timeout, std::function<void(HLHTTPAnswer)> answer) override;
};
