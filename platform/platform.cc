#include "platform/platform.h"

#include <cassert>

namespace {
const HLPlatform* installed = nullptr;
}

void HLInstallPlatform(const HLPlatform* platform) { installed = platform; }

const HLPlatform& HLCurrentPlatform() {
  assert(installed != nullptr);
  return *installed;
}
