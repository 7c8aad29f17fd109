// The user's preferences in a JSON file.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "platform/application/user_defaults.h"
#include "platform/linux/text/json_document.h"
#include "platform/process_info.h"

// Where they stand: the folder of the bundle in the user's configuration directory, "defaults.json".
[[nodiscard]] std::string HLUserDefaultsPath(HLProcessInfo& process);

// Read when first asked for, and again before each change, so that several processes can each change keys of their own.
// The file's other keys stay as they are. A file that holds no JSON object is renamed to PATH.damaged; what cannot be
// read or stored holds for this process. Either is told on standard error, once.
class HLLinuxUserDefaults : public HLUserDefaults {
 public:
  // The file may be a link, which stays one. Neither it nor its directories need exist. A change waits up to
  // `lockTimeout` for another process that is changing the file.
  explicit HLLinuxUserDefaults(std::string path, std::chrono::milliseconds lockTimeout = std::chrono::seconds(5))
      : path_(std::move(path)), lockTimeout_(lockTimeout) {}

  void registerDefaults(const HLDictionary& defaults) override;
  [[nodiscard]] HLValue value(std::string_view key) override;
  void setValue(std::string_view key, const HLValue& value) override;

 private:
  // Nothing of the file's when it cannot be read.
  [[nodiscard]] bool read();
  void setAside(const std::string& file);
  void store();
  void complain(const std::string& problem);

  const std::string path_;
  const std::chrono::milliseconds lockTimeout_;
  HLDictionary registered_;
  bool hasRead_ = false;
  HLJsonDocument stored_ = HLJsonDocument::object();
  HLJsonDocument unstored_ = HLJsonDocument::object();  // set by this process and not in the file yet
  std::string lastComplaint_;
};
