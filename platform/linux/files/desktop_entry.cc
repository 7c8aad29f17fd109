#include "platform/linux/files/desktop_entry.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>

#include "platform/linux/files/base_directories.h"

namespace {

std::string_view trim(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r')) text.remove_suffix(1);
  return text;
}

bool isExecutableFile(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && access(path.c_str(), X_OK) == 0;
}

// Returns the first word of a command line whose string escapes are already decoded, without field codes; nullopt if
// the word is empty or a quote is not closed.
std::optional<std::string> firstWord(std::string_view command) {
  std::string word;
  bool quoted = false;
  bool began = false;
  for (std::size_t i = 0; i < command.size(); ++i) {
    const char c = command[i];
    if (!quoted && (c == ' ' || c == '\t' || c == '\n')) {
      if (began) break;
      continue;
    }
    began = true;
    if (c == '"') {
      quoted = !quoted;
    } else if (c == '\\' && i + 1 < command.size()) {
      word += command[++i];
    } else if (c == '%') {
      if (i + 1 < command.size() && command[i + 1] == '%') word += c;
      ++i;
    } else {
      word += c;
    }
  }
  if (quoted || word.empty()) return std::nullopt;
  return word;
}

}  // namespace

HLDesktopEntry HLReadDesktopEntry(std::string_view content) {
  HLDesktopEntry entry;
  bool inGroup = false;
  while (!content.empty()) {
    const std::size_t end = std::min(content.find('\n'), content.size());
    const std::string_view line = trim(content.substr(0, end));
    content.remove_prefix(std::min(end + 1, content.size()));
    if (line.starts_with('#')) continue;
    if (line.starts_with('[')) inGroup = line == "[Desktop Entry]";
    const std::size_t equals = line.find('=');
    if (!inGroup || equals == std::string_view::npos) continue;
    entry.emplace(trim(line.substr(0, equals)), trim(line.substr(equals + 1)));
  }
  return entry;
}

std::string HLTextOfDesktopString(std::string_view value) {
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] != '\\' || i + 1 == value.size()) {
      text += value[i];
      continue;
    }
    const char c = value[++i];
    if (c == 's')
      text += ' ';
    else if (c == 'n')
      text += '\n';
    else if (c == 't')
      text += '\t';
    else if (c == 'r')
      text += '\r';
    else if (c == '\\')
      text += '\\';
    else
      (text += '\\') += c;
  }
  return text;
}

std::string HLDesktopStringOfText(std::string_view text) {
  std::string value;
  for (const char c : text) {
    if (c == '\n')
      value += "\\n";
    else if (c == '\t')
      value += "\\t";
    else if (c == '\r')
      value += "\\r";
    else if (c == '\\')
      value += "\\\\";
    else if (c == ' ' && value.empty())
      value += "\\s";
    else
      value += c;
  }
  return value;
}

std::string HLExecOfProgram(std::string_view program) {
  // GLib searches for the program by its still escaped name, so a "%" fails there but works in an argument of `env`.
  // `env` takes a path with "=" for a variable, so that stays the program.
  const bool asArgument = program.find('%') != std::string_view::npos && program.find('=') == std::string_view::npos;
  std::string command = asArgument ? "env \"" : "\"";
  for (const char c : program) {
    if (c == '"' || c == '`' || c == '$' || c == '\\') command += '\\';
    if (c == '%') command += '%';
    command += c;
  }
  return HLDesktopStringOfText(command + "\"");
}

std::optional<std::string> HLProgramOfExec(std::string_view value) { return firstWord(HLTextOfDesktopString(value)); }

std::optional<std::string> HLFindProgram(const std::string& program, const std::string& path) {
  if (program.find('/') != std::string::npos) {
    return isExecutableFile(program) ? std::optional(program) : std::nullopt;
  }
  for (const std::string& directory : HLPartsBetween(path, ':')) {
    std::string file = directory + "/" + program;
    if (directory.starts_with('/') && isExecutableFile(file)) return file;
  }
  return std::nullopt;
}
