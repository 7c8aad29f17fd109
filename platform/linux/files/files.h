// Small files that must be whole at every moment.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>

// A descriptor, closed at the end.
class HLDescriptor {
 public:
  explicit HLDescriptor(int number) : number_(number) {}
  HLDescriptor(const HLDescriptor&) = delete;
  HLDescriptor& operator=(const HLDescriptor&) = delete;
  ~HLDescriptor();

  [[nodiscard]] int number() const { return number_; }
  [[nodiscard]] bool isOpen() const { return number_ >= 0; }

 private:
  const int number_;
};

struct HLFileContent {
  int error = 0;        // an errno; ENOENT when there is no file
  std::string content;  // with error 0 only
};

// A regular file of at most 1 MB; never waits for a pipe's other end.
[[nodiscard]] HLFileContent HLReadFile(const std::string& path);

// Makes the directories that lead to the path and are missing, for this user only. 0, or an errno.
[[nodiscard]] int HLMakeDirectories(const std::string& path);

// Puts a file with that content in the place of what is there, a link included, in one step: a crash leaves the one or
// the other. Makes the directories that are missing. 0, or an errno.
[[nodiscard]] int HLWriteFile(const std::string& path, std::string_view content, mode_t mode);
