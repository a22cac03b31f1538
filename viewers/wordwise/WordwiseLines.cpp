// Finished lines: aligned, justified, printed.
#include "viewers/wordwise/WordwiseFormatter.h"

namespace sectorbox {

using namespace wordwise;

// Only a line that a paragraph's end has ended is set right or centred, and only one that was
// broken by wrapping is justified: a centred line that wraps is justified where that is on.
void WordwiseFormatter::AdjustLine() {
  const bool paragraphEnded = EndFlag && Ch == kParagraphEnd;
  if (FlushRight && paragraphEnded) {
    RightFlushLine();
    FlushRight = false;
  } else if (Centring && paragraphEnded) {
    CentreLine();
  } else if (Justify && !EndFlag) {
    JustifyLine();
  }
}

void WordwiseFormatter::RightFlushLine() {
  const std::int32_t n = LineLength - LinePos;
  for (std::int32_t k = 0; k < n; ++k) InsertSpace(k);
}

void WordwiseFormatter::CentreLine() {
  const std::int32_t n = (LineLength - LinePos) / 2;
  for (std::int32_t k = 0; k < n; ++k) InsertSpace(k);
}

// A blank into the cell behind k; the rest of the line moves up.
void WordwiseFormatter::InsertSpace(std::int32_t k) {
  for (std::int32_t cell = LinePos; cell > k; --cell) CellAt(cell + 1) = CellAt(cell);
  CellAt(k + 1) = kBlank;
  ++LinePos;
}

// Stretches the line's gaps, one blank a gap in each sweep, until it is full. The sweeps begin at
// the left on one line and at the right on the next, so that no side of the text looks thinner. A
// blank that carries a mark isn't taken for a blank, and a hard blank never stretches.
void WordwiseFormatter::JustifyLine() {
  if (LineIsEmpty()) return;
  while (CellAt(LinePos) == kBlank) {
    if (--LinePos == LineStart) return;
  }
  if (LinePos >= LineLength) return;
  JustifySide = !JustifySide;
  while (Sweep()) {
  }
}

// True if it found a gap and the line isn't full yet.
bool WordwiseFormatter::Sweep() {
  const std::int32_t step = JustifySide ? 1 : -1;
  std::int32_t position = JustifySide ? LineStart : LinePos;
  std::uint8_t prev = kBlank;
  bool inserted = false;
  while (JustifySide ? position < LinePos : position > LineStart) {
    const std::uint8_t c = CellAt(position);
    if (c == kBlank && prev != kBlank) {
      InsertSpace(position);
      inserted = true;
      if (LinePos == LineLength) return false;
    }
    prev = c;
    position += step;
  }
  return inserted;
}

// The number of cells is taken before the first is printed: a deferred command may move LinePos.
void WordwiseFormatter::OutputLine() {
  for (std::int16_t i = 0; i < LeftMargin; ++i) EmitChar(kBlank);
  DeferredIndex = 0;
  if ((CellAt(0) & format::kTopBit) != 0) RunDeferred();
  const std::int32_t last = LinePos;
  for (std::int32_t j = 1; j <= last; ++j) {
    const std::uint8_t cell = CellAt(j);
    EmitChar(cell & format::kLowBits);
    if ((cell & format::kTopBit) != 0) RunDeferred();
  }
}

void WordwiseFormatter::EmitChar(std::int32_t code) {
  if ((code < 32 || code > 126) && code != kParagraphEnd) return;
  if (code == '`') {
    code = TickChar;
  } else if (code == PadChar) {
    code = kBlank;
  }
  character_.assign(1, static_cast<char>(code));
  view_.ShowData(character_);
  if (code == kParagraphEnd) reader_.Forget();
}

}  // namespace sectorbox
