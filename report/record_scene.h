// The mode that records the screen as a scene.
#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <variant>

#include "report/capture.h"

struct HLRecording {
  std::string scene;  // JSON
  std::size_t elements = 0;
};

// Returns the capture as a scene that the engine judges the same, or one line that says why there is none. `program` is
// the name and version of this program.
[[nodiscard]] std::variant<HLRecording, std::string> HLRecordingOf(std::unique_ptr<HLCapture> capture, HLTexts texts,
                                                                   const std::string& program);

// Records what is on screen into a new file for its user alone, and prints one line. Presses nothing. Texts are
// replaced unless "--keep-texts" is among the process's arguments. Returns 0, or 1 with the reason on `err` if there is
// no file.
[[nodiscard]] int HLRecordScene(const std::string& path, const std::string& program, std::ostream& out,
                                std::ostream& err);
