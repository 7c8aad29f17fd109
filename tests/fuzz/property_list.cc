// Property lists: what the platform's library makes of any bytes can be copied out of it.
#include <cstddef>
#include <cstdint>

#include "platform/linux/files/linux_property_lists.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  (void)HLParsePropertyList(std::string_view(reinterpret_cast<const char*>(data), size));
  return 0;
}
