// Reading the document into the line buffer.
#include <algorithm>

#include "viewers/wordwise/WordwiseFormatter.h"

namespace sectorbox {

using namespace wordwise;

// A line has room for at least one character: an indent that leaves no room counts as 0. Otherwise
// the formatter would never reach the document's end.
std::int16_t WordwiseFormatter::UsableIndent(std::int16_t indent) const {
  return indent >= margins_.LineLength || indent > 255 ? std::int16_t{0} : indent;
}

void WordwiseFormatter::ReadLine() {
  line_.BreakLinePos = 0;
  deferred_.DeferredIndex = 0;
  const std::int16_t n = align_.Centring ? std::int16_t{0} : UsableIndent(margins_.Indent);
  std::fill_n(line_.LineBuffer.begin(), n + 1, kBlank);
  line_.LineStart = line_.LinePos = n;
  for (;;) {
    NextChar();
    if (EndFlag) return;
    if (Ch == kTab) {
      Tab();
      continue;
    }
    Ch &= format::kLowBits;
    if (line_.LinePos >= margins_.LineLength) break;
    CellAt(++line_.LinePos) = Ch;
  }
  // The line is full. A blank that comes then is the gap between the lines; a word that fills the
  // line on its own is cut; any other word is read again on the next line.
  if (Ch == kBlank) {
    EndFlag = false;
  } else if (line_.BreakLinePos == 0) {
    --Pos;
  } else {
    line_.LinePos = line_.BreakLinePos;
    Pos = line_.BreakPos;
    EndFlag = false;
  }
}

// Fills the line up to the first stop beyond the next column. If that column is a stop itself, or
// lies beyond all stops, nothing happens.
void WordwiseFormatter::Tab() {
  const std::int32_t p = (line_.LinePos + 1) % 256;
  for (const std::int16_t stop : margins_.TabStops) {
    if (p == stop) return;
    if (p > stop) continue;
    for (std::int32_t cell = p; cell < stop; ++cell) CellAt(cell) = output_.PadChar;
    line_.LinePos = stop - 1;
    MarkBreak();
    return;
  }
}

void WordwiseFormatter::MarkBreak() {
  line_.BreakPos = Pos;
  line_.BreakLinePos = line_.LinePos;
  EndFlag = false;
}

void WordwiseFormatter::EndDocument() {
  Ch = kDocumentEnd;
  EndFlag = true;
}

void WordwiseFormatter::NextChar() {
  for (;;) {
    if (++Pos >= DocLen) return EndDocument();
    Ch = Byte(Pos);
    switch (Ch) {
      case kIgnored1:
      case kIgnored2:
        break;
      case kBlank:
      case kSoftComma:
        return MarkBreak();
      case kCommandStart:
        DoCommand();
        if (EndFlag) return;
        break;
      case kParagraphEnd:
      case kDocumentEnd:
        EndFlag = true;
        return;
      default:
        EndFlag = false;
        return;
    }
  }
}

}  // namespace sectorbox
