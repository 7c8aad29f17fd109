// What every host promises of the elements and applications on a desktop, tested alike on all of them. A host's test
// program includes this once and says how to get at a desktop of its own:
//
//   INSTANTIATE_TEST_SUITE_P(Simulator, PlatformContract, testing::Values(PlatformContract::Case{"Simulator", make}),
//                            ContractCaseName);
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/accessibility.h"
#include "platform/platform.h"
#include "platform/run_loop.h"
#include "platform/running_applications.h"
#include "tests/support/host_contract.h"

// A desktop on which one application shows a window with at least two elements below it.
class ContractDesktop : public ContractHost {
 public:
  // That application.
  [[nodiscard]] virtual std::int32_t pid() = 0;
  // An action of an element below that application which takes the element away.
  [[nodiscard]] virtual std::string removingAction() = 0;
};

class PlatformContract : public testing::TestWithParam<ContractCase<ContractDesktop>> {
 public:
  using Case = ContractCase<ContractDesktop>;

 protected:
  [[nodiscard]] HLAccessibility& accessibility() { return desktop_->platform().accessibility; }
  [[nodiscard]] HLRunningApplications& applications() { return desktop_->platform().runningApplications; }
  [[nodiscard]] HLRunLoop& runLoop() { return desktop_->platform().runLoop; }
  [[nodiscard]] HLElementRef root() { return accessibility().createApplication(desktop_->pid()); }

  [[nodiscard]] static std::vector<HLElementRef> members(const HLElementRef& element, std::string_view list) {
    std::vector<HLElementRef> found;
    const HLAttribute attribute = element->copyAttributeValue(list);
    if (const HLArray* array = attribute.value.as<HLArray>()) {
      for (const HLValue& value : *array) {
        if (const HLElementRef* member = value.as<HLElementRef>()) found.push_back(*member);
      }
    }
    return found;
  }

  // Everything below the application, no node twice; the root is not among them.
  [[nodiscard]] std::vector<HLElementRef> tree() {
    constexpr std::size_t kEnough = 500;
    std::vector<HLElementRef> found;
    const auto add = [&found](const std::vector<HLElementRef>& elements) {
      for (const HLElementRef& element : elements) {
        const auto isSame = [&element](const HLElementRef& known) { return known->isEqual(*element); };
        if (found.size() < kEnough && std::none_of(found.begin(), found.end(), isSame)) found.push_back(element);
      }
    };
    add(members(root(), "AXWindows"));
    for (std::size_t i = 0; i < found.size(); ++i) {
      const HLElementRef element = found[i];
      for (std::string_view list : {"AXChildren", "AXRows", "AXVisibleChildren"}) add(members(element, list));
    }
    return found;
  }

  // An element that lists the action which takes it away.
  [[nodiscard]] HLElementRef removable() {
    for (const HLElementRef& element : tree()) {
      const std::vector<std::string> names = element->copyActionNames().names;
      if (std::find(names.begin(), names.end(), desktop_->removingAction()) != names.end()) return element;
    }
    return nullptr;
  }

  // Lets time pass until it holds; false when it does not within ten seconds.
  [[nodiscard]] bool eventually(const std::function<bool()>& condition) {
    const double deadline = runLoop().now() + 10;
    while (!condition()) {
      if (runLoop().now() > deadline) return false;
      runLoop().runFor(0.02);
    }
    return true;
  }

  std::unique_ptr<ContractDesktop> desktop_ = GetParam().make();
};

// Elements

TEST_P(PlatformContract, TrustsAProcessThatCanRead) { EXPECT_TRUE(accessibility().isProcessTrusted(false)); }

TEST_P(PlatformContract, ShowsWindowsWithElementsBelow) {
  ASSERT_NE(root(), nullptr);
  EXPECT_FALSE(members(root(), "AXWindows").empty());
  EXPECT_GE(tree().size(), 3U);
}

TEST_P(PlatformContract, CopiesFactsAsReadByName) {
  std::vector<HLElementRef> elements = tree();
  elements.push_back(root());
  for (const HLElementRef& element : elements) {
    const HLElementFacts copied = element->copyFacts();
    const HLElementFacts byName = element->HLElement::copyFacts();
    for (const HLTextAttribute& attribute : HLTextAttributes) {
      EXPECT_EQ(copied.*attribute.text, byName.*attribute.text) << attribute.name;
    }
    EXPECT_EQ(copied.frame, byName.frame);
    EXPECT_EQ(copied.actionNames, byName.actionNames);
    const auto isSame = [](const HLElementRef& a, const HLElementRef& b) { return a->isEqual(*b); };
    EXPECT_TRUE(std::equal(copied.children.begin(), copied.children.end(), byName.children.begin(),
                           byName.children.end(), isSame));
  }
}

TEST_P(PlatformContract, ReturnsNoValueWithAnError) {
  for (const HLElementRef& element : tree()) {
    for (std::string_view name : {"AXRole", "AXTitle", "AXPosition", "AXRows", "AXNoSuchThing"}) {
      const HLAttribute attribute = element->copyAttributeValue(name);
      EXPECT_TRUE(attribute.error == HLAXErrorSuccess || attribute.value.isMissing()) << name;
    }
  }
}

TEST_P(PlatformContract, RejectsUnknownAttributes) {
  for (const HLElementRef& element : tree()) {
    EXPECT_NE(element->copyAttributeValue("AXNoSuchThing").error, HLAXErrorSuccess);
  }
}

