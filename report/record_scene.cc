#include "report/record_scene.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <ostream>
#include <string_view>

#include "base/format.h"
#include "base/terminal.h"
#include "platform/text.h"
#include "report/arguments.h"
#include "report/json_text.h"
#include "report/judgement.h"
#include "report/masked_capture.h"
#include "report/scene_document.h"

namespace {

std::string systemMessage() { return std::strerror(errno); }

// Returns the reason if not everything could be written.
std::optional<std::string> writeAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(file, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return systemMessage();
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  if (::fsync(file) != 0 && errno != EINVAL) return systemMessage();
  return std::nullopt;
}

// Gives the finished draft its name; returns the reason if that fails or the name exists. link() never replaces a file.
// Where the file system has no links, O_EXCL creates an empty file of that name, which rename() replaces.
std::optional<std::string> publish(const std::string& draft, const std::string& path) {
  if (::link(draft.c_str(), path.c_str()) == 0) return std::nullopt;
  if (errno == EEXIST) return systemMessage();
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (file < 0) return systemMessage();
  ::close(file);
  if (::rename(draft.c_str(), path.c_str()) == 0) return std::nullopt;
  std::string mistake = systemMessage();
  ::unlink(path.c_str());
  return mistake;
}

// Creates the file with mode 0600 and its whole content; returns the reason if that fails. Leaves no partial file, and
// an existing file as it is.
std::optional<std::string> createFile(const std::string& path, std::string_view text) {
  std::signal(SIGXFSZ, SIG_IGN);  // beyond the file size limit a write then fails, and does not end the process
  std::string draft = path.substr(0, path.rfind('/') + 1) + ".hushlet-XXXXXX";
  const int file = ::mkstemp(draft.data());
  if (file < 0) return systemMessage();
  std::optional<std::string> mistake = writeAll(file, text);
  if (::close(file) != 0 && !mistake) mistake = systemMessage();
  if (!mistake) mistake = publish(draft, path);
  ::unlink(draft.c_str());
  return mistake;
}

// Without the application, which is no element of a scene.
std::size_t elementsOf(const HLCapture& capture) {
  return capture.elements.size() - std::min<std::size_t>(1, capture.elements.size());
}

}  // namespace

std::variant<HLRecording, std::string> HLRecordingOf(std::unique_ptr<HLCapture> capture, HLTexts texts,
                                                     const std::string& program) {
  if (texts == HLTexts::replaced) capture = HLMaskedCapture(*capture, HLJudgeCapture(*capture));
  if (capture == nullptr) return "with its texts replaced it would be judged otherwise; --keep-texts keeps them";
  const HLJudgement judgement = HLJudgeCapture(*capture);
  const HLRecordedScene scene = HLSceneOfCapture(*capture, judgement, program);
  HLRecording recording{HLJsonText(scene.document), elementsOf(*capture)};
  const std::unique_ptr<HLCapture> again = HLCaptureOfScene(recording.scene);
  if (again == nullptr) return "the recording cannot be read again: it is no valid JSON, or is nested too deep";
  if (elementsOf(*again) != recording.elements) {
    return HLFormat("only %lu of %lu elements of the recording can be read again", elementsOf(*again),
                    recording.elements);
  }
  if (HLOutlineOf(*again, HLJudgeCapture(*again)) != HLOutlineOf(*capture, judgement, scene.order)) {
    return "the recording would be judged otherwise than the screen";
  }
  return recording;
}

int HLRecordScene(const std::string& path, const std::string& program, std::ostream& out, std::ostream& err) {
  const auto fail = [&err, &path](const std::string& reason) {
    err << "hushlet: " << HLVisibleText(HLEncodableText(path)) << (path.empty() ? "" : ": ")
        << "not recorded: " << reason << '\n';
    return EXIT_FAILURE;
  };
  if (path.empty() || path.starts_with("--")) return fail("a path is expected");
  const std::string unknown = HLUnknownArgument({"--record-scene", path, "--keep-texts"});
  if (!unknown.empty()) return fail(unknown + ": --record-scene takes a path and --keep-texts");
  const bool keepsTexts = HLHasArgument("--keep-texts");
  const HLTexts texts = keepsTexts ? HLTexts::kept : HLTexts::replaced;
  const auto recorded = HLRecordingOf(HLCaptureScreen(), texts, program);
  if (const auto* reason = std::get_if<std::string>(&recorded)) return fail(*reason);
  const auto& recording = std::get<HLRecording>(recorded);
  if (const auto mistake = createFile(path, recording.scene)) return fail(*mistake);
  out << HLVisibleText(HLEncodableText(path)) << ": " << recording.elements << " elements, texts "
      << (keepsTexts ? "kept" : "replaced") << '\n';
  return EXIT_SUCCESS;
}
