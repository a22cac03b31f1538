// Any bytes are the .INF file beside a host file or folder. They are read and parsed, and the file
// is added to a disc with them, exported and parsed once more.

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Catalogue.h"
#include "disc/exchange/HostExchange.h"
#include "disc/exchange/Sidecar.h"
#include "disc/format/Text.h"
#include "fuzz/Require.h"
#include "tests/support/DiscReading.h"
#include "tests/support/ImageBuilder.h"
#include "tests/support/QuietHost.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace sectorbox;
using fuzz::Require;
using sectorbox::testing::ImageBuilder;
using sectorbox::testing::TempFolder;

constexpr std::int32_t kSectors = 320;
constexpr std::size_t kNameLength = 10;
constexpr std::size_t kDigits = 8;

const TempFolder& Folder() {
  static const TempFolder folder;
  return folder;
}

void ParseFile(const std::string& line) {
  const FileSidecar sidecar = ParseFileSidecar(line);
  Require(sidecar.Load.size() == kDigits && sidecar.Exec.size() == kDigits, "eight digits");
  Require(!sidecar.Name || sidecar.Name->size() <= kNameLength, "at most ten characters");
  Require(!sidecar.Name || TrimBlanks(*sidecar.Name) == *sidecar.Name, "a trimmed name");
  Require(sidecar.Name.has_value() == sidecar.Length.has_value(), "all fields or none");
}

// What an export writes of any name and attributes is read back as it was.
void WriteAndParse(std::string text) {
  text.erase(
      std::remove_if(text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n'; }),
      text.end());
  const std::string name = text.substr(0, kNameLength);
  const std::string attr = text.size() > kNameLength ? text.substr(kNameLength) : "";
  const auto number = static_cast<std::uint32_t>(text.size() * 0x01234567U);
  std::string line =
      MakeFileSidecar(name, Hex(number, 8), Hex(~number, 8), Hex(number / 3, 8), attr);
  Require(line.ends_with("\r\n"), "the line's end");
  line.resize(line.size() - 2);
  const FileSidecar back = ParseFileSidecar(line);
  Require(back.Name == TrimBlanks(name) && back.Attr == attr, "name and attributes");
  Require(back.Load == Hex(number, 8) && back.Exec == Hex(~number, 8), "addresses");
  Require(back.Length == number / 3, "length");
  line = MakeFolderSidecar(name, attr);
  Require(ParseFolderSidecar(line.substr(0, line.size() - 2)) == TrimBlanks(name), "folder");
}

std::vector<std::uint8_t> BytesOf(Disc& disc) {
  std::vector<std::uint8_t> bytes(std::size_t{kSectors} * 256);
  disc.TheDisc.FetchBytes(0, bytes);
  return bytes;
}

// The sidecar that an export of the file writes says what the entry says.
void Export(Disc& disc, const Entry& entry) {
  const std::string path = Folder() / "out";
  ExportFile(disc, path, entry);
  const FileSidecar sidecar = ParseFileSidecar(ReadSidecarLine(path).value_or(""));
  Require(ParseHex(sidecar.Load) == entry.Load(), "exported load address");
  Require(ParseHex(sidecar.Exec) == entry.Exec(), "exported exec address");
  Require(sidecar.Length == entry.Length(), "exported length");
}

void AddAndExport() {
  static const std::vector<std::uint8_t> empty = [] {
    std::vector<std::uint8_t> bytes = ImageBuilder(kSectors).Bytes();
    bytes.resize(7 * 256);
    return bytes;
  }();
  testing::WriteAll(Folder() / "disc", empty);
  testing::QuietHost host;
  Disc disc(host);
  disc.TheDisc.OpenFile(Folder() / "disc", kAdf, kSectors / 16, 1, 16);
  ReadFreeMap(disc);
  const Outcome outcome = AddFile(disc, 2, Folder() / "host");
  Require(testing::FaultsOf(BytesOf(disc)).empty(), "a sound disc");
  const auto rows = ReadRows(disc, 2);
  Require(outcome != Outcome::kDone || !rows.empty(), "an entry");
  for (const ListRow& row : rows) {
    Require(FindPath(disc, row.Name()).Found, "the new entry is found");
    if (!row.IsDirectory()) Export(disc, row.Item);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  static const bool hasFile = [] {
    testing::WriteAll(Folder() / "host", {1, 2, 3});
    return true;
  }();
  Require(hasFile, "a host file");
  testing::WriteText(Folder() / "host.INF", text);
  const auto line = ReadSidecarLine(Folder() / "host");
  Require(line == text.substr(0, text.find_first_of("\r\n")), "the first line");
  ParseFile(*line);
  (void)ParseFolderSidecar(*line);
  WriteAndParse(text);
  AddAndExport();
  return 0;
}
