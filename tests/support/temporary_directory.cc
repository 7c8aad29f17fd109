#include "tests/support/temporary_directory.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

TemporaryDirectory::TemporaryDirectory() {
  path_ = (std::filesystem::temp_directory_path() / "hushlet-test-XXXXXX").string();
  if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary directory: " + path_);
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

unsigned FileMode(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

std::string FileContent(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
