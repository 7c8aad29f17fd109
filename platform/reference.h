// A reference that can be rebound, as a member of a record that is to be copied.
#pragma once

// Never null; does not own its target.
template <class T>
class HLReference {
 public:
  HLReference(T& target) : target_(&target) {}

  operator T&() const { return *target_; }
  T* operator->() const { return target_; }

 private:
  T* target_;
};
