// The smallest program that makes a call on the session bus: the baseline for the start time of commands.
#include <systemd/sd-bus.h>

#include <cstdlib>

int main() {
  sd_bus* bus = nullptr;
  const char* name = nullptr;
  const bool connected = sd_bus_open_user(&bus) >= 0 && sd_bus_get_unique_name(bus, &name) >= 0;
  sd_bus_flush_close_unref(bus);
  return connected ? EXIT_SUCCESS : EXIT_FAILURE;
}
