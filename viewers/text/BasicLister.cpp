#include "viewers/text/BasicLister.h"

#include <cstdlib>

#include "viewers/text/BasicTokens.h"
#include "viewers/text/ByteReader.h"
#include "viewers/text/HexText.h"

namespace sectorbox {
namespace {

constexpr std::uint8_t kEndOfLine = 0x0D;
constexpr std::uint8_t kEndOfProgram = 0xFF;  // in place of a line number's high byte
constexpr std::size_t kNumberWidth = 5;

// A line of a program is at most 255 bytes. A longer one has lost its end. It is shown in pieces,
// so that a line which runs over half a disc needs no memory for all of it.
constexpr std::size_t kLongestPiece = 65536;

class Lister {
 public:
  Lister(Disc& disc, const FileExtent& file, TextView& view)
      : reader_(disc), file_(file), imageEnd_(ImageLength(disc)), view_(view) {}

  bool IsProgram() { return reader_.At(file_.Start) == kEndOfLine; }
  void ListProgram();

 private:
  std::uint8_t Next() { return reader_.At(file_.Start + offset_++); }
  bool AtImageEnd() const { return file_.Start + offset_ >= imageEnd_; }
  void ListLine(int lineNumber);
  void AppendByte(std::uint8_t c);
  void AppendLineReference();
  void Show();

  ByteReader reader_;
  FileExtent file_;
  std::int64_t imageEnd_;
  TextView& view_;
  std::int64_t offset_ = 1;
  std::string text_;
  bool inQuotes_ = false;
};

void Lister::ListProgram() {
  for (;;) {
    if (view_.Finished) return view_.CloseWindow();
    const std::uint8_t high = Next();
    if (high == kEndOfProgram || offset_ >= file_.Length || AtImageEnd()) return;
    const std::uint8_t low = Next();
    ++offset_;  // the line's length byte isn't used: a line ends at its carriage return
    ListLine(high * 256 + low);
  }
}

void Lister::ListLine(int lineNumber) {
  const std::string number = std::to_string(lineNumber);
  text_.assign(kNumberWidth - number.size(), ' ');
  text_ += number;
  inQuotes_ = false;
  // This stops at the image's end and not at the file's. If a line's end was cut off, the listing
  // shows the bytes behind the file on the disc.
  while (!AtImageEnd()) {
    const std::uint8_t c = Next();
    if (c == '"') inQuotes_ = !inQuotes_;
    if (c == kEndOfLine) break;
    AppendByte(c);
    if (text_.size() < kLongestPiece) continue;
    Show();
    if (view_.Finished) return;
  }
  text_ += '\r';
  Show();
}

// The lister knows only whether it is inside quotes. It expands what follows REM and DATA like
// anything else, and a quote in a REM opens a string up to the end of that line.
void Lister::AppendByte(std::uint8_t c) {
  if (c < 32) {
    text_ += " [0x";
    AppendHex(text_, c, 2);
    text_ += "] ";
  } else if (c < kFirstToken || inQuotes_) {
    text_ += static_cast<char>(c);
  } else {
    text_ += kBasicKeywords[c - kFirstToken];
    if (c == kLineNumberToken) AppendLineReference();
  }
}

// The line number in a GOTO or a similar statement: three bytes that are never below 64, so that
// none of them looks like an end of line. The first byte holds the top bits of the other two,
// exclusive-or with 84. This unfolds only the bits of the low byte, so a reference to line 16384 or
// above lists as a smaller number. Only a damaged reference has a negative value; it lists without
// its sign.
void Lister::AppendLineReference() {
  const std::uint8_t topBits = Next();
  int value = Next() - 64;
  switch (topBits) {
    case 0x44:
      value += 64;
      break;
    case 0x74:
      value += 128;
      break;
    case 0x64:
      value += 192;
      break;
    default:
      break;
  }
  value += (Next() - 64) * 256;
  text_ += std::to_string(std::abs(value));
}

void Lister::Show() {
  view_.ShowData(text_);
  text_.clear();
  reader_.Forget();
}

}  // namespace

void Show_Basic(Disc& disc, const ListRow& row, TextView& view) {
  SetFileCaption(view, "View File - ", row.Name());
  Lister lister(disc, ExtentOf(disc, row), view);
  if (lister.IsProgram()) {
    lister.ListProgram();
  } else {
    view.ShowData("This does not appear to be a BASIC program\r");
  }
  view.Finished = true;
}

}  // namespace sectorbox
