// What each embedded command does. Pos stands behind its letters.
#include <algorithm>

#include "disc/host/HostError.h"
#include "viewers/wordwise/WordwiseFormatter.h"

namespace sectorbox {

using namespace wordwise;
using enum WordwiseDirective;

namespace {

// The least text width that an indent or a line length may leave.
constexpr std::int16_t kLeastWidth = 10;
constexpr std::int16_t kMostEdgeLines = 80;
constexpr std::int16_t kMaxNumber = 1000;  // no number has more than three digits

}  // namespace

// CE, TI and FI skip their argument here as ExecCommand does for the commands that act at once. SP,
// BP and CP end the line themselves and leave EndFlag as their answer.
void WordwiseFormatter::DoDirective(WordwiseDirective directive) {
  if (!DoLayoutDirective(directive) && !DoPageDirective(directive)) DoInlineDirective(directive);
}

bool WordwiseFormatter::DoLayoutDirective(WordwiseDirective directive) {
  switch (directive) {
    case kIN:
      DoIN();
      return true;
    case kTI:
      DoTI();
      SkipArgs();
      return true;
    case kCI:
      Indent = 0;
      if (LineIsEmpty()) FillIndent(0);
      return true;
    case kFL:
      LeftMargin = NumberOr(0);
      return true;
    case kLM:
      LeftMargin = NumberOr(LeftMargin);
      return true;
    case kLL:
      DoLL();
      return true;
    case kLS:
      LineSpacing = NumberOr(1);
      return true;
    case kSS:
      LineSpacing = 1;
      return true;
    case kCE:
      CentreLines = NumberOr(1);
      BeginLineOver();
      Centring = true;
      SkipArgs();
      return true;
    case kFI:
      BeginLineOver();
      FlushRight = true;
      SkipArgs();
      return true;
    case kJO:
      Justify = true;
      return true;
    case kNJ:
      Justify = false;
      return true;
    case kDT:
      DoDT();
      return true;
    default:
      return false;
  }
}

bool WordwiseFormatter::DoPageDirective(WordwiseDirective directive) {
  switch (directive) {
    case kPL:
      PageLength = NumberWithin(10, kMaxNumber, 66);
      return true;
    case kTS:
      TopSpace = NumberWithin(0, kMostEdgeLines, 6);
      return true;
    case kBS:
      BottomSpace = NumberWithin(0, kMostEdgeLines, 6);
      return true;
    case kHP:
      HeaderLine = NumberWithin(0, kMostEdgeLines, 2);
      return true;
    case kFP:
      FooterLine = NumberWithin(0, kMostEdgeLines, 2);
      return true;
    case kDH:
      DefineText(HeaderPos);
      return true;
    case kDF:
      DefineText(FooterPos);
      return true;
    case kPN:
      PageNumber = NumberOr(PageNumber);
      return true;
    case kCO:
      Paged = false;
      return true;
    case kEP:
      Paged = true;
      return true;
    case kSP:
      DoSP();
      return true;
    case kBP:
      if (Paged) {
        BreakPage();
      } else {
        SkipArgs();
      }
      return true;
    case kCP:
      DoCP();
      return true;
    default:
      return false;
  }
}

void WordwiseFormatter::DoInlineDirective(WordwiseDirective directive) {
  switch (directive) {
    case kPC:
      DoPC();
      return;
    case kDP:
      TickChar = NumberOr('`');
      return;
    case kPP:
      DoPP();
      return;
    case kEM:
      Messages = true;
      return;
    case kDM:
      Messages = false;
      return;
    case kUS:
      view_.Style.UnderlineOn = true;
      return;
    case kUE:
      view_.Style.UnderlineOn = false;
      return;
    case kDS:
      view_.Style.BoldOn = true;
      return;
    case kDE:
      view_.Style.BoldOn = false;
      return;
    case kGF:
      DoGF();
      return;
    case kOC:
      DoOC();
      return;
    default:
      SkipArgs();
      return;  // ES and the comment
  }
}

std::int16_t WordwiseFormatter::NumberOr(std::int16_t fallback) {
  const std::int16_t number = ReadNumber();
  return EndFlag ? fallback : number;
}

std::int16_t WordwiseFormatter::NumberWithin(std::int16_t least, std::int16_t below,
                                             std::int16_t fallback) {
  const std::int16_t number = NumberOr(fallback);
  return number >= least && number < below ? number : fallback;
}

// On an empty line the number is taken as it was read, without the test of its size; the test only
// guards an indent that is to begin with the next line.
void WordwiseFormatter::DoIN() {
  const std::int16_t number = ReadNumber();
  if (LineIsEmpty()) {
    FillIndent(number);
    Indent = number;
  } else {
    Indent = number + kLeastWidth < LineLength ? number : std::int16_t{0};
  }
}

void WordwiseFormatter::DoTI() {
  const std::int16_t number = ReadNumber();
  if (LineIsEmpty()) FillIndent(number + kLeastWidth < LineLength ? number : std::int16_t{0});
}

void WordwiseFormatter::DoLL() {
  const std::int16_t number = ReadNumber();
  const bool usable = !EndFlag && number != 0 && number - Indent - 1 >= kLeastWidth;
  LineLength = usable ? number : std::int16_t{70};
}

void WordwiseFormatter::BeginLineOver() {
  LinePos = LineStart = 0;
}

void WordwiseFormatter::DoSP() {
  const std::int16_t number = ReadNumber();
  const bool usable = !EndFlag && number != 0;
  SkipArgs();
  if (!usable) return;
  SkipCount = number;
  Ch = kSkip;
  EndFlag = true;
}

void WordwiseFormatter::BreakPage() {
  SkipCount = kSkipPage;
  SkipArgs();
  Ch = kSkip;
  EndFlag = true;
}

void WordwiseFormatter::DoCP() {
  const std::int16_t number = ReadNumber();
  if (!EndFlag && PageLength - BottomSpace < number + LineCount - 1) {
    BreakPage();
  } else {
    SkipArgs();
  }
}

// The text of a header or footer is the rest of the line. What is kept is the place of the byte
// that ended the command: NextChar steps over it when the text is read.
void WordwiseFormatter::DefineText(std::int32_t& textPos) {
  SkipArgs();
  textPos = Pos;
  Pos = static_cast<std::int32_t>(paragraphScan_.Search(
      Pos, DocLen, [this](std::int64_t at) { return Byte(at) == kParagraphEnd; }));
  EndFlag = false;
}

// A list ends at its end. A hole in it, or no number at all, gives the stops of the start back.
void WordwiseFormatter::DoDT() {
  for (std::int16_t& stop : TabStops) {
    const std::int16_t number = ReadNumber();
    if (EndFlag) {
      TabStops = kDefaultStops;
      return;
    }
    stop = number;
    SkipArg();
    if (!EndFlag) return;
  }
}

// "Get file" on the BBC puts the named file in place of the name. Here nothing is fetched: the name
// is closed with a carriage return, as for a call of the filing system, and put right again, so the
// byte ends as it was.
void WordwiseFormatter::DoGF() {
  ++Pos;
  const std::int64_t from = start_ + Pos;
  const std::int64_t end = std::max(ImageLength(disc_), from);
  const std::int64_t quote =
      quoteScan_.Search(from, end, [this](std::int64_t at) { return reader_.At(at) == '"'; });
  Count = static_cast<std::int32_t>(quote - from);
  if (quote == end) return;
  try {
    disc_.TheDisc.Store(quote, kParagraphEnd);
    disc_.TheDisc.Store(quote, '"');
  } catch (const HostError&) {
    // An image that can't be written loses nothing by it, and its documents can still be read.
  }
}

void WordwiseFormatter::DoOC() {
  do {
    ReadNumber();
    if (EndFlag) return;
    Pos += Count;
    SkipArg();
  } while (EndFlag);
}

// The number has a blank for its sign, and isn't kept within the line.
void WordwiseFormatter::DoPP() {
  const std::string digits = (PageNumber < 0 ? "" : " ") + std::to_string(PageNumber);
  for (const char digit : digits) CellAt(++LinePos) = static_cast<std::uint8_t>(digit);
  EndFlag = false;
}

void WordwiseFormatter::DoPC() {
  const std::uint8_t c = ByteOrZero(Pos);
  PadChar = c >= 32 && c <= 126 ? c : std::uint8_t{'|'};
}

// Blanks in the n cells behind LinePos, and the text begins behind column n. The count runs in
// eight bits and ends when it meets n, so n = 0 clears the 255 cells that aren't LinePos's own.
void WordwiseFormatter::FillIndent(std::int16_t n) {
  const std::int16_t usable = UsableIndent(n);
  const std::int32_t cells = usable == 0 ? 255 : usable;
  for (std::int32_t i = 1; i <= cells; ++i) CellAt(LinePos + i) = kBlank;
  LinePos = LineStart = usable;
}

}  // namespace sectorbox
