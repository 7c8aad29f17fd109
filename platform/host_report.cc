#include "platform/host_report.h"

#include <cstddef>

std::string HLRawElementLine(const HLRawElement& element) {
  std::string line(static_cast<std::size_t>(2 * element.depth), ' ');
  line += element.role + " '" + element.name + "'";
  if (!element.description.empty()) line += " / '" + element.description + "'";
  return line + element.details;
}
