// The titles of the application's windows.
#pragma once

inline constexpr const char* SetupTitle = "Set Up Hushlet";
inline constexpr const char* SettingsTitle = "Hushlet Settings";
