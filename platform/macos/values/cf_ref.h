// Ownership of Core Foundation objects in C++.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

// Owns one reference to an object, or none. Copies own a reference each.
template <class T>
class HLCFRef {
 public:
  HLCFRef() = default;
  // Takes over the reference that a function with Create or Copy in its name has given out.
  explicit HLCFRef(T object) : object_(object) {}
  // Takes a reference of its own to what somebody else owns.
  static HLCFRef retaining(T object) {
    if (object != nullptr) CFRetain(object);
    return HLCFRef(object);
  }

  HLCFRef(const HLCFRef& other) : HLCFRef(retaining(other.object_)) {}
  HLCFRef(HLCFRef&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  HLCFRef& operator=(HLCFRef other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~HLCFRef() {
    if (object_ != nullptr) CFRelease(object_);
  }

  // Stays this one's; good for as long as this lives.
  [[nodiscard]] T get() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }

 private:
  T object_ = nullptr;
};
