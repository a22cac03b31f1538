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

// The formatter's state, with what a document starts from. Lengths are columns, counts are lines.
struct WordwiseState {
  std::int16_t LineLength = 70;
  std::int16_t PageNumber = 1;
  std::int16_t PageLength = 66;
  bool Justify = false;
  std::int16_t LineSpacing = 1;
  std::int16_t Indent = 0;  // blanks at the start of each line, inside the line buffer
  std::int16_t TopSpace = 6;
  std::int16_t BottomSpace = 6;
  std::int16_t HeaderLine = 2;  // line of the top space, from 0
  std::int16_t FooterLine = 2;  // line of the bottom space, from 0
  bool Paged = false;
  std::array<std::int16_t, wordwise::kTabStops> TabStops = wordwise::kDefaultStops;
  std::int16_t LineCount = 0;  // lines used on the page, from 1 at its top
  bool Messages = false;       // EM and DM set it, nothing asks for it
  bool Centring = false;
  std::int16_t CentreLines = 1;  // lines still to centre
  bool FlushRight = false;
  bool JustifySide = false;     // from the left; flips with each justified line
  std::int16_t LeftMargin = 0;  // blanks sent before each line, outside the line buffer
  std::uint8_t PadChar = '|';   // the hard blank
  std::int16_t TickChar = '`';  // printed instead of a backquote
  std::int32_t Pos = -1;        // offset of the last byte read from the document
  std::int32_t LinePos = 0;     // last used cell of the line buffer
  std::int32_t LineStart = 0;   // the cell before the line's text
  // One line; cells are counted modulo 256. Cell 0 is a blank that isn't printed. A top bit on a
  // cell marks commands that run when the cell has been printed.
  std::array<std::uint8_t, 256> LineBuffer{};
  std::uint8_t Ch = 0;
  bool EndFlag = false;  // the line has ended, or what was to be parsed wasn't there
  std::int32_t BreakPos = 0;
  std::int32_t BreakLinePos = 0;
  std::int32_t Count = 0;  // lines to emit; digits read; length of a name
  std::int16_t SkipCount = 0;
  std::int32_t HeaderPos = -1;
  std::int32_t FooterPos = -1;
  // Document offsets of the line's deferred commands, in groups that a 0 closes. It is as long as
  // the fullest line so far, and isn't cleared between lines.
  std::vector<std::int32_t> Deferred;
  std::size_t DeferredIndex = 0;
};

}  // namespace sectorbox
