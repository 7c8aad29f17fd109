// The background process that dismisses on behalf of others, which may not.
#pragma once

// Serves the local socket on the calling thread, one connection after the other. Returns 0 after "quit-daemon", or 1
// when it could not start. Ignores SIGHUP and SIGPIPE from then on.
[[nodiscard]] int HLRunTrustedDaemon();
