// Reading and pressing the on-screen interface of other processes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/element_facts.h"
#include "platform/value.h"

// An accessibility error code; the values are those of macOS on every host.
using HLAXError = std::int32_t;
inline constexpr HLAXError HLAXErrorSuccess = 0;
inline constexpr HLAXError HLAXErrorFailure = -25200;
inline constexpr HLAXError HLAXErrorInvalidElement = -25202;
inline constexpr HLAXError HLAXErrorCannotComplete = -25204;
inline constexpr HLAXError HLAXErrorActionUnsupported = -25206;
inline constexpr HLAXError HLAXErrorNotificationUnsupported = -25207;
inline constexpr HLAXError HLAXErrorNotificationNotRegistered = -25210;
inline constexpr HLAXError HLAXErrorAPIDisabled = -25211;
inline constexpr HLAXError HLAXErrorNoValue = -25212;

// The answer to one read. On success the value may still be missing; on an error it is.
struct HLAttribute {
  HLAXError error = HLAXErrorSuccess;
  HLValue value;
};

struct HLActionList {
  HLAXError error = HLAXErrorSuccess;
  std::vector<std::string> names;  // in the element's own order
};

// An element of another process's UI. Thread-safe. Calls may block until that process responds; a host with a
// timeout returns HLAXErrorCannotComplete after it. Calls return HLAXErrorInvalidElement once the element is destroyed
// or its process exits, and HLAXErrorAPIDisabled while this process is untrusted.
class HLElement {
 public:
  HLElement() = default;
  HLElement(const HLElement&) = delete;
  HLElement& operator=(const HLElement&) = delete;
  virtual ~HLElement() = default;

  [[nodiscard]] virtual HLAttribute copyAttributeValue(std::string_view name) const = 0;

  // Equivalent to reading each attribute of HLElementFacts by name, then the action names; errors read as missing.
  // Override to batch the reads into one round trip.
  [[nodiscard]] virtual HLElementFacts copyFacts() const;

  [[nodiscard]] virtual HLActionList copyActionNames() const = 0;

  // Success means that the request was accepted, not that it had an effect.
  [[nodiscard]] virtual HLAXError performAction(std::string_view action) const = 0;

  // Whether both handles stand for the same node.
  [[nodiscard]] virtual bool isEqual(const HLElement& other) const = 0;

  // Returns the same number for equal handles, in this process.
  [[nodiscard]] virtual std::size_t hash() const = 0;
};

// Hash and equality of elements by the node that their handles represent.
struct HLElementHash {
  std::size_t operator()(const HLElementRef& element) const { return element->hash(); }
};
struct HLElementEqual {
  bool operator()(const HLElementRef& a, const HLElementRef& b) const { return a->isEqual(*b); }
};

// Watches one process. Notifications are delivered on the main thread, while its run loop runs, and only between
// attach() and detach(). Main thread only; destruction detaches.
class HLObserver {
 public:
  HLObserver() = default;
  HLObserver(const HLObserver&) = delete;
  HLObserver& operator=(const HLObserver&) = delete;
  virtual ~HLObserver() = default;

  // Asks for the notification about this element and all below it.
  virtual HLAXError addNotification(const HLElementRef& element, std::string_view notification) = 0;
  virtual HLAXError removeNotification(const HLElementRef& element, std::string_view notification) = 0;
  virtual void attach() = 0;
  virtual void detach() = 0;
};

using HLObserverCallback = std::function<void(const HLElementRef& element, std::string_view notification)>;

class HLAccessibility {
 public:
  HLAccessibility() = default;
  HLAccessibility(const HLAccessibility&) = delete;
  HLAccessibility& operator=(const HLAccessibility&) = delete;
  virtual ~HLAccessibility() = default;

  // Returns whether this process may now read and press other processes' controls. With `prompt`, an untrusted process
  // asks the user without waiting for the answer. Any thread.
  [[nodiscard]] virtual bool isProcessTrusted(bool prompt) = 0;

  // The root element of a process, or nullptr when it cannot be made. Any thread.
  [[nodiscard]] virtual HLElementRef createApplication(std::int32_t pid) = 0;

  // nullptr when the process cannot be watched. Main thread.
  [[nodiscard]] virtual std::unique_ptr<HLObserver> createObserver(std::int32_t pid, HLObserverCallback callback) = 0;

  // Called once by a process that stays in the session, before its first dismissal. A host that can close more after
  // it has seen what was posted starts watching here. Main thread.
  virtual void prepareToStay() {}
};
