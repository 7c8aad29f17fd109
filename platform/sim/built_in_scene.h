// scenes/evening.json, put into the program when it is built.
#pragma once

#include <string_view>

extern const std::string_view HLBuiltInScene;
