// Asking for the grant that everything depends on.
#pragma once

// Whether access is still missing. With prompt, the system asks the user where it is; the call does not wait for the
// answer.
[[nodiscard]] bool HLRequestAccessibility(bool prompt);
