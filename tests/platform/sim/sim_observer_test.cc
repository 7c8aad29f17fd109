// Who is told what.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/platform/sim/scene_desktop.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kTree = R"({"id": "w", "title": "w", "children": [{"id": "a", "title": "a", "children": [
  {"id": "b", "title": "b"}]}, {"id": "c", "title": "c", "children": [{"ref": "b"}]}]})";

class Observer : public testing::Test {
 protected:
  void makeDesktop(const std::string& events, const std::string& further = "") {
    desktop_ = std::make_unique<SimulatedDesktop>(Scene(kTree, R"(, "timeline": [)" + events + "]" + further));
    root_ = desktop_->accessibility().createApplication(400);
    observer_ = desktop_->accessibility().createObserver(
        400, [this](const HLElementRef& element, std::string_view name) { note(element, name); });
    observer_->attach();
  }

  void TearDown() override { observer_.reset(); }

  void note(const HLElementRef& element, std::string_view name) {
    const HLAttribute title = element->copyAttributeValue("AXTitle");
    const std::string* text = title.value.as<std::string>();
    told_.push_back(std::string(name) + " " + (text == nullptr ? std::to_string(title.error) : *text));
  }

  HLAXError add(const char* id, std::string_view name) {
    return observer_->addNotification(*id == '\0' ? root_ : desktop_->element(id), name);
  }
  void run() { desktop_->runLoop().runFor(10); }

  std::unique_ptr<SimulatedDesktop> desktop_;
  HLElementRef root_;
  std::unique_ptr<HLObserver> observer_;
  std::vector<std::string> told_;
};

TEST_F(Observer, NotifiesTheRootOncePerElement) {
  makeDesktop(R"({"at": 1, "notify": "N", "element": "b"}, {"at": 2, "notify": "N", "element": "w"},
    {"at": 3, "notify": "M", "element": "b"})");
  EXPECT_EQ(add("", "N"), HLAXErrorSuccess);
  EXPECT_EQ(add("b", "N"), HLAXErrorSuccess);
  EXPECT_EQ(add("a", "N"), HLAXErrorSuccess);
  run();
  EXPECT_THAT(told_, ElementsAre("N b", "N w"));
}

TEST_F(Observer, CoversDescendants) {
  makeDesktop(R"({"at": 1, "notify": "N", "element": "w"}, {"at": 2, "notify": "N", "element": "a"},
    {"at": 3, "notify": "N", "element": "b"}, {"at": 4, "notify": "N", "element": "c"})");
  EXPECT_EQ(add("a", "N"), HLAXErrorSuccess);
  EXPECT_EQ(add("c", "N"), HLAXErrorSuccess);
  run();
  EXPECT_THAT(told_, ElementsAre("N a", "N b", "N c"));
}

TEST_F(Observer, IsToldThroughNoReference) {
  makeDesktop(R"({"at": 1, "notify": "N", "element": "b"})");
  EXPECT_EQ(add("c", "N"), HLAXErrorSuccess);
  run();
  EXPECT_THAT(told_, IsEmpty());
}

TEST_F(Observer, ReportsDestroyedElements) {
  makeDesktop(R"({"at": 1, "remove": "a"}, {"at": 2, "notify": "N", "element": "b"})");
  EXPECT_EQ(add("w", "N"), HLAXErrorSuccess);
  run();
  EXPECT_THAT(told_, ElementsAre("N -25202"));
}

TEST_F(Observer, IsNotToldWithoutTrust) {
  makeDesktop(R"({"at": 1, "trust": false}, {"at": 2, "notify": "N", "element": "b"}, {"at": 3, "trust": true},
    {"at": 4, "notify": "M", "element": "b"})");
  EXPECT_EQ(add("", "N"), HLAXErrorSuccess);
  EXPECT_EQ(add("", "M"), HLAXErrorSuccess);
  run();
  EXPECT_THAT(told_, ElementsAre("M b"));
}

