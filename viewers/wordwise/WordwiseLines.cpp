// Finished lines: aligned, justified, printed.
#include "viewers/wordwise/WordwiseFormatter.h"

namespace sectorbox {

using namespace wordwise;

// A line is set right or centred only if the end of a paragraph has ended it. A line is justified
// only if wrapping has broken it. So if justification is on, a centred line that wraps is
// justified.
void WordwiseFormatter::AdjustLine() {
  const bool paragraphEnded = EndFlag && Ch == kParagraphEnd;
  if (align_.FlushRight && paragraphEnded) {
    RightFlushLine();
    align_.FlushRight = false;
  } else if (align_.Centring && paragraphEnded) {
    CentreLine();
  } else if (align_.Justify && !EndFlag) {
    JustifyLine();
  }
}

void WordwiseFormatter::RightFlushLine() {
  const std::int32_t n = margins_.LineLength - line_.LinePos;
  for (std::int32_t k = 0; k < n; ++k) InsertSpace(k);
}

void WordwiseFormatter::CentreLine() {
  const std::int32_t n = (margins_.LineLength - line_.LinePos) / 2;
  for (std::int32_t k = 0; k < n; ++k) InsertSpace(k);
}

// Puts a blank into the cell behind k; the rest of the line moves up by one cell.
void WordwiseFormatter::InsertSpace(std::int32_t k) {
  for (std::int32_t cell = line_.LinePos; cell > k; --cell) CellAt(cell + 1) = CellAt(cell);
  CellAt(k + 1) = kBlank;
  ++line_.LinePos;
}

// Stretches the gaps of the line until it is full. Each sweep adds one blank to each gap. The
// sweeps of one line begin at its left and those of the next at its right, so that no side of the
// text looks thinner. A blank that carries a mark doesn't count as a blank, and a hard blank never
// stretches.
void WordwiseFormatter::JustifyLine() {
  if (LineIsEmpty()) return;
  while (CellAt(line_.LinePos) == kBlank) {
    if (--line_.LinePos == line_.LineStart) return;
  }
  if (line_.LinePos >= margins_.LineLength) return;
  align_.JustifySide = !align_.JustifySide;
  while (Sweep()) {
  }
}

// One sweep. True if it has found a gap and the line isn't full yet.
bool WordwiseFormatter::Sweep() {
  const std::int32_t step = align_.JustifySide ? 1 : -1;
  std::int32_t position = align_.JustifySide ? line_.LineStart : line_.LinePos;
  std::uint8_t prev = kBlank;
  bool inserted = false;
  while (align_.JustifySide ? position < line_.LinePos : position > line_.LineStart) {
    const std::uint8_t c = CellAt(position);
    if (c == kBlank && prev != kBlank) {
      InsertSpace(position);
      inserted = true;
      if (line_.LinePos == margins_.LineLength) return false;
    }
    prev = c;
    position += step;
  }
  return inserted;
}

// The last cell is fixed before the first one is printed: a deferred command may move LinePos.
void WordwiseFormatter::OutputLine() {
  for (std::int16_t i = 0; i < margins_.LeftMargin; ++i) EmitChar(kBlank);
  deferred_.DeferredIndex = 0;
  if ((CellAt(0) & format::kTopBit) != 0) RunDeferred();
  const std::int32_t last = line_.LinePos;
  for (std::int32_t j = 1; j <= last; ++j) {
    const std::uint8_t cell = CellAt(j);
    EmitChar(cell & format::kLowBits);
    if ((cell & format::kTopBit) != 0) RunDeferred();
  }
}

void WordwiseFormatter::EmitChar(std::int32_t code) {
  if ((code < 32 || code > 126) && code != kParagraphEnd) return;
  if (code == '`') {
    code = output_.TickChar;
  } else if (code == output_.PadChar) {
    code = kBlank;
  }
  character_.assign(1, static_cast<char>(code));
  view_.ShowData(character_);
  if (code == kParagraphEnd) reader_.Forget();
}

}  // namespace sectorbox
