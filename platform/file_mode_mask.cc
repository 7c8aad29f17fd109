#include "platform/file_mode_mask.h"

#include <sys/stat.h>

#include <optional>

namespace {
std::optional<mode_t> original;
}

void HLRestrictFileModeMask() { original = ::umask(077); }

void HLRestoreFileModeMask() {
  if (original) ::umask(*original);
}
