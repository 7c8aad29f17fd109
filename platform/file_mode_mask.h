// The file mode mask of the process: what is written is for its user alone, what is started keeps the user's own mask.
#pragma once

// Takes all permissions of group and others away from new files and folders (mask 077). Call once, first in main.
void HLRestrictFileModeMask();

// Restores the mask that the process was started with. Call in a forked child that goes on as another program. Keeps
// the mask where HLRestrictFileModeMask() was never called. Async-signal-safe.
void HLRestoreFileModeMask();
