// The background process that dismisses for processes without access.
#pragma once

// Serves the local socket, one connection at a time. Returns 0 after "quit-daemon", 1 if the socket cannot be created,
// bound or listened on. Blocks. The process ignores SIGHUP and SIGPIPE from then on.
[[nodiscard]] int HLRunTrustedDaemon();
