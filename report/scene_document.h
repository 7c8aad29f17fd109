// A capture as a scene that the simulator runs, and back.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/value.h"
#include "report/capture.h"
#include "report/judgement.h"

// An attribute of the last window: the elements that are nested too deep for JSON parsers. Lists refer to them by id.
inline constexpr std::string_view HLSceneDeepAttribute = "HLRecordedBelow";

// Returns the key that a scene has for one of HLTextAttributes or HLChildAttributes: "role" for "AXRole".
[[nodiscard]] std::string HLSceneKey(std::string_view attribute);

struct HLRecordedScene {
  HLValue document;
  std::vector<int> order;  // for each element of the capture, its position in the document
};

// Returns the scene. The controls that the judgement would press, and those that have an action for closing, close the
// nearest notification at or above them. `program` is the recording program's name and version.
[[nodiscard]] HLRecordedScene HLSceneOfCapture(const HLCapture& capture, const HLJudgement& judgement,
                                               const std::string& program);

// Reads trust and elements of a scene that HLSceneOfCapture wrote; ignores keys that it never writes. Returns the
// capture, its elements in the order of the document, or nullptr if the text is not JSON or nested too deep for the
// host.
[[nodiscard]] std::unique_ptr<HLCapture> HLCaptureOfScene(std::string_view text);
