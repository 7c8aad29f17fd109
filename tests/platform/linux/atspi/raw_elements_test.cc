#include "platform/linux/atspi/raw_elements.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/linux/atspi/banners.h"
#include "report/text_mask.h"
#include "tests/platform/linux/atspi/recorded_tree.h"

namespace {

// A recorded tree with the texts replaced that a recording replaces.
HLRawTree withTextsReplaced(const HLRawTree& tree) {
  HLTextMask mask(5);
  std::string text;
  for (HLRawElement element : HLRawElementsOf(tree)) {
    if (!element.isHostsWords) {
      element.name = mask.replaced(element.name);
      element.description = mask.replaced(element.description);
    }
    text += HLRawElementLine(element) + "\n";
  }
  return ParseTree(text);
}

class RawElements : public testing::TestWithParam<std::string> {};

TEST_P(RawElements, AreJudgedAlikeWithTextsReplaced) {
  const HLRawTree tree = RecordedTree(GetParam());
  const HLRawTree replaced = withTextsReplaced(tree);
  const std::vector<HLBanner> banners = HLFindBanners(tree);
  const std::vector<HLBanner> found = HLFindBanners(replaced);
  ASSERT_EQ(found.size(), banners.size());
  for (std::size_t i = 0; i < banners.size(); ++i) {
    EXPECT_EQ(found[i].node, banners[i].node);
    EXPECT_EQ(found[i].labels, banners[i].labels);
    const auto control = HLFindCloseControl(tree, banners[i]);
    const auto again = HLFindCloseControl(replaced, found[i]);
    EXPECT_EQ(again ? again->node : -1, control ? control->node : -1);
    EXPECT_EQ(HLBannerText(replaced, found[i]).size(), HLBannerText(tree, banners[i]).size());
    for (int button : banners[i].buttons) {
      EXPECT_EQ(HLCloseDoubt(replaced, found[i], button), HLCloseDoubt(tree, banners[i], button));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Servers, RawElements,
                         testing::Values("budgie", "cinnamon", "gnome", "lxqt", "mate", "notification-daemon",
                                         "notify-osd", "plasma", "xfce"),
                         [](const auto& tree) {
                           std::string name = tree.param;
                           std::erase(name, '-');
                           return name;
                         });

TEST(CloseDoubt, NamesTheRuleAButtonFails) {
  const auto doubtOf = [](const std::string& button) {
    const HLRawTree tree =
        ParseTree("window '' [0 0 300x80]\n  notification '' [0 0 300x80]\n    label 'Lunch'\n    " + button + "\n");
    const std::vector<HLBanner> banners = HLFindBanners(tree);
    return std::string(HLCloseDoubt(tree, banners.at(0), banners.at(0).buttons.at(0)));
  };
  EXPECT_EQ(doubtOf("button 'x' [270 4 20x20]"), "it has no action that presses it");
  EXPECT_EQ(doubtOf("button 'x' <Press>"), "its place is not known");
  EXPECT_EQ(doubtOf("button 'x' [200 4 90x20] <Press>"), "it is not small and square like an icon");
  EXPECT_EQ(doubtOf("button 'x' [270 56 20x20] <Press>"), "it is in no upper corner of the banner");
  EXPECT_EQ(doubtOf("button 'Open' [270 4 20x20] <Press>"), "its name is no word for closing");
}

}  // namespace
