// The table of the embedded commands, and what each of them does. Pos stands behind the command's
// letters.
#include <algorithm>

#include "disc/host/HostError.h"
#include "viewers/wordwise/WordwiseFormatter.h"

namespace sectorbox {

using namespace wordwise;
using enum WordwiseClass;

namespace {

// The least text width that an indent or a line length may leave.
constexpr std::int16_t kLeastWidth = 10;
constexpr std::int16_t kMostEdgeLines = 80;
constexpr std::int16_t kMaxNumber = 1000;  // no number has more than three digits

}  // namespace

// ExecCommand skips the arguments of the commands that act at once, and RunDeferred those of the
// deferred ones. The commands at the start of a line skip their arguments themselves: TI, CE and FI
// go on with the line, while SP, BP and CP end it and leave EndFlag as their answer.
using Me = WordwiseFormatter;
const std::array<WordwiseFormatter::Command, 39> WordwiseFormatter::kCommands = {{
    {"IN", kAtOnce, [](Me& f) { f.DoIN(); }},       // number: indent
    {"TI", kAtLineStart, [](Me& f) { f.DoTI(); }},  // number: indent one line
    {"CI", kAtOnce, [](Me& f) { f.DoCI(); }},       // cancel indent
    {"FL", kAtOnce, [](Me& f) { f.margins_.LeftMargin = f.NumberOr(0); }},   // number: left margin
    {"LL", kAtOnce, [](Me& f) { f.DoLL(); }},                                // number: line length
    {"PL", kAtOnce, [](Me& f) { f.DoPL(); }},                                // number: page length
    {"TS", kAtOnce, [](Me& f) { f.page_.TopSpace = f.EdgeLines(6); }},       // number: top space
    {"BS", kAtOnce, [](Me& f) { f.page_.BottomSpace = f.EdgeLines(6); }},    // number: bottom space
    {"LS", kAtOnce, [](Me& f) { f.margins_.LineSpacing = f.NumberOr(1); }},  // number: line spacing
    {"CE", kAtLineStart, [](Me& f) { f.DoCE(); }},                           // number: centre lines
    {"SP", kAtLineStart, [](Me& f) { f.DoSP(); }},                           // number: empty lines
    {"BP", kAtLineStart, [](Me& f) { f.DoBP(); }},                           // begin a new page
    {"PN", kAtOnce, [](Me& f) { f.DoPN(); }},                                // number: page number
    {"CP", kAtLineStart, [](Me& f) { f.DoCP(); }},                    // number: conditional page
    {"PC", kAtOnce, [](Me& f) { f.DoPC(); }},                         // character: the hard blank
    {"DH", kAtOnce, [](Me& f) { f.DefineText(f.page_.HeaderPos); }},  // line: header
    {"DF", kAtOnce, [](Me& f) { f.DefineText(f.page_.FooterPos); }},  // line: footer
    {"JO", kAtOnce, [](Me& f) { f.align_.Justify = true; }},          // justification on
    {"NJ", kAtOnce, [](Me& f) { f.align_.Justify = false; }},         // and off
    {"SS", kAtOnce, [](Me& f) { f.margins_.LineSpacing = 1; }},       // single spacing
    {"CO", kAtOnce, [](Me& f) { f.page_.Paged = false; }},            // continuous: no page heads
    {"EP", kAtOnce, [](Me& f) { f.page_.Paged = true; }},             // paged: page heads
    {"DT", kAtOnce, [](Me& f) { f.DoDT(); }},                         // numbers: tab stops
    {"GF", kDeferred, [](Me& f) { f.DoGF(); }},                       // "name": get a file
    {"OC", kDeferred, [](Me& f) { f.DoOC(); }},                       // numbers: output codes
    {"HP", kAtOnce, [](Me& f) { f.page_.HeaderLine = f.EdgeLines(2); }},  // number: header line
    {"FP", kAtOnce, [](Me& f) { f.page_.FooterLine = f.EdgeLines(2); }},  // number: footer line
    {"DP", kAtOnce, [](Me& f) { f.DoDP(); }},                    // number: code for a backquote
    {"EM", kAtOnce, [](Me& f) { f.output_.Messages = true; }},   // messages on
    {"DM", kAtOnce, [](Me& f) { f.output_.Messages = false; }},  // and off
    {"PP", kAtOnce, [](Me& f) { f.DoPP(); }},                    // print the page number
    {"LM", kAtOnce, [](Me& f) { f.DoLM(); }},                    // number: left margin
    {"US", kDeferred, [](Me& f) { f.view_.Style.UnderlineOn = true; }},   // underline starts
    {"UE", kDeferred, [](Me& f) { f.view_.Style.UnderlineOn = false; }},  // and ends
    {"DS", kDeferred, [](Me& f) { f.view_.Style.BoldOn = true; }},        // double strike starts
    {"DE", kDeferred, [](Me& f) { f.view_.Style.BoldOn = false; }},       // and ends
    {"ES", kDeferred, [](Me& f) { f.SkipArgs(); }},                       // escape sequence
    {"*", kAtOnce, [](Me& f) { f.SkipArgs(); }},                          // comment
    {"FI", kAtLineStart, [](Me& f) { f.DoFI(); }},  // right-align the next line
}};

std::int16_t WordwiseFormatter::NumberOr(std::int16_t fallback) {
  const std::int16_t number = ReadNumber();
  return EndFlag ? fallback : number;
}

std::int16_t WordwiseFormatter::NumberWithin(std::int16_t least, std::int16_t below,
                                             std::int16_t fallback) {
  const std::int16_t number = NumberOr(fallback);
  return number >= least && number < below ? number : fallback;
}

std::int16_t WordwiseFormatter::EdgeLines(std::int16_t fallback) {
  return NumberWithin(0, kMostEdgeLines, fallback);
}

// On an empty line the number is taken as it is. Its size is tested only if the indent begins with
// the next line.
void WordwiseFormatter::DoIN() {
  const std::int16_t number = ReadNumber();
  if (LineIsEmpty()) {
    FillIndent(number);
    margins_.Indent = number;
  } else {
    margins_.Indent = number + kLeastWidth < margins_.LineLength ? number : std::int16_t{0};
  }
}

void WordwiseFormatter::DoTI() {
  const std::int16_t number = ReadNumber();
  if (LineIsEmpty())
    FillIndent(number + kLeastWidth < margins_.LineLength ? number : std::int16_t{0});
  SkipArgs();
}

void WordwiseFormatter::DoCI() {
  margins_.Indent = 0;
  if (LineIsEmpty()) FillIndent(0);
}

void WordwiseFormatter::DoLL() {
  const std::int16_t number = ReadNumber();
  const bool usable = !EndFlag && number != 0 && number - margins_.Indent - 1 >= kLeastWidth;
  margins_.LineLength = usable ? number : std::int16_t{70};
}

void WordwiseFormatter::DoPL() {
  page_.PageLength = NumberWithin(10, kMaxNumber, 66);
}

void WordwiseFormatter::DoPN() {
  page_.PageNumber = NumberOr(page_.PageNumber);
}

void WordwiseFormatter::DoDP() {
  output_.TickChar = NumberOr('`');
}

void WordwiseFormatter::DoLM() {
  margins_.LeftMargin = NumberOr(margins_.LeftMargin);
}

void WordwiseFormatter::BeginLineOver() {
  line_.LinePos = line_.LineStart = 0;
}

void WordwiseFormatter::DoCE() {
  align_.CentreLines = NumberOr(1);
  BeginLineOver();
  align_.Centring = true;
  SkipArgs();
}

void WordwiseFormatter::DoFI() {
  BeginLineOver();
  align_.FlushRight = true;
  SkipArgs();
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

void WordwiseFormatter::DoBP() {
  if (page_.Paged) {
    BreakPage();
  } else {
    SkipArgs();
  }
}

void WordwiseFormatter::DoCP() {
  const std::int16_t number = ReadNumber();
  if (!EndFlag && page_.PageLength - page_.BottomSpace < number + page_.LineCount - 1) {
    BreakPage();
  } else {
    SkipArgs();
  }
}

// The text of a header or footer is the rest of the line. textPos is the place of the byte that
// ended the command: NextChar steps over that byte when it reads the text.
void WordwiseFormatter::DefineText(std::int32_t& textPos) {
  SkipArgs();
  textPos = Pos;
  Pos = static_cast<std::int32_t>(paragraphScan_.Search(
      Pos, DocLen, [this](std::int64_t at) { return Byte(at) == kParagraphEnd; }));
  EndFlag = false;
}

// The list may hold fewer numbers than there are stops: the other stops stay as they are. A missing
// number behind a comma, or no number at all, gives all stops their first values back.
void WordwiseFormatter::DoDT() {
  for (std::int16_t& stop : margins_.TabStops) {
    const std::int16_t number = ReadNumber();
    if (EndFlag) {
      margins_.TabStops = kDefaultStops;
      return;
    }
    stop = number;
    SkipArg();
    if (!EndFlag) return;
  }
}

// "Get file" on the BBC puts the named file in place of the name. Here no file is fetched. DoGF
// puts a carriage return behind the name, as a call of the filing system needs it, and then puts
// the quote back, so that the byte is as before.
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
    // If the image can't be written, nothing is lost: the byte would be put back anyway. So the
    // document can still be read.
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

// The number begins with a blank for its sign. It may reach beyond the line's length.
void WordwiseFormatter::DoPP() {
  const std::string digits = (page_.PageNumber < 0 ? "" : " ") + std::to_string(page_.PageNumber);
  for (const char digit : digits) CellAt(++line_.LinePos) = static_cast<std::uint8_t>(digit);
  EndFlag = false;
}

void WordwiseFormatter::DoPC() {
  const std::uint8_t c = ByteOrZero(Pos);
  output_.PadChar = c >= 32 && c <= 126 ? c : std::uint8_t{'|'};
}

// Puts blanks into the n cells behind LinePos; the text then begins behind column n. The count of
// the cells has eight bits and ends when it equals n. So n = 0 clears all 255 cells but that at
// LinePos.
void WordwiseFormatter::FillIndent(std::int16_t n) {
  const std::int16_t usable = UsableIndent(n);
  const std::int32_t cells = usable == 0 ? 255 : usable;
  for (std::int32_t i = 1; i <= cells; ++i) CellAt(line_.LinePos + i) = kBlank;
  line_.LinePos = line_.LineStart = usable;
}

}  // namespace sectorbox
