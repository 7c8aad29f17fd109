// The straightforward way: the stock client library, one question after another. Prints how many elements it saw and
// how many microseconds the walk took.
#include <atspi/atspi.h>

#include <chrono>
#include <cstdio>
#include <string>

namespace {

bool fresh = false;

struct Sum {
  int elements = 0;
  std::size_t characters = 0;  // so that nothing is read in vain
};

void add(gchar* text, Sum& sum) {
  if (text != nullptr) sum.characters += std::string(text).size();
  g_free(text);
}

// Role, name, description, actions with their names, extents and children of each.
void walk(AtspiAccessible* element, Sum& sum) {
  ++sum.elements;
  if (fresh) atspi_accessible_clear_cache(element);
  sum.characters += static_cast<std::size_t>(atspi_accessible_get_role(element, nullptr));
  add(atspi_accessible_get_name(element, nullptr), sum);
  add(atspi_accessible_get_description(element, nullptr), sum);
  if (AtspiAction* action = atspi_accessible_get_action_iface(element)) {
    const int count = atspi_action_get_n_actions(action, nullptr);
    for (int i = 0; i < count; ++i) add(atspi_action_get_action_name(action, i, nullptr), sum);
    g_object_unref(action);
  }
  if (AtspiComponent* component = atspi_accessible_get_component_iface(element)) {
    AtspiRect* rect = atspi_component_get_extents(component, ATSPI_COORD_TYPE_SCREEN, nullptr);
    if (rect != nullptr) sum.characters += static_cast<std::size_t>(rect->width);
    g_free(rect);
    g_object_unref(component);
  }
  const int count = atspi_accessible_get_child_count(element, nullptr);
  for (int i = 0; i < count; ++i) {
    AtspiAccessible* child = atspi_accessible_get_child_at_index(element, i, nullptr);
    if (child == nullptr) continue;
    walk(child, sum);
    g_object_unref(child);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2 || atspi_init() != 0) return 2;
  const guint pid = static_cast<guint>(std::stoul(argv[1]));
  AtspiAccessible* desktop = atspi_get_desktop(0);
  fresh = argc > 2 && std::string(argv[2]) == "fresh";
  const int applications = atspi_accessible_get_child_count(desktop, nullptr);
  for (int i = 0; i < applications; ++i) {
    AtspiAccessible* application = atspi_accessible_get_child_at_index(desktop, i, nullptr);
    if (application == nullptr || atspi_accessible_get_process_id(application, nullptr) != pid) continue;
    Sum sum;
    const auto begin = std::chrono::steady_clock::now();
    walk(application, sum);
    const auto time = std::chrono::steady_clock::now() - begin;
    std::printf("%d %lld %zu\n", sum.elements,
                static_cast<long long>(std::chrono::duration_cast<std::chrono::microseconds>(time).count()),
                sum.characters);
    return 0;
  }
  return 1;
}
