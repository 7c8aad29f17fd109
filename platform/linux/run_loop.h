// Real time and real threads.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "platform/run_loop.h"

class HLLinuxRunLoop : public HLRunLoop {
 public:
  // Something that the main thread waits for while its loop runs. Main thread only.
  struct Source {
    int descriptor = -1;          // readable when there may be something to take
    std::function<bool()> ready;  // takes what there is; false when nothing will ever come again
  };

  [[nodiscard]] double now() override;
  void sleep(double seconds) override;
  void runFor(double seconds) override;
  [[nodiscard]] std::unique_ptr<HLOperationQueue> makeOperationQueue(const std::string& name,
                                                                     HLQualityOfService quality,
                                                                     int maxConcurrentOperations) override;
  [[nodiscard]] std::unique_ptr<HLSemaphore> makeSemaphore() override;

  // The source's number, to take it out by. Both may be called while sources are served.
  [[nodiscard]] int addSource(Source source);
  void removeSource(int number);

 private:
  void serveSources();

  std::map<int, Source> sources_;
  int nextNumber_ = 0;
};