TEST_P(PlatformContract, TypesPositionsAndSizes) {
  int framed = 0;
  for (const HLElementRef& element : tree()) {
    const HLAttribute position = element->copyAttributeValue("AXPosition");
    const HLAttribute size = element->copyAttributeValue("AXSize");
    EXPECT_TRUE(position.value.isMissing() || position.value.as<HLPoint>() != nullptr);
    EXPECT_TRUE(size.value.isMissing() || size.value.as<HLSize>() != nullptr);
    if (!position.value.isMissing() && !size.value.isMissing()) ++framed;
  }
  EXPECT_GT(framed, 0);
}

TEST_P(PlatformContract, KeepsTheOrderOfActions) {
  bool some = false;
  for (const HLElementRef& element : tree()) {
    const HLActionList first = element->copyActionNames();
    EXPECT_EQ(first.error, HLAXErrorSuccess);
    EXPECT_EQ(element->copyActionNames().names, first.names);
    some |= !first.names.empty();
  }
  EXPECT_TRUE(some);
}

TEST_P(PlatformContract, RejectsUnlistedActions) {
  const std::size_t before = tree().size();
  for (const HLElementRef& element : tree()) EXPECT_NE(element->performAction("AXNoSuchAction"), HLAXErrorSuccess);
  EXPECT_EQ(tree().size(), before);
}

TEST_P(PlatformContract, ComparesElementsConsistently) {
  const std::vector<HLElementRef> first = tree();
  const std::vector<HLElementRef> second = tree();
  ASSERT_EQ(first.size(), second.size());
  for (std::size_t i = 0; i < first.size(); ++i) {
    EXPECT_TRUE(first[i]->isEqual(*first[i]));
    EXPECT_EQ(first[i]->hash(), second[i]->hash()) << i;
    for (std::size_t j = 0; j < second.size(); ++j) {
      EXPECT_EQ(first[i]->isEqual(*second[j]), i == j) << i << ", " << j;
      EXPECT_EQ(second[j]->isEqual(*first[i]), i == j) << i << ", " << j;
    }
  }
}

TEST_P(PlatformContract, MakesEqualRoots) {
  const HLElementRef made = root();
  EXPECT_TRUE(made->isEqual(*root()));
  EXPECT_EQ(made->hash(), root()->hash());
  for (const HLElementRef& element : tree()) EXPECT_FALSE(made->isEqual(*element));
}

TEST_P(PlatformContract, KeepsHandlesBeyondTheirList) {
  HLElementRef kept;
  {
    const std::vector<HLElementRef> elements = tree();
    kept = elements.back();
  }
  EXPECT_EQ(kept->copyAttributeValue("AXRole").error, HLAXErrorSuccess);
}

TEST_P(PlatformContract, InvalidatesDestroyedElements) {
  const HLElementRef element = removable();
  ASSERT_NE(element, nullptr);
  EXPECT_EQ(element->performAction(desktop_->removingAction()), HLAXErrorSuccess);
  EXPECT_TRUE(eventually([&] { return element->copyAttributeValue("AXRole").error == HLAXErrorInvalidElement; }));
  EXPECT_EQ(element->copyActionNames().error, HLAXErrorInvalidElement);
  EXPECT_TRUE(element->copyActionNames().names.empty());
  EXPECT_EQ(element->performAction(desktop_->removingAction()), HLAXErrorInvalidElement);
  EXPECT_TRUE(element->isEqual(*element));
  for (const HLElementRef& left : tree()) EXPECT_FALSE(left->isEqual(*element));
}

TEST_P(PlatformContract, ShowsNothingForAMissingProcess) {
  const HLElementRef element = accessibility().createApplication(2147483646);
  if (element == nullptr) return;
  EXPECT_NE(element->copyAttributeValue("AXWindows").error, HLAXErrorSuccess);
  EXPECT_NE(element->copyActionNames().error, HLAXErrorSuccess);
}

TEST_P(PlatformContract, AllowsConcurrentReads) {
  const std::vector<HLElementRef> elements = tree();
  std::atomic<int> roles = 0;
  const auto queue = runLoop().makeOperationQueue("readers", HLQualityOfService::userInitiated, 4);
  for (int i = 0; i < 4; ++i) {
    queue->addOperation([&] {
      for (const HLElementRef& element : elements) roles += element->copyAttributeValue("AXRole").error == 0;
    });
  }
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(roles % 4, 0);
  EXPECT_GT(roles, 0);
}

// Running applications

TEST_P(PlatformContract, FindsListedApplicationsByPid) {
  const std::vector<HLRunningApplication> list = applications().list();
  EXPECT_TRUE(std::any_of(list.begin(), list.end(),
                          [this](const HLRunningApplication& running) { return running.pid == desktop_->pid(); }));
  for (const HLRunningApplication& running : list) {
    EXPECT_GT(running.pid, 0);
    const std::optional<HLRunningApplication> found = applications().find(running.pid);
    ASSERT_TRUE(found.has_value()) << running.pid;
    EXPECT_EQ(found->pid, running.pid);
    EXPECT_EQ(found->bundleIdentifier, running.bundleIdentifier);
    EXPECT_EQ(found->name, running.name);
    EXPECT_EQ(found->terminated, running.terminated);
  }
}

TEST_P(PlatformContract, FindsNothingForUnknownPids) {
  EXPECT_FALSE(applications().find(2147483646).has_value());
  EXPECT_FALSE(applications().find(0).has_value());
  EXPECT_FALSE(applications().find(-1).has_value());
}
