// A temporary directory for one test, and functions on files.
#pragma once

#include <string>

// Creates an empty directory. Destruction removes it and its content.
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
