// Reads a scene from its text.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include "platform/sim/scene/scene.h"

// Returns the scene, or one line with its first mistake: "NAME: applications[0].windows[1].frame: expected four
// numbers".
[[nodiscard]] std::variant<std::unique_ptr<const HLScene>, std::string> HLReadScene(std::string_view text,
                                                                                    const std::string& name);

// Escapes control characters, so that the text is one line.
[[nodiscard]] std::string HLOneLine(std::string_view text);
