// The request for accessibility access.
#pragma once

// Returns true while access is missing. With `prompt`, has the system ask the user then, without waiting for the
// answer.
[[nodiscard]] bool HLRequestAccessibility(bool prompt);
