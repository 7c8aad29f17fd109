// The session's Wayland compositor.
#pragma once

// Whether one answers where WAYLAND_DISPLAY says. The name may have outlived its compositor.
[[nodiscard]] bool HLReachWayland();
