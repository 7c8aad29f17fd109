// HTTP client on QNetworkAccessManager.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/application/http_client.h"

// Needs a running QCoreApplication. Calls `answer` on the main thread, never inside get(). A body over 1 MiB, or one
// shorter than its Content-Length, fails the request. Follows up to five redirections, none to a less safe address.
// Destroying the client drops requests in flight without an answer.
class HLQtHTTPClient : public HLHTTPClient {
 public:
  HLQtHTTPClient();
  ~HLQtHTTPClient() override;

  void get(const std::string& address, double timeout, std::function<void(HLHTTPAnswer)> answer) override;

 private:
  class Requests;
  const std::unique_ptr<Requests> requests_;
};
