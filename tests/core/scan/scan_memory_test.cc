// How much memory a scan and a resolution take for large texts, and how much they search: every allocation of this
// program is counted, and every byte that the C library searches for a word.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "core/dismissal/resolution.h"
#include "core/scan/context.h"
#include "core/scan/tree_scan.h"
#include "tests/support/fake_element.h"
#include "tests/support/simulated_desktop.h"

namespace {

struct Counted {
  std::atomic<std::size_t> live = 0;
  std::atomic<std::size_t> peak = 0;   // of live, since the last reset
  std::atomic<std::size_t> total = 0;  // allocated since the last reset
};
Counted counted;

constexpr std::size_t kHeader = __STDCPP_DEFAULT_NEW_ALIGNMENT__;

}  // namespace

void* operator new(std::size_t size) {
  auto* block = static_cast<std::byte*>(std::malloc(size + kHeader));
  if (block == nullptr) throw std::bad_alloc();
  *reinterpret_cast<std::size_t*>(block) = size;
  counted.total += size;
  counted.peak = std::max<std::size_t>(counted.peak, counted.live += size);
  return block + kHeader;
}
void operator delete(void* memory) noexcept {
  if (memory == nullptr) return;
  std::byte* block = static_cast<std::byte*>(memory) - kHeader;
  counted.live -= *reinterpret_cast<std::size_t*>(block);
  std::free(block);
}
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }

namespace {
std::atomic<std::size_t> searchedBytes = 0;
}  // namespace

// In place of the C library's, which promises to throw nothing on some hosts only.
extern "C" void* memmem(const void* text, std::size_t size, const void* word,
                        std::size_t length) noexcept(noexcept(::memmem("", 0, "", 0))) {
  searchedBytes += size;
  const std::size_t found = std::string_view(static_cast<const char*>(text), size)
                                .find(std::string_view(static_cast<const char*>(word), length));
  if (found == std::string_view::npos) return nullptr;
  return const_cast<char*>(static_cast<const char*>(text) + found);
}

