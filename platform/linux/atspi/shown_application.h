// An application whose elements can be read and acted on.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/accessibility.h"
#include "platform/linux/atspi/mapped_tree.h"

// Where events arrive.
struct HLEventSource {
  int descriptor = -1;  // readable when an event has arrived
  // Consumes what has arrived. Returns how many events were among it, or nullopt once no more will come. Does not
  // block.
  std::function<std::optional<int>()> take;
};

// Thread-safe.
class HLShownApplication {
 public:
  HLShownApplication() = default;
  HLShownApplication(const HLShownApplication&) = delete;
  HLShownApplication& operator=(const HLShownApplication&) = delete;
  virtual ~HLShownApplication() = default;

  struct Interface {
    HLRawTree tree;
    HLMappedTree mapped;
  };
  // Reads the application's elements. Returns nullptr if they cannot be read. Blocks.
  [[nodiscard]] virtual std::unique_ptr<const Interface> read() = 0;

  // Performs an action that `interface` contains. Returns InvalidElement once the element is destroyed or the process
  // has exited, CannotComplete on a timeout or a lost connection. Blocks.
  [[nodiscard]] virtual HLAXError perform(const Interface& interface, const HLMappedAction& action) = 0;

  // Returns the sources of an event for each change of the elements; none if changes are not reported. Blocks.
  [[nodiscard]] virtual std::vector<HLEventSource> watch() = 0;

  [[nodiscard]] virtual bool hasEnded() const = 0;
  [[nodiscard]] virtual std::int32_t pid() const = 0;
};
