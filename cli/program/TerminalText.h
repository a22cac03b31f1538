#pragma once

#include <string>

// What sbx prints. Names, titles and messages may hold any byte of a disc, of a host path or of the
// BBC's answer, and a terminal takes some of them for commands. Where a stream goes to a terminal,
// control bytes are shown as "?" there; a pipe or a file gets all bytes as they are.
namespace sectorbox::cli {

// The text with "?" for each control byte: 0 to 31, 127, and 128 to 159. If the terminal shows
// UTF-8, the bytes of a character that isn't a control character stay as they are.
[[nodiscard]] std::string WithoutControls(const std::string& text, bool utf8);

// The text as standard output and standard error show it.
[[nodiscard]] std::string ShownOnOutput(const std::string& text);
[[nodiscard]] std::string ShownOnErrors(const std::string& text);

// Prints bytes on standard output as they are.
void PrintBytes(const std::string& bytes);
// Prints one line on standard output, as that shows it, and the line's end. Names and titles in it
// may hold any byte.
void PrintLine(const std::string& line);
// The same on standard error.
void PrintErrorLine(const std::string& line);

}  // namespace sectorbox::cli
