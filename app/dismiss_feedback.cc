#include "app/dismiss_feedback.h"

#include <cmath>

#include "base/format.h"

std::string HLBusyTitle(bool isProductFlavor) { return isProductFlavor ? "" : "HL…"; }

std::string HLProgressTitle(bool isProductFlavor, std::int64_t count) {
  if (count < 1) return HLBusyTitle(isProductFlavor);
  return isProductFlavor ? HLFormat("%ld", count) : HLFormat("HL %ld", count);
}

std::int64_t HLElapsedMilliseconds(double seconds) { return std::llround(seconds * 1000); }
