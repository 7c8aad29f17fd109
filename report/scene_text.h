// A capture as a scene that the simulator runs.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/value.h"
#include "report/capture.h"
#include "report/judgement.h"

// Names of the scene's keys and of attributes, in the order in which elements are met: by the writer and by the reader.
struct HLSceneListKey {
  std::string_view key;
  std::string_view attribute;
};
inline constexpr std::array<HLSceneListKey, 3> HLSceneListKeys = {
    {{"children", "AXChildren"}, {"rows", "AXRows"}, {"visibleChildren", "AXVisibleChildren"}}};
struct HLSceneTextKey {
  std::string_view key;
  std::string_view attribute;
};
inline constexpr std::array<HLSceneTextKey, 7> HLSceneTextKeys = {{{"role", "AXRole"},
                                                                   {"subrole", "AXSubrole"},
                                                                   {"roleDescription", "AXRoleDescription"},
                                                                   {"title", "AXTitle"},
                                                                   {"description", "AXDescription"},
                                                                   {"value", "AXValue"},
                                                                   {"identifier", "AXIdentifier"}}};

// The attribute, of the last window, that holds the elements whose nesting would be too deep for JSON; lists refer to
// them.
inline constexpr std::string_view HLSceneDeepAttribute = "HLRecordedBelow";

// What a recording says of itself.
struct HLRecordingNote {
  std::string program;  // name and version
  bool keepsTexts = false;
};

struct HLRecordedScene {
  HLValue document;
  std::vector<int> order;  // for each element of the capture, its place among those of the document
};

// Returns the scene. The controls that the judgement would press, and those that have an action for closing, close the
// nearest notification at or above them.
[[nodiscard]] HLRecordedScene HLSceneOfCapture(const HLCapture& capture, const HLJudgement& judgement,
                                               const HLRecordingNote& note);

// Returns the capture that a scene of HLSceneOfCapture comes to, its elements in the order of the document; nullptr
// when the text is no such scene.
[[nodiscard]] std::unique_ptr<HLCapture> HLCaptureOfScene(std::string_view text);
