#include "platform/linux/files/linux_user_defaults.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "platform/linux/files/base_directories.h"
#include "platform/linux/files/files.h"

namespace {

constexpr int kMostLinks = 40;  // the kernel's own bound

// What the file's name leads to, be it there or not: that is what gets replaced.
std::string withoutLinks(const std::string& path) {
  std::filesystem::path file = path;
  for (int i = 0; i < kMostLinks; ++i) {
    std::error_code error;
    const std::filesystem::path target = std::filesystem::read_symlink(file, error);
    if (error) break;
    file = file.parent_path() / target;
  }
  return file.string();
}

// Keeps other processes of this program from the directory between a read and the write that follows. After the timeout
// the write goes on without the lock: at worst, another process's change of another key is lost.
class DirectoryLock {
 public:
  DirectoryLock(const std::string& file, std::chrono::milliseconds timeout)
      : directory_(open(std::filesystem::path(file).parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    constexpr int kPause = 2;  // milliseconds
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (directory_.isOpen() && flock(directory_.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK &&
           std::chrono::steady_clock::now() < deadline) {
      poll(nullptr, 0, kPause);
    }
  }

 private:
  const HLDescriptor directory_;
};

std::string freeNameFor(const std::string& file) {
  std::string name = file + ".damaged";
  for (int i = 2; access(name.c_str(), F_OK) == 0; ++i) name = file + ".damaged-" + std::to_string(i);
  return name;
}

std::optional<HLJsonDocument> jsonOf(const HLValue& value) {
  if (const bool* truth = value.as<bool>()) return *truth;
  if (const std::int64_t* integer = value.as<std::int64_t>()) return *integer;
  if (const double* real = value.as<double>()) return *real;
  if (const std::string* text = value.as<std::string>()) return *text;
  return std::nullopt;
}

}  // namespace

std::string HLUserDefaultsPath(HLProcessInfo& process) {
  return HLConfigHome(process) + "/" + process.bundleIdentifier().value_or("dismiss") + "/defaults.json";
}

void HLLinuxUserDefaults::registerDefaults(const HLDictionary& defaults) {
  for (const HLDictionaryEntry& entry : defaults) {
    std::erase_if(registered_, [&entry](const HLDictionaryEntry& other) { return other.key == entry.key; });
    registered_.push_back(entry);
  }
}

HLValue HLLinuxUserDefaults::value(std::string_view key) {
  if (!hasRead_) {
    const DirectoryLock lock(withoutLinks(path_), lockTimeout_);
    (void)read();
  }
  for (const HLJsonDocument* document : {&unstored_, &stored_}) {
    const auto found = document->find(key);
    if (found != document->end() && !found->is_null()) return HLValueOfJson(*found);
  }
  const HLValue* fallback = HLDictionaryValue(registered_, key);
  return fallback == nullptr ? HLValue() : *fallback;
}

void HLLinuxUserDefaults::setValue(std::string_view key, const HLValue& value) {
  std::optional<HLJsonDocument> json = jsonOf(value);
  if (!json) return;
  unstored_[std::string(key)] = std::move(*json);
  store();
}

bool HLLinuxUserDefaults::read() {
  hasRead_ = true;
  const std::string file = withoutLinks(path_);
  const HLFileContent read = HLReadFile(file);
  if (read.error == ENOENT || read.error == ENOTDIR) {
    stored_ = HLJsonDocument::object();
    return true;
  }
  if (read.error != 0) {
    complain("the preferences in " + file + " cannot be read: " + std::strerror(read.error));
    return false;
  }
  std::optional<HLJsonDocument> document = HLJsonDocumentOf(read.content);
  const bool isWhole = document && document->is_object();
  stored_ = isWhole ? std::move(*document) : HLJsonDocument::object();
  if (!isWhole) setAside(file);
  return true;
}

void HLLinuxUserDefaults::setAside(const std::string& file) {
  const std::string name = freeNameFor(file);
  if (std::rename(file.c_str(), name.c_str()) == 0) {
    complain("the preferences in " + file + " are damaged and have been put aside as " + name);
  } else {
    complain("the preferences in " + file + " are damaged and cannot be put aside: " + std::strerror(errno));
  }
}

void HLLinuxUserDefaults::store() {
  const std::string file = withoutLinks(path_);
  (void)HLMakeDirectories(file);  // so that there is something to lock; what fails is told of by the writing
  const DirectoryLock lock(file, lockTimeout_);
  if (!read()) return;
  HLJsonDocument document = stored_;
  document.update(unstored_);
  constexpr int kIndent = 2;
  const std::string text = document.dump(kIndent, ' ', false, HLJsonDocument::error_handler_t::replace) + "\n";
  if (const int error = HLWriteFile(file, text, 0600)) {
    return complain("the preferences cannot be stored in " + file + ": " + std::strerror(error));
  }
  stored_ = std::move(document);
  unstored_ = HLJsonDocument::object();
}

void HLLinuxUserDefaults::complain(const std::string& problem) {
  if (problem == lastComplaint_) return;
  lastComplaint_ = problem;
  std::fprintf(stderr, "hushlet: %s\n", problem.c_str());
}
