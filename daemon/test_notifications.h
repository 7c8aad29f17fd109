// Something on screen to dismiss.
#pragma once

// Posts three notifications of this program's own, one, two and three seconds from now. Always 0: what came of it
// stands in the status log. Waits at most 5 s for the permission.
[[nodiscard]] int HLSendTestNotifications();
