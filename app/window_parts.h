// What the setup and settings windows have in common.
#pragma once

#include <string>
#include <utility>

#include "platform/application/windows.h"

inline constexpr double HLRowSpacing = 10;

[[nodiscard]] inline HLWindowDescription HLEmptyWindow(std::string title, double width, double height) {
  constexpr double kSideMargin = 24;
  constexpr double kVerticalMargin = 22;
  return {std::move(title), width, height, kSideMargin, kVerticalMargin, {}, {}};
}
