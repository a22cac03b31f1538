#include <algorithm>

#include "viewers/wordwise/Wordwise.h"
#include "viewers/wordwise/WordwiseFormatter.h"

namespace sectorbox {
namespace {

constexpr std::uint32_t kWordwiseAddress = 0xFFFFFFFF;
constexpr int kWiderTwips = 50;

// The BBC's memory holds no document of more than 32 KB. What a line remembers of its commands may
// grow with the document, so the view of a longer one ends here and says so.
constexpr std::int64_t kLongestDocument = std::int64_t{16} << 20;

}  // namespace

void ShowWordwise(Disc& disc, const ListRow& row, TextView& view) {
  SetFileCaption(view, "View File - ", row.Name());
  if (row.Item.Load() != kWordwiseAddress || row.Item.Exec() != kWordwiseAddress) {
    view.ShowData("This does not appear to be a WordWise Document");
    view.Finished = true;
    return;
  }
  view.WidenWindow(kWiderTwips);
  view.Style = TextStyle();
  const FileExtent document = ExtentOf(disc, row);
  WordwiseFormatter(disc, document, view).Format();
  if (document.Length > kLongestDocument && !view.Finished) {
    view.ShowData("\rThe view ends here: the document is longer than 16 MB\r");
  }
  EndView(view);
}

WordwiseFormatter::WordwiseFormatter(Disc& disc, const FileExtent& document, TextView& view)
    : disc_(disc),
      start_(document.Start),
      DocLen(static_cast<std::int32_t>(std::min(document.Length, kLongestDocument))),
      view_(view),
      reader_(disc) {}

void WordwiseFormatter::Format() {
  BeginPage();
  while (FormatLine()) EmitLineEnds();
}

// Reads the first line of the page once before the head is printed, and drops it, so that the
// commands at the top of a page act before its head is printed. They therefore act twice: an
// unknown one shows its box twice.
void WordwiseFormatter::BeginPage() {
  const std::int32_t pos = Pos;
  ReadLine();
  Pos = pos;
  page_.LineCount = 1;
}

// Prints one line without its line ends, and leaves the number of line ends in Count. False at the
// document's end.
bool WordwiseFormatter::FormatLine() {
  if (page_.Paged && page_.LineCount == 1) PageHead();
  ReadLine();
  if (EndFlag && Ch == wordwise::kSkip) {
    Count = SkipCount;
    // Deferred commands of this line may count something of their own, and so change how many
    // lines are skipped.
    OutputLine();
    if (Count != 0) return true;
  }
  AdjustLine();
  const bool last = EndFlag && Ch == wordwise::kDocumentEnd;
  OutputLine();
  if (last) return false;
  if (align_.Centring && --align_.CentreLines == 0) align_.Centring = false;
  Count = margins_.LineSpacing;
  return true;
}

// Prints Count line ends, but at least one. It stops where the page ends, so a Count of 0 or less
// runs to the end of the page.
void WordwiseFormatter::EmitLineEnds() {
  do {
    NewLine();
    if (!EndFlag) {
      PageFoot();
      ++page_.PageNumber;
      BeginPage();
      return;
    }
  } while (--Count != 0);
}

void WordwiseFormatter::NewLine() {
  EmitChar(wordwise::kParagraphEnd);
  ++page_.LineCount;
  EndFlag = page_.PageLength - page_.BottomSpace >= page_.LineCount;
}

void WordwiseFormatter::PageHead() {
  PageEdge(page_.TopSpace, page_.HeaderLine, page_.HeaderPos);
}

// A continuous document, which isn't Paged, has no head, but it has the bottom space and the
// footer.
void WordwiseFormatter::PageFoot() {
  PageEdge(page_.BottomSpace, page_.FooterLine, page_.FooterPos);
}

// PageEdge reads textLine and textPos anew for each line: the commands in the text may move the
// text, so that it is printed once more further down, or define it anew.
void WordwiseFormatter::PageEdge(std::int16_t lines, const std::int16_t& textLine,
                                 const std::int32_t& textPos) {
  for (std::int16_t i = 0; i < lines; ++i) {
    if (i == textLine) {
      const SavedPos saved = SavePos();
      Pos = textPos;
      if (Pos != -1) {
        ReadLine();
        AdjustLine();
        OutputLine();
      }
      RestorePos(saved);
      align_.Centring = false;
      align_.FlushRight = false;
    }
    NewLine();
  }
}

WordwiseFormatter::SavedPos WordwiseFormatter::SavePos() const {
  const auto value = static_cast<std::int16_t>(Pos);
  return {value, value != Pos};
}

// The first lost place sends the formatter back, into what lies before the document and then
// through the document again. After a second lost place the formatter would do that for ever, so
// the document ends there.
void WordwiseFormatter::RestorePos(const SavedPos& saved) {
  Pos = saved.Value;
  if (!saved.Lost) return;
  if (positionLost_) Pos = DocLen;
  positionLost_ = true;
}

}  // namespace sectorbox
