// The text form of a result: whatever parses is written and parsed again as the same result.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "core/dismissal/result.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  HLDismissResult result{HLDismissStatusFailed, 7, 7};
  if (!HLParseResultString(text, result)) {
    if (result != HLDismissResult{HLDismissStatusFailed, 7, 7}) std::abort();
    return 0;
  }
  HLDismissResult again;
  if (!HLParseResultString(HLResultWireString(result), again) || again != result) std::abort();
  return 0;
}
