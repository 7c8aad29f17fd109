#include "platform/sim/services/picture.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/geometry.h"
#include "platform/text.h"

namespace {

// What one character stands for, in points.
constexpr double kCellWidth = 14;
constexpr double kCellHeight = 20;
constexpr HLSize kSmallestScreen = {1440, 240};
// A screen that reaches further is cut.
constexpr int kMostColumns = 160;
constexpr int kMostRows = 60;
// Anything lower is no box, but text in a place.
constexpr int kLowestBox = 3;

struct Box {
  int left = 0;
  int top = 0;
  int right = 0;  // the column after the last
  int bottom = 0;
  bool operator==(const Box&) const = default;

  [[nodiscard]] int width() const { return right - left; }
  [[nodiscard]] int height() const { return bottom - top; }
};

std::vector<std::string> characters(std::string_view text) {
  const std::string encodable = HLEncodableText(text);
  std::vector<std::string> found;
  for (std::size_t position = 0; position < encodable.size();) {
    const std::size_t start = position;
    const char32_t codePoint = HLNextCodePoint(encodable, position);
    found.push_back(codePoint < 0x20 || codePoint == 0x7F ? " " : encodable.substr(start, position - start));
  }
  return found;
}

// The text in lines of that many characters at most, broken between words where there are any; what does not fit ends
// in an ellipsis.
std::vector<std::vector<std::string>> wrapped(std::string_view text, int width, int height) {
  std::vector<std::vector<std::string>> lines;
  const auto most = static_cast<std::size_t>(std::max(width, 0));
  std::vector<std::string> left = characters(text);
  while (!left.empty() && most > 0 && lines.size() < static_cast<std::size_t>(std::max(height, 0))) {
    std::size_t end = std::min(most, left.size());
    const bool isLast = lines.size() + 1 == static_cast<std::size_t>(height);
    if (end < left.size() && !isLast) {
      const auto blank = std::find(left.rend() - static_cast<std::ptrdiff_t>(end) - 1, left.rend(), " ");
      if (blank != left.rend()) end = static_cast<std::size_t>(left.rend() - blank) - 1;
    }
    std::vector<std::string> line(left.begin(), left.begin() + static_cast<std::ptrdiff_t>(end));
    if (end < left.size() && isLast) line.back() = "…";
    lines.push_back(std::move(line));
    while (end < left.size() && left[end] == " ") ++end;
    left.erase(left.begin(), left.begin() + static_cast<std::ptrdiff_t>(end));
  }
  return lines;
}

class Canvas {
 public:
  Canvas(int columns, int rows)
      : cells_(static_cast<std::size_t>(rows), std::vector<std::string>(static_cast<std::size_t>(columns), " ")) {}

  void put(int column, int row, const std::string& character) {
    const bool inside = row >= 0 && column >= 0 && row < static_cast<int>(cells_.size()) &&
                        column < static_cast<int>(cells_.front().size());
    if (inside) cells_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] = character;
  }

  // Returns the row after the last line.
  int write(std::string_view text, int column, int row, int width, int height) {
    for (const std::vector<std::string>& line : wrapped(text, width, height)) {
      for (std::size_t i = 0; i < line.size(); ++i) put(column + static_cast<int>(i), row, line[i]);
      ++row;
    }
    return row;
  }

  // An empty box with a heading in its upper edge.
  void frame(const Box& box, std::string_view heading) {
    for (int row = box.top; row < box.bottom; ++row) {
      const bool edge = row == box.top || row == box.bottom - 1;
      for (int column = box.left; column < box.right; ++column) put(column, row, edge ? "─" : " ");
      put(box.left, row, "│");
      put(box.right - 1, row, "│");
    }
    put(box.left, box.top, "╭");
    put(box.right - 1, box.top, "╮");
    put(box.left, box.bottom - 1, "╰");
    put(box.right - 1, box.bottom - 1, "╯");
    if (!heading.empty()) write(" " + std::string(heading) + " ", box.left + 1, box.top, box.width() - 2, 1);
  }

  [[nodiscard]] std::string text() const {
    std::string all;
    for (const std::vector<std::string>& row : cells_) {
      std::string line;
      for (const std::string& character : row) line += character;
      all += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return all;
  }

 private:
  std::vector<std::vector<std::string>> cells_;
};

std::string textOf(const HLSimNode& node, std::string_view attribute) {
  for (const HLSimAttribute& entry : node.attributes) {
    if (entry.name != attribute) continue;
    const HLValue* value = std::get_if<HLValue>(&entry.value);
    if (value == nullptr) return "";
    if (const auto* text = value->as<std::string>()) return *text;
    return HLNumberText(*value).value_or("");
  }
  return "";
}

template <class T>
std::optional<T> geometryOf(const HLSimNode& node, std::string_view attribute) {
  for (const HLSimAttribute& entry : node.attributes) {
    if (entry.name != attribute) continue;
    const HLValue* value = std::get_if<HLValue>(&entry.value);
    const T* found = value == nullptr ? nullptr : value->as<T>();
    return found == nullptr ? std::nullopt : std::optional(*found);
  }
  return std::nullopt;
}

std::optional<Box> boxOf(const HLSimNode& node) {
  const auto position = geometryOf<HLPoint>(node, "AXPosition");
  const auto size = geometryOf<HLSize>(node, "AXSize");
  if (!position || !size || !(size->width > 0) || !(size->height > 0)) return std::nullopt;
  const auto cell = [](double points, double cellSize) {
    return static_cast<int>(std::clamp(std::round(points / cellSize), -1000.0, 1000.0));
  };
  const Box box = {cell(position->x, kCellWidth), cell(position->y, kCellHeight),
                   cell(position->x + size->width, kCellWidth), cell(position->y + size->height, kCellHeight)};
  return Box{box.left, box.top, std::max(box.right, box.left + 1), std::max(box.bottom, box.top + 1)};
}

std::string ownText(const HLSimNode& node) {
  for (std::string_view attribute : {"AXDescription", "AXTitle", "AXValue"}) {
    if (std::string text = textOf(node, attribute); !text.empty()) return text;
  }
  return "";
}

class Painter {
 public:
  Painter(const HLSimWorld& world, Canvas& canvas) : world_(world), canvas_(canvas) {}

