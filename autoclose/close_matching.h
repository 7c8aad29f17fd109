// Closing, once, every alert that says something.
#pragma once

#include <iosfwd>
#include <string>

// Presses every target whose description holds the text in any letter case, in up to five passes 0.4 s apart, and
// prints how many presses were taken. Returns 1 and prints nothing without a text or a Notification Center, else 0.
[[nodiscard]] int HLCloseMatchingAlerts(const std::string& text, std::ostream& out);
