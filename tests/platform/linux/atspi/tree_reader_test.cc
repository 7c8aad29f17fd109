// How an application's elements are read, from an application that answers as the test says.
#include "platform/linux/atspi/tree_reader.h"

#include <gtest/gtest.h>
#include <systemd/sd-bus.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/linux/atspi/banners.h"
#include "tests/support/listener.h"
#include "tests/support/temporary_directory.h"

namespace {

constexpr const char* kPath = "/org/a11y/atspi/accessible/";

enum class State {
  showing,
  hidden,
  gone  // listed by its parent, but answers no more
};

struct Element {
  HLRawRole role = HLRawRole::invalid;
  std::string name;
  std::vector<std::string> children;
  State state = State::showing;
};

// An application without a cache, on a connection of its own.
class Application {
 public:
  Application(const std::string& socket, std::map<std::string, Element> elements)
      : elements_(std::move(elements)), listener_(socket), thread_([this] { serve(); }) {}
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;
  ~Application() { thread_.join(); }

 private:
  // Until the reader closes the connection.
  void serve() {
    const int connection = listener_.accept();
    sd_bus* bus = nullptr;
    sd_id128_t id{};
    sd_id128_randomize(&id);
    sd_bus_new(&bus);
    sd_bus_set_fd(bus, connection, connection);
    sd_bus_set_server(bus, 1, id);
    sd_bus_start(bus);
    sd_bus_add_filter(
        bus, nullptr,
        [](sd_bus_message* call, void* self, sd_bus_error*) { return static_cast<Application*>(self)->answer(call); },
        this);
    while (sd_bus_process(bus, nullptr) >= 0 && sd_bus_wait(bus, UINT64_MAX) >= 0) {
    }
    sd_bus_close_unref(bus);
  }

  int answer(sd_bus_message* call) {
    const char* member = sd_bus_message_get_member(call);
    if (member == nullptr) return 0;
    const std::string_view path = sd_bus_message_get_path(call);
    const std::string_view method = member;
    const auto found = elements_.find(std::string(path.substr(path.rfind('/') + 1)));
    if (method == "GetItems" || found == elements_.end() || found->second.state == State::gone) {
      return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_UNKNOWN_OBJECT, "no such object");
    }
    const Element& element = found->second;
    if (method == "GetRole") return sd_bus_reply_method_return(call, "u", static_cast<std::uint32_t>(element.role));
    if (method == "GetState") {
      const auto states = element.state == State::showing ? HLRawState::kShowing : 0;
      return sd_bus_reply_method_return(call, "au", 2, static_cast<std::uint32_t>(states), 0U);
    }
    if (method == "Get") return sd_bus_reply_method_return(call, "v", "s", element.name.c_str());
    sd_bus_message* reply = nullptr;
    sd_bus_message_new_method_return(call, &reply);
    sd_bus_message_open_container(reply, 'a', "(so)");
    for (const std::string& child : element.children) sd_bus_message_append(reply, "(so)", "", (kPath + child).c_str());
    sd_bus_message_close_container(reply);
    sd_bus_send(nullptr, reply, nullptr);
    sd_bus_message_unref(reply);
    return 1;
  }

  const std::map<std::string, Element> elements_;
  const Listener listener_;
  std::thread thread_;
};

constexpr HLRawRole kFiller{20};

HLRawTree Read(const std::map<std::string, Element>& elements) {
  const TemporaryDirectory folder;
  const std::string socket = folder.path() + "/application";
  const Application application(socket, elements);
  const std::unique_ptr<HLBus> bus = HLBus::openPeer("unix:path=" + socket);
  HLRawTree tree;
  EXPECT_TRUE(bus != nullptr && HLReadTree(*bus, "", tree) == HLBusOutcome::answered);
  return tree;
}

// Returns the last part of each node's path, with its children in parentheses.
std::string Outline(const HLRawTree& tree, int index = 0) {
  const HLRawNode& node = tree.at(static_cast<std::size_t>(index));
  std::string text = node.path.substr(node.path.rfind('/') + 1);
  for (int child : node.children) text += " (" + Outline(tree, child) + ")";
  return text;
}

// A server's one window shows two banners, of which the first closes while the second is read.
TEST(TreeReader, LeavesOutElementsThatGo) {
  const HLRawTree tree = Read({{"root", {HLRawRole::application, "", {"window"}}},
                               {"window", {kFiller, "", {"gone", "banner"}}},
                               {"gone", {kFiller, "", {}, State::gone}},
                               {"banner", {kFiller, "", {"title", "close"}}},
                               {"title", {HLRawRole::label, "Ada", {}}},
                               {"close", {HLRawRole::pushButton, "x", {}}}});
  EXPECT_EQ(Outline(tree), "root (window (banner (title) (close)))");
  EXPECT_EQ(HLFindBanners(tree).size(), 1U) << "what is gone keeps nothing else from being a banner";
}

// The close button and its group show while the pointer is over the banner.
TEST(TreeReader, LimitsHiddenLevelsInShownWindows) {
  const HLRawTree tree = Read({{"root", {HLRawRole::application, "", {"closed", "window"}}},
                               {"window", {kFiller, "", {"group"}}},
                               {"group", {kFiller, "", {"close"}, State::hidden}},
                               {"close", {HLRawRole::pushButton, "", {"picture"}, State::hidden}},
                               {"picture", {kFiller, "", {}, State::hidden}},
                               {"closed", {kFiller, "", {"text"}, State::hidden}},
                               {"text", {HLRawRole::label, "Ada", {}}}});
  EXPECT_EQ(Outline(tree), "root (closed) (window (group (close)))");
}

}  // namespace
