#include "disc/exchange/IncomingFile.h"

#include <array>
#include <optional>
#include <span>

#include "disc/change/DirectoryEdit.h"
#include "disc/exchange/HostExchange.h"
#include "disc/exchange/Sidecar.h"
#include "disc/format/Text.h"
#include "disc/host/HostError.h"

namespace sectorbox {

using namespace format;

namespace {

constexpr std::size_t kPart = std::size_t{1} << 20;

}  // namespace

IncomingFile::IncomingFile(const std::string& path, std::uint32_t hostLength, std::uint64_t longest)
    : HostPath(path), HostName(HostBaseName(path)), HostLength(hostLength) {
  const auto line = ReadSidecarLine(path);
  const FileSidecar sidecar = line ? ParseFileSidecar(*line) : FileSidecar{};
  // A long host name is cut first and mapped to an ADFS name after that.
  const std::string own = TrimBlanks(HostName).substr(0, kNameLength);
  SetName(line ? sidecar.Name.value_or(own) : HostToAdfsName(own));
  Load = ParseAddress(sidecar.Load);
  Exec = ParseAddress(sidecar.Exec);
  Attr = sidecar.Attr;
  file_.Open(path, FileAccess::kRead);
  if (HostLength == 0) HostLength = CountBytes(std::min<std::uint64_t>(longest + 1, UINT32_MAX));
  Length = sidecar.Length.value_or(HostLength);
}

// Splits "B.FILE" into the letter of a directory and a name. "$.FILE" has a name only.
void IncomingFile::SetName(std::string name) {
  name.resize(std::min<std::size_t>(name.size(), kNameLength));
  std::replace(name.begin(), name.end(), ' ', '_');
  if (name.size() >= 2 && name[1] == '.') {
    if (name[0] != '$') Prefix = name[0];
    name.erase(0, 2);
  }
  // A carriage return ends a name on the disc; nothing behind it would ever be read.
  Name = name.substr(0, name.find('\r'));
}

std::uint32_t IncomingFile::CountBytes(std::uint64_t limit) {
  std::vector<std::uint8_t> part(kPart);
  std::uint64_t count = 0;
  for (;;) {
    const auto want = static_cast<std::size_t>(std::min<std::uint64_t>(kPart, limit - count));
    const std::size_t done = file_.ReadAt(count, std::span(part).first(want));
    if (count == 0) first_.assign(part.begin(), part.begin() + static_cast<std::ptrdiff_t>(done));
    count += done;
    if (done < kPart) return static_cast<std::uint32_t>(count);
  }
}

void IncomingFile::StoreIn(Disc& disc, std::int32_t start) const {
  std::int64_t at = SectorOffset(start);
  const std::int64_t end = at + SectorOffset(SectorsOfLength(Length));
  const std::uint32_t own = std::min(Length, HostLength);
  std::vector<std::uint8_t> part(std::min<std::size_t>(kPart, own));
  for (std::uint32_t done = 0; done < own;) {
    const auto bytes = std::span(part).first(std::min<std::size_t>(kPart, own - done));
    if (done < first_.size()) {
      std::copy_n(first_.begin(), bytes.size(), bytes.begin());
    } else if (file_.ReadAt(done, bytes) < bytes.size()) {
      throw HostError(HostPath, "Unexpected end of file");
    }
    disc.TheDisc.StoreBytes(at, bytes);
    at += static_cast<std::int64_t>(bytes.size());
    done += static_cast<std::uint32_t>(bytes.size());
  }
  static constexpr std::array<std::uint8_t, 16384> kZeros{};
  while (at < end) {
    const auto zeros = std::min<std::int64_t>(end - at, kZeros.size());
    disc.TheDisc.StoreBytes(at, std::span(kZeros).first(static_cast<std::size_t>(zeros)));
    at += zeros;
  }
}

}  // namespace sectorbox
