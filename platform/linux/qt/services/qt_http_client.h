// HTTP by Qt.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/application/http_client.h"

// Needs a QCoreApplication, whose loop serves it; answers on the main thread, never from within get(). A body of more
// than 1 MiB, or one that is shorter than its Content-Length, is a failed request. Redirections are followed five
// times, and never to an address that is less safe. Requests that are under way at the end are never answered.
class HLQtHTTPClient : public HLHTTPClient {
 public:
  HLQtHTTPClient();
  ~HLQtHTTPClient() override;

  void get(const std::string& address, double timeout, std::function<void(HLHTTPAnswer)> answer) override;

 private:
  class Requests;
  const std::unique_ptr<Requests> requests_;
};
