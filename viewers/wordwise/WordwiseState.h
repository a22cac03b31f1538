#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace sectorbox {

// Bytes of a document that mean something.
namespace wordwise {
inline constexpr std::uint8_t kCommandStart = 0x02;  // two letters follow, then the argument
inline constexpr std::uint8_t kCommandEnd = 0x07;
inline constexpr std::uint8_t kParagraphEnd = 0x0D;
inline constexpr std::uint8_t kBlank = 0x20;
inline constexpr std::uint8_t kIgnored1 = 0x7F;
inline constexpr std::uint8_t kDocumentEnd = 0x81;
inline constexpr std::uint8_t kIgnored2 = 0x8D;
inline constexpr std::uint8_t kSoftComma = 0xAC;  // a comma at which a line may break
inline constexpr std::uint8_t kTab = 0xDD;

// What Ch says when a command and no byte of the document has ended the line.
inline constexpr std::uint8_t kSkip = 254;        // SkipCount lines are to be skipped
inline constexpr std::uint8_t kLineBroken = 255;  // a command that wants a line of its own

inline constexpr std::int16_t kSkipPage = 254;  // SkipCount: up to the end of the page
inline constexpr int kTabStops = 11;
inline constexpr std::array<std::int16_t, kTabStops> kDefaultStops = {10, 20, 30, 40,  50, 60,
                                                                      70, 80, 90, 100, 110};
}  // namespace wordwise

// When an embedded command acts.
enum class WordwiseClass : std::uint8_t {
  kAtOnce = 1,       // where it stands
  kAtLineStart = 2,  // on an empty line; on one that has text it ends the line first
  kDeferred = 3,     // when the character before it is printed
};

// The formatter's state by topic, with the values that a document starts from. Lengths are columns,
// counts are lines.

// The place in the document, and what the last step found there.
struct WordwiseReading {
  std::int32_t Pos = -1;  // offset of the last byte read from the document
  std::uint8_t Ch = 0;
  bool EndFlag = false;    // the line has ended, or what was to be parsed wasn't there
  std::int32_t Count = 0;  // lines to emit; digits read; length of a name
  std::int16_t SkipCount = 0;
};

// The page: its size, its head and foot, and how far it is filled.
struct WordwisePage {
  std::int16_t PageLength = 66;
  std::int16_t PageNumber = 1;
  bool Paged = false;
  std::int16_t LineCount = 0;  // lines used on the page, from 1 at its top
  std::int16_t TopSpace = 6;
  std::int16_t BottomSpace = 6;
  std::int16_t HeaderLine = 2;  // line of the top space, from 0
  std::int16_t FooterLine = 2;  // line of the bottom space, from 0
  std::int32_t HeaderPos = -1;  // where the text stands in the document; -1 for none
  std::int32_t FooterPos = -1;
};

// Where the text of a line may stand.
struct WordwiseMargins {
  std::int16_t LineLength = 70;
  std::int16_t LineSpacing = 1;
  std::int16_t LeftMargin = 0;  // blanks sent before each line, outside the line buffer
  std::int16_t Indent = 0;      // blanks at the start of each line, inside the line buffer
  std::array<std::int16_t, wordwise::kTabStops> TabStops = wordwise::kDefaultStops;
};

// How a finished line is moved or stretched.
struct WordwiseAlignment {
  bool Justify = false;
  bool JustifySide = false;  // from the left; flips with each justified line
  bool Centring = false;
  std::int16_t CentreLines = 1;  // lines still to centre
  bool FlushRight = false;
};

// What is printed in place of certain characters.
struct WordwiseOutput {
  std::uint8_t PadChar = '|';   // the hard blank
  std::int16_t TickChar = '`';  // printed instead of a backquote
  bool Messages = false;        // EM and DM set it, and no step asks for it
};

// The line that is being filled.
struct WordwiseLine {
  // The cells are counted modulo 256. Cell 0 is a blank that isn't printed. A top bit on a cell
  // marks commands that run when the cell has been printed.
  std::array<std::uint8_t, 256> LineBuffer{};
  std::int32_t LinePos = 0;    // last used cell
  std::int32_t LineStart = 0;  // the cell before the line's text
  // Pos and LinePos at the last place where the line may break.
  std::int32_t BreakPos = 0;
  std::int32_t BreakLinePos = 0;
};

// The commands that run when a character of the line has been printed.
struct WordwiseDeferred {
  // Their offsets in the document, in groups that a 0 closes. The list is as long as the fullest
  // line so far needed, and isn't cleared between lines.
  std::vector<std::int32_t> Deferred;
  std::size_t DeferredIndex = 0;
};

}  // namespace sectorbox
