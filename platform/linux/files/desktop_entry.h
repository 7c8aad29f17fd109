// Desktop entries: the files by which desktops know programs and start them.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

// The keys of the group [Desktop Entry], their values as they stand in the file.
using HLDesktopEntry = std::map<std::string, std::string>;
[[nodiscard]] HLDesktopEntry HLReadDesktopEntry(std::string_view content);

// A value of type string, from and to its form in a file.
[[nodiscard]] std::string HLTextOfDesktopString(std::string_view value);
[[nodiscard]] std::string HLDesktopStringOfText(std::string_view text);

// A value of "Exec" that runs the program without arguments, and the program that such a value runs; nothing when it
// runs none.
[[nodiscard]] std::string HLExecOfProgram(std::string_view program);
[[nodiscard]] std::optional<std::string> HLProgramOfExec(std::string_view value);

// Where the shell would find the program: itself when it is a path, else in the directories of PATH. Nothing when there
// is no such file that can be run.
[[nodiscard]] std::optional<std::string> HLFindProgram(const std::string& program, const std::string& path);
