// A directory of a test's own.
#pragma once

#include <string>

// Made empty under the system's directory for temporary files, removed with everything in it at the end.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory();

  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
};

// The file's permission bits; 0 when there is no such file.
[[nodiscard]] unsigned FileMode(const std::string& path);

// The whole file; "" when there is none.
[[nodiscard]] std::string FileContent(const std::string& path);
