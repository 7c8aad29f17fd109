// A platform on which a single call fails, as calls to other processes do.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

#include "platform/accessibility.h"

// Counts the calls that ask something of another process, and makes one of them fail. Any thread.
class Faults {
 public:
  // The call with that number, 1 first, gives the code and has no effect. 0 lets all pass.
  Faults(std::int64_t call, HLAXError code) : call_(call), code_(code) {}

  // The code that this call is to give; success lets it pass.
  [[nodiscard]] HLAXError next() { return ++calls_ == call_ ? code_ : HLAXErrorSuccess; }
  [[nodiscard]] std::int64_t calls() const { return calls_; }

 private:
  const std::int64_t call_;
  const HLAXError code_;
  std::atomic<std::int64_t> calls_ = 0;
};

// Passes everything on to another platform's accessibility, save the call that fails. Handles keep their identity: one
// of the other platform's is one of this one's.
class FaultyAccessibility : public HLAccessibility {
 public:
  FaultyAccessibility(HLAccessibility& inner, Faults& faults) : inner_(inner), faults_(faults) {}

  // A failure reads as: not trusted.
  [[nodiscard]] bool isProcessTrusted(bool prompt) override;
  // A failure gives nothing.
  [[nodiscard]] HLElementRef createApplication(std::int32_t pid) override;
  [[nodiscard]] std::unique_ptr<HLObserver> createObserver(std::int32_t pid, HLObserverCallback callback) override;

  [[nodiscard]] HLElementRef wrapped(const HLElementRef& element);
  [[nodiscard]] HLValue wrapped(const HLValue& value);
  [[nodiscard]] HLAXError nextFault() { return faults_.next(); }

 private:
  HLAccessibility& inner_;
  Faults& faults_;
  std::mutex mutex_;
  std::map<HLElementRef, HLElementRef> wrappers_;
};