TEST_F(Observer, ReceivesOnlyWhileAttached) {
  makeDesktop(R"({"at": 1, "notify": "N", "element": "a"}, {"at": 2, "notify": "N", "element": "b"},
    {"at": 3, "notify": "N", "element": "c"})");
  EXPECT_EQ(add("", "N"), HLAXErrorSuccess);
  observer_->detach();
  desktop_->runLoop().runFor(1);
  EXPECT_THAT(told_, IsEmpty());
  observer_->attach();
  desktop_->runLoop().runFor(1);
  EXPECT_THAT(told_, ElementsAre("N b"));
  desktop_->sleep(1);
  observer_.reset();
  run();
  EXPECT_THAT(told_, ElementsAre("N b")) << "what waited for an observer goes with it";
}

TEST_F(Observer, MayDestroyItselfInItsCallback) {
  makeDesktop(R"({"at": 1, "notify": "N", "element": "a"}, {"at": 1, "notify": "N", "element": "b"})");
  int told = 0;
  observer_ = desktop_->accessibility().createObserver(400, [&](const HLElementRef&, std::string_view) {
    ++told;
    observer_.reset();
  });
  observer_->attach();
  EXPECT_EQ(add("", "N"), HLAXErrorSuccess);
  run();
  EXPECT_EQ(told, 1);
}

TEST_F(Observer, StopsReceivingAfterRemoval) {
  makeDesktop(R"({"at": 1, "notify": "N", "element": "a"})");
  EXPECT_EQ(observer_->removeNotification(root_, "N"), HLAXErrorNotificationNotRegistered);
  EXPECT_EQ(add("", "N"), HLAXErrorSuccess);
  EXPECT_EQ(observer_->removeNotification(desktop_->element("a"), "N"), HLAXErrorNotificationNotRegistered);
  EXPECT_EQ(observer_->removeNotification(root_, "N"), HLAXErrorSuccess);
  run();
  EXPECT_THAT(told_, IsEmpty());
}

TEST_F(Observer, NotifiesInCreationOrder) {
  makeDesktop(R"({"at": 1, "notify": "N", "element": "a"})");
  std::vector<int> order;
  std::vector<std::unique_ptr<HLObserver>> observers;
  for (int i = 0; i < 3; ++i) {
    observers.push_back(desktop_->accessibility().createObserver(
        400, [&order, i](const HLElementRef&, std::string_view) { order.push_back(i); }));
    observers.back()->attach();
    EXPECT_EQ(observers.back()->addNotification(root_, "N"), HLAXErrorSuccess);
  }
  run();
  EXPECT_THAT(order, ElementsAre(0, 1, 2));
}

TEST_F(Observer, ChecksRegistrationErrorsInOrder) {
  makeDesktop(R"({"at": 1, "remove": "a"}, {"at": 2, "trust": false})");
  EXPECT_EQ(add("a", "N"), HLAXErrorSuccess);
  desktop_->sleep(1);
  EXPECT_EQ(add("a", "N"), HLAXErrorInvalidElement);
  EXPECT_EQ(add("", "N"), HLAXErrorSuccess);
  desktop_->sleep(1);
  EXPECT_EQ(add("a", "N"), HLAXErrorAPIDisabled);
  EXPECT_EQ(add("", "N"), HLAXErrorAPIDisabled);
  EXPECT_NE(desktop_->accessibility().createObserver(400, [](const HLElementRef&, std::string_view) {}), nullptr)
      << "observers can be made without trust";
}

TEST(ObservedApplication, MayRefuseANotification) {
  SimulatedDesktop desktop(R"({"applications": [{"pid": 4, "windows": [{"id": "w"}], "registerErrors": {"N": -25207}}],
    "timeline": [{"at": 1, "notify": "N", "element": "w"}, {"at": 1, "notify": "M", "element": "w"}]})");
  std::vector<std::string> told;
  const auto observer = desktop.accessibility().createObserver(
      4, [&told](const HLElementRef&, std::string_view name) { told.emplace_back(name); });
  observer->attach();
  EXPECT_EQ(observer->addNotification(desktop.element("w"), "N"), HLAXErrorNotificationUnsupported);
  EXPECT_EQ(observer->addNotification(desktop.element("w"), "M"), HLAXErrorSuccess);
  desktop.runLoop().runFor(2);
  EXPECT_THAT(told, ElementsAre("M"));
}

}  // namespace
