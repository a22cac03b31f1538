#include "disc/exchange/Sidecar.h"

#include <algorithm>
#include <initializer_list>

#include "disc/format/Format.h"
#include "disc/format/Text.h"
#include "disc/host/HostFile.h"

namespace sectorbox {
namespace {

constexpr std::uint64_t kLongestLine = 65536;

// The columns first to last of a line; fewer if the line is shorter.
std::string Columns(const std::string& line, std::size_t first, std::size_t last) {
  if (line.size() < first) return "";
  return line.substr(first - 1, last - first + 1);
}

bool HasBlanksAt(const std::string& line, std::initializer_list<std::size_t> columns) {
  return std::all_of(columns.begin(), columns.end(),
                     [&](std::size_t column) { return Columns(line, column, column) == " "; });
}

std::uint32_t ParseLength(std::string digits) {
  digits.erase(0, digits.find_first_not_of(' '));
  return ParseHex(digits);
}

// Makes eight digits of six: the first two are repeated. FF1900 becomes FFFF1900, but 0E1900
// becomes 0E0E1900 too. Sidecars of this form have always been read so.
std::string Extend(const std::string& six) {
  return six.substr(0, 2) + six;
}

// "$.NAME     FF1900 FF8023 000E00 L": a directory letter and addresses of six digits.
bool FitsShortForm(const std::string& line) {
  return line.size() >= 30 && line[1] == '.' && HasBlanksAt(line, {11, 18, 25});
}

void ReadShortForm(const std::string& line, FileSidecar& sidecar) {
  sidecar.Name = TrimBlanks(Columns(line, 1, 9));
  sidecar.Load = Extend(Columns(line, 12, 17));
  sidecar.Exec = Extend(Columns(line, 19, 24));
  sidecar.Length = ParseLength("00" + Columns(line, 26, 31));
  sidecar.Attr = "RW" + Columns(line, 33, 33);
}

// "NAME       FFFF1900 FFFF8023 00000E00 LWR": the form that an export writes. A line of exactly 37
// characters has no blank in column 38, so it doesn't fit.
bool FitsLongForm(const std::string& line) {
  return line.size() >= 37 && HasBlanksAt(line, {11, 20, 29, 38});
}

void ReadLongForm(const std::string& line, FileSidecar& sidecar) {
  sidecar.Name = TrimBlanks(Columns(line, 1, 10));
  sidecar.Load = Columns(line, 12, 19);
  sidecar.Exec = Columns(line, 21, 28);
  sidecar.Length = ParseLength(Columns(line, 30, 37));
  sidecar.Attr = Columns(line, 39, line.size());
}

std::string PadWithBlanks(std::string name) {
  name.resize(std::max<std::size_t>(name.size(), format::kNameLength), ' ');
  return name;
}

}  // namespace

std::optional<std::string> ReadSidecarLine(const std::string& hostPath) {
  const std::string path = hostPath + kSidecarEnding;
  if (!HostFileIsPlain(path)) return std::nullopt;
  const std::vector<std::uint8_t> bytes = ReadHostFile(path, 0, kLongestLine);
  const std::string text(bytes.begin(), bytes.end());
  return text.substr(0, text.find_first_of("\r\n"));
}

FileSidecar ParseFileSidecar(const std::string& line) {
  FileSidecar sidecar;
  // A line that fits both forms is read as the long one, which overwrites every field.
  if (FitsShortForm(line)) ReadShortForm(line, sidecar);
  if (FitsLongForm(line)) ReadLongForm(line, sidecar);
  return sidecar;
}

std::optional<std::string> ParseFolderSidecar(const std::string& line) {
  if (!HasBlanksAt(line, {11})) return std::nullopt;
  return TrimBlanks(Columns(line, 1, 10));
}

std::string MakeFileSidecar(const std::string& name, const std::string& load,
                            const std::string& exec, const std::string& size,
                            const std::string& attr) {
  return PadWithBlanks(name) + " " + load + " " + exec + " " + size + " " + attr + "\r\n";
}

std::string MakeFolderSidecar(const std::string& name, const std::string& attr) {
  return PadWithBlanks(name) + " " + attr + "\r\n";
}

}  // namespace sectorbox
