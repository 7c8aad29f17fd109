// Test notifications: something to dismiss.
#pragma once

// Posts three notifications, one, two and three seconds from now, and logs the outcome. Returns 0. Blocks for at most 5
// s until the user permits them.
[[nodiscard]] int HLSendTestNotifications();
