#include "viewers/text/TextAndHexViews.h"

#include <algorithm>
#include <array>
#include <span>

#include "viewers/text/ByteReader.h"
#include "viewers/text/HexText.h"

namespace sectorbox {
namespace {

constexpr std::int64_t kBytesOfLine = 16;
constexpr int kOffsetDigits = 6;
// A file may have no line ends. A line is shown in pieces of this many bytes, so that it needs no
// memory for all of it.
constexpr std::size_t kLongestPiece = std::size_t{1} << 20;

char Printable(std::uint8_t byte) {
  const std::uint8_t low = byte & format::kLowBits;
  return low < 32 || low > 126 ? '.' : static_cast<char>(low);
}

void FormatHexLine(std::int64_t offset, std::span<const std::uint8_t> bytes, std::string& line) {
  line.clear();
  AppendHex(line, static_cast<std::uint64_t>(offset), kOffsetDigits);
  line += " : ";
  for (const std::uint8_t byte : bytes) {
    AppendHex(line, byte, 2);
    line += ' ';
  }
  // A short last line keeps its characters in the same column as the others.
  line.append(3 * (kBytesOfLine - bytes.size()) + 1, ' ');
  for (const std::uint8_t byte : bytes) line += Printable(byte);
  line += '\r';
}

}  // namespace

void ShowText(Disc& disc, const ListRow& row, TextView& view) {
  SetFileCaption(view, "View File - ", row.Name());
  const FileExtent file = ExtentOf(disc, row);
  ByteReader reader(disc);
  std::string line;
  for (std::int64_t i = 0; i < file.Length; ++i) {
    const auto c = static_cast<char>(reader.At(file.Start + i));
    if (c == '\n') continue;
    line += c;
    if (c != '\r' && line.size() < kLongestPiece) continue;
    view.ShowData(line);
    line.clear();
    reader.Forget();
  }
  if (!line.empty()) view.ShowData(line);
  EndView(view);
}

void ShowHex(Disc& disc, const ListRow& row, TextView& view) {
  SetFileCaption(view, "View File - ", row.Name());
  const FileExtent file = ObjectExtentOf(disc, row);
  std::array<std::uint8_t, kBytesOfLine> buffer{};
  std::string line;
  for (std::int64_t offset = 0; offset < file.Length && !view.Finished; offset += kBytesOfLine) {
    const auto count = std::min(kBytesOfLine, file.Length - offset);
    const auto bytes = std::span(buffer).first(static_cast<std::size_t>(count));
    disc.TheDisc.FetchBytes(file.Start + offset, bytes);
    FormatHexLine(offset, bytes, line);
    view.ShowData(line);
  }
  EndView(view);
}

}  // namespace sectorbox
