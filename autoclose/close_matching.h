// Closes the alerts whose description contains a text.
#pragma once

#include <iosfwd>
#include <string>

// Presses every target whose description contains the text in any letter case, in up to five passes 0.4 s apart. Prints
// the number of accepted presses. Returns 1 without printing when the text is empty or Notification Center does not
// run, else 0.
[[nodiscard]] int HLCloseMatchingAlerts(const std::string& text, std::ostream& out);
