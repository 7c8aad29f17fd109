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

// Returns the capture as a scene, or one line that says why there is none. Unless `keepsTexts`, the texts of
// notifications are replaced. The engine judges the scene like the capture: a scene of which that is not true is not
// returned.
[[nodiscard]] std::variant<HLRecording, std::string> HLRecordingOf(std::unique_ptr<HLCapture> capture, bool keepsTexts,
                                                                   const std::string& program);

// Records what the process that shows notifications shows now into a new file for its user alone, and prints one line.
// Texts are replaced unless "--keep-texts" is among the process's arguments. `program` is name and version of this one.
// Presses nothing. Returns 0, or 1 when there is no file in the end; the reason goes to `err`.
[[nodiscard]] int HLRecordScene(const std::string& path, const std::string& program, std::ostream& out,
                                std::ostream& err);
