// What a host can tell, for a report to a person, of itself and of the program that shows notifications.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Texts that are not known are "".
struct HLServerVersion {
  std::string name;
  std::string vendor;
  std::string version;
  std::string bundle = {};  // the path of the process's bundle, with the home folder as "~"
};

// An attribute by which a host may say why an element that looks like a close control is not taken for one: a short
// text of the host's own, without texts of notifications. The engine does not read it.
inline constexpr std::string_view HLDoubtAttributeName = "HLCloseDoubt";

// An element of an interface in the host's own words, before it is mapped to those of the engine.
struct HLRawElement {
  int depth = 0;
  std::string role;
  std::string name;
  std::string description;
  std::string details;        // what else is known of it, without texts of notifications
  bool isHostsWords = false;  // name and description are words by which the host judges the element, and stay readable
};

// Returns the element as a line: its depth as blanks, role, name and description, and the details.
[[nodiscard]] std::string HLRawElementLine(const HLRawElement& element);

class HLHostReport {
 public:
  HLHostReport() = default;
  HLHostReport(const HLHostReport&) = delete;
  HLHostReport& operator=(const HLHostReport&) = delete;
  virtual ~HLHostReport() = default;

  // Returns name and version of the operating system. Any thread.
  [[nodiscard]] virtual std::string systemVersion() = 0;

  // Returns the path of this program's bundle, with the home folder as "~"; "" where programs have no bundles. Any
  // thread.
  [[nodiscard]] virtual std::string programBundle() { return ""; }

  // Returns what the program that shows notifications says of itself. May block. Any thread.
  [[nodiscard]] virtual HLServerVersion serverVersion(std::int32_t pid) = 0;

  // Returns the process's interface, parents before their children; empty where the host maps nothing. May block. Any
  // thread.
  [[nodiscard]] virtual std::vector<HLRawElement> rawElements(std::int32_t pid) = 0;
};
