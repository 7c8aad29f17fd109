// From a scene's text to a scene.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include "platform/sim/scene/scene.h"

// The scene, or in one line what is wrong with it and where: "NAME: applications[0].windows[1].frame: expected four
// numbers". Nothing is half read.
[[nodiscard]] std::variant<std::unique_ptr<const HLScene>, std::string> HLReadScene(std::string_view text,
                                                                                    const std::string& name);

// One line, whatever names, titles and keys the scene uses.
[[nodiscard]] std::string HLOneLine(std::string_view text);
