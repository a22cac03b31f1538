#include "cli/program/TerminalText.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "disc/format/Text.h"
#include "disc/host/HostProcess.h"

namespace sectorbox::cli {
namespace {

bool IsControl(std::uint8_t byte) {
  return byte < 32 || (byte >= 127 && byte < 160);
}

// How many bytes the UTF-8 character at the start of text has, if it is a whole one that is no
// control character; else 0. Only characters of two bytes and more are looked for.
std::size_t CharacterAt(std::string_view text) {
  const auto at = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
  const std::uint8_t first = at(0);
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((at(i) & 0xC0) != 0x80) return 0;
  }
  // The characters 128 to 159 are control characters.
  return first == 0xC2 && at(1) < 0xA0 ? 0 : length;
}

// What the environment says of the terminal's characters.
bool TerminalShowsUtf8() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value == '\0') continue;
    const std::string upper = UpperCase(value);
    return upper.find("UTF-8") != std::string::npos || upper.find("UTF8") != std::string::npos;
  }
  return false;
}

}  // namespace

std::string WithoutControls(const std::string& text, bool utf8) {
  std::string shown;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t character = utf8 ? CharacterAt(std::string_view(text).substr(i)) : 0;
    if (character > 0) {
      shown += text.substr(i, character);
      i += character;
      continue;
    }
    shown += IsControl(static_cast<std::uint8_t>(text[i])) ? '?' : text[i];
    ++i;
  }
  return shown;
}

std::string ShownOnOutput(const std::string& text) {
  return OutputGoesToTerminal() ? WithoutControls(text, TerminalShowsUtf8()) : text;
}

std::string ShownOnErrors(const std::string& text) {
  return ErrorsGoToTerminal() ? WithoutControls(text, TerminalShowsUtf8()) : text;
}

void PrintBytes(const std::string& bytes) {
  std::fwrite(bytes.data(), 1, bytes.size(), stdout);
}

void PrintLine(const std::string& line) {
  PrintBytes(ShownOnOutput(line) + "\n");
}

void PrintErrorLine(const std::string& line) {
  const std::string shown = ShownOnErrors(line) + "\n";
  std::fwrite(shown.data(), 1, shown.size(), stderr);
}

}  // namespace sectorbox::cli