  void paint(const HLSimNode& window) {
    const std::optional<Box> box = boxOf(window);
    // Notification Center's own window is there, but cannot be seen.
    const bool visible = textOf(window, "AXSubrole") != "AXSystemDialog";
    if (box && visible && box->height() >= kLowestBox) canvas_.frame(*box, textOf(window, "AXTitle"));
    std::vector<const HLSimNode*> left;
    pushMembers(window, left);
    while (!left.empty()) {
      const HLSimNode* node = left.back();
      left.pop_back();
      if (!paintAsWhole(*node)) pushMembers(*node, left);
    }
  }

 private:
  void pushMembers(const HLSimNode& node, std::vector<const HLSimNode*>& left) const {
    const std::vector<HLSimNode*> members = world_.members(node);
    left.insert(left.end(), members.rbegin(), members.rend());
  }

  // Whether the element and what is in it has been painted.
  bool paintAsWhole(const HLSimNode& node) {
    const std::optional<Box> box = boxOf(node);
    const std::string text = ownText(node);
    if (!box || text.empty()) return false;
    const std::string role = textOf(node, "AXRole");
    const bool isText = role.starts_with("AXStatic") || role.starts_with("AXText");
    if (isText) {
      canvas_.write(text, box->left, box->top, box->width(), box->height());
    } else if (box->height() < kLowestBox) {
      canvas_.write("[" + text + "]", box->left, box->top, std::max(box->width(), 3), 1);
    } else {
      paintCard(node, *box, text);
    }
    return true;
  }

  // "Application, title, body": the first is the heading. Buttons stand in the last line.
  void paintCard(const HLSimNode& node, const Box& box, const std::string& text) {
    const auto isThere = std::find(cards_.begin(), cards_.end(), box);
    if (isThere != cards_.end()) return paintBehind(*isThere);
    cards_.push_back(box);
    const std::size_t comma = text.find(", ");
    canvas_.frame(box, text.substr(0, comma));
    std::string rest = comma == std::string::npos ? "" : text.substr(comma + 2);
    std::string buttons;
    collectParts(node, text, rest, buttons);
    const int column = box.left + 2;
    const int width = box.width() - 4;
    int lines = box.height() - 2 - (buttons.empty() ? 0 : 1);
    int row = box.top + 1;
    while (!rest.empty() && lines > 0) {
      const std::size_t end = rest.find(", ");
      const int next = canvas_.write(rest.substr(0, end), column, row, width, end == std::string::npos ? lines : 1);
      lines -= next - row;
      row = next;
      rest = end == std::string::npos ? "" : rest.substr(end + 2);
    }
    canvas_.write(buttons, column, box.bottom - 2, width, 1);
  }

  // Texts below that the card does not say itself, and buttons.
  void collectParts(const HLSimNode& card, const std::string& said, std::string& rest, std::string& buttons) const {
    std::vector<const HLSimNode*> left;
    pushMembers(card, left);
    while (!left.empty()) {
      const HLSimNode* node = left.back();
      left.pop_back();
      pushMembers(*node, left);
      const std::string text = ownText(*node);
      if (textOf(*node, "AXRole").ends_with("Button")) {
        buttons += (buttons.empty() ? "[" : " [") + (text.empty() ? "×" : text) + "]";
      } else if (!text.empty() && said.find(text) == std::string::npos) {
        rest += (rest.empty() ? "" : ", ") + text;
      }
    }
  }

  // One more card in the same place shows as an edge below it.
  void paintBehind(const Box& box) {
    for (int column = box.left + 1; column < box.right - 1; ++column) canvas_.put(column, box.bottom - 1, "═");
  }

  const HLSimWorld& world_;
  Canvas& canvas_;
  std::vector<Box> cards_;
};

// The screen's size in characters.
Box screenOf(const HLSimWorld& world) {
  Box screen = {0, 0, static_cast<int>(kSmallestScreen.width / kCellWidth),
                static_cast<int>(kSmallestScreen.height / kCellHeight)};
  std::vector<const HLSimNode*> left;
  for (const HLSimNode* window : world.windows()) left.push_back(window);
  while (!left.empty()) {
    const HLSimNode* node = left.back();
    left.pop_back();
    for (const HLSimNode* member : world.members(*node)) left.push_back(member);
    const std::optional<Box> box = boxOf(*node);
    if (!box || ownText(*node).empty() || textOf(*node, "AXSubrole") == "AXSystemDialog") continue;
    screen.right = std::max(screen.right, box->right);
    screen.bottom = std::max(screen.bottom, box->bottom);
  }
  return {0, 0, std::min(screen.right + 2, kMostColumns), std::min(screen.bottom + 1, kMostRows)};
}

}  // namespace

std::string HLPictureOfScreen(const HLSimWorld& world) {
  const Box screen = screenOf(world);
  Canvas canvas(screen.right, screen.bottom);
  canvas.frame(screen, "");
  Painter painter(world, canvas);
  for (const HLSimNode* window : world.windows()) painter.paint(*window);
  return canvas.text();
}
