// The session's Wayland compositor.
#pragma once

// Whether a compositor accepts connections at WAYLAND_DISPLAY. The variable may name one that has exited.
[[nodiscard]] bool HLReachWayland();