namespace {

constexpr std::size_t kKilobyte = 1000;
constexpr std::size_t kMegabyte = 1000 * kKilobyte;

struct Cost {
  std::size_t peak = 0;   // beyond what was there before
  std::size_t total = 0;  // allocated
};

template <class Work>
Cost costOf(const Work& work) {
  const std::size_t before = counted.live;
  counted.peak = before;
  counted.total = 0;
  work();
  return {counted.peak - before, counted.total};
}

std::string words(std::size_t size) {
  std::string text = "Nothing ";
  while (text.size() < size) text += "but a lot of words ";
  text.resize(size);
  return text;
}

std::shared_ptr<FakeElement> elementWithTitle(std::string title) {
  auto element = std::make_shared<FakeElement>();
  element->attributes["AXTitle"] = {HLAXErrorSuccess, std::move(title)};
  return element;
}

void addChild(FakeElement& parent, const HLElementRef& child) {
  HLValue& children = parent.attributes["AXChildren"].value;
  if (children.isMissing()) children = HLArray();
  std::get<HLArray>(children).push_back(child);
}

// Each element is the only child of the one before.
HLElementRef chain(int depth, const std::string& title) {
  std::shared_ptr<FakeElement> top = elementWithTitle(title);
  for (int i = 1; i < depth; ++i) {
    auto parent = elementWithTitle(title);
    addChild(*parent, std::exchange(top, parent));
  }
  return top;
}

// Every second descendant can be pressed, so that the title is searched.
Cost costOfScanBelow(const std::string& title) {
  const auto window = elementWithTitle(title);
  for (int i = 0; i < 699; ++i) {
    const auto group = elementWithTitle("group");
    const auto text = elementWithTitle("text");
    text->actions.names = {"AXPress"};
    addChild(*group, text);
    addChild(*window, group);
  }
  return costOf([&window] { (void)HLTargetsInRoot(window, "window-0"); });
}

TEST(ScanMemory, StaysSmallBelowLongTitles) {
  SimulatedDesktop desktop("{}");
  const Cost cost = costOfScanBelow(words(kMegabyte));
  EXPECT_LT(cost.peak, 4 * kMegabyte);
  EXPECT_LT(cost.total, 4 * kMegabyte) << "each text is copied twice, whatever its descendants";
}

TEST(ScanMemory, StaysSmallBelowTitlesBeyondAscii) {
  SimulatedDesktop desktop("{}");
  std::string title;
  while (title.size() < kMegabyte) title += "ОБЕД\u00A0 в Пятницу, ΣΑΣ, \u0130stanbul, 日本語。 ";
  const Cost cost = costOfScanBelow(title);
  EXPECT_LT(cost.peak, 4 * kMegabyte);
  EXPECT_LT(cost.total, 4 * kMegabyte) << "the host's mapping of the whole text would take more";
}

// Resembles a word of notifications and one of closing so closely that only an exact search tells the difference.
std::string misleadingWords() {
  std::string text;
  while (text.size() < kMegabyte) text += "notificatipn cloze ";
  return text;
}

TEST(ScanWork, SearchesLongTextsForButtonsOnly) {
  SimulatedDesktop desktop("{}");
  const auto window = elementWithTitle(misleadingWords());
  for (int i = 0; i < 699; ++i) addChild(*window, elementWithTitle("text"));
  searchedBytes = 0;
  (void)HLTargetsInRoot(window, "window-0");
  EXPECT_EQ(searchedBytes, 0U);

  const auto button = elementWithTitle("button");
  button->actions.names = {"AXPress"};
  addChild(*window, button);
  (void)HLTargetsInRoot(window, "window-0");
  EXPECT_GE(searchedBytes, kMegabyte);
}

TEST(ScanWork, SearchesLongTextsOnce) {
  SimulatedDesktop desktop("{}");
  const auto window = elementWithTitle(misleadingWords());
  for (int i = 0; i < 699; ++i) {
    const auto button = elementWithTitle("button");
    button->actions.names = {"AXPress", "Close " + std::to_string(i)};
    addChild(*window, button);
  }
  searchedBytes = 0;
  (void)HLTargetsInRoot(window, "window-0");
  EXPECT_GE(searchedBytes, 2 * kMegabyte) << "for a word of notifications, and for one of closing";
  EXPECT_LT(searchedBytes, 3 * kMegabyte);
}

TEST(ScanWork, BarelySearchesOrdinaryTexts) {
  SimulatedDesktop desktop("{}");
  const auto window = elementWithTitle(words(kMegabyte));
  const auto button = elementWithTitle("button");
  button->actions.names = {"AXPress"};
  addChild(*window, button);
  searchedBytes = 0;
  (void)HLTargetsInRoot(window, "window-0");
  EXPECT_LT(searchedBytes, kMegabyte / 100);
}

TEST(ScanMemory, GrowsLinearlyWithDepth) {
  SimulatedDesktop desktop("{}");
  const std::string title = words(12 * kKilobyte);
  const auto costAt = [&title](int depth) {
    const HLElementRef top = chain(depth, title);
    return costOf([&top] { (void)HLTargetsInRoot(top, "window-0"); });
  };
  const Cost half = costAt(350);
  const Cost whole = costAt(700);
  EXPECT_LT(whole.total, 2.2 * static_cast<double>(half.total));
  EXPECT_LT(whole.peak, 64 * kMegabyte);
}

TEST(ScanMemory, KeepsOnlyContextBeginnings) {
  SimulatedDesktop desktop("{}");
  const auto window = elementWithTitle(words(kMegabyte) + " notification");
  for (int i = 0; i < 699; ++i) {
    const auto button = std::make_shared<FakeElement>();  // without words, so that its snapshot is its context's
    button->actions.names = {"Close " + std::to_string(i)};
    addChild(*window, button);
  }
  std::size_t found = 0;
  const Cost cost = costOf([&window, &found] { found = HLTargetsInRoot(window, "window-0").size(); });
  EXPECT_EQ(found, 699U);
  EXPECT_LT(cost.total, 16 * kMegabyte);
}

TEST(ResolutionMemory, CopiesOneLongContext) {
  SimulatedDesktop desktop("{}");
  const auto banner = elementWithTitle(words(kMegabyte));
  for (int i = 0; i < 119; ++i) {
    const auto button = std::make_shared<FakeElement>();
    button->actions.names = {"AXPress"};
    button->attributes["AXPosition"] = {HLAXErrorSuccess, HLPoint{0, 0}};
    button->attributes["AXSize"] = {HLAXErrorSuccess, HLSize{16, 16}};
    addChild(*banner, button);
  }
  std::optional<HLDismissTarget> control;
  const Cost cost = costOf([&banner, &control] { control = HLFocusedDismissControlInSubtree(banner); });
  ASSERT_TRUE(control);
  EXPECT_EQ(control->snapshot.size(), 2 * kMegabyte + 1) << "its context holds the banner's words twice";
  EXPECT_LT(cost.total, 32 * kMegabyte);
}

}  // namespace
