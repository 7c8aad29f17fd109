// Real time and real threads.
#pragma once

#include <memory>
#include <string>

#include "platform/run_loop.h"

class HLLinuxRunLoop : public HLRunLoop {
 public:
  [[nodiscard]] double now() override;
  void sleep(double seconds) override;
  void runFor(double seconds) override;
  [[nodiscard]] std::unique_ptr<HLOperationQueue> makeOperationQueue(const std::string& name,
                                                                     HLQualityOfService quality,
                                                                     int maxConcurrentOperations) override;
  [[nodiscard]] std::unique_ptr<HLSemaphore> makeSemaphore() override;
};
