#include "disc/health/Identify.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <vector>

#include "disc/format/Directory.h"
#include "disc/format/LittleEndian.h"
#include "disc/format/MapSectors.h"
#include "disc/format/Text.h"
#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"

namespace sectorbox {
namespace {

using namespace format;

// The start of a file. Behind its end all bytes are zeros.
class Start {
 public:
  Start(std::span<const std::uint8_t> bytes, std::uint64_t size)
      : Size(size), bytes_(bytes.begin(), bytes.end()) {
    bytes_.resize(kLookedAt);
  }

  const std::uint64_t Size;

  [[nodiscard]] std::span<const std::uint8_t> Part(std::size_t at, std::size_t count) const {
    return std::span(bytes_).subspan(at, count);
  }
  [[nodiscard]] std::uint8_t At(std::size_t at) const { return bytes_[at]; }
  [[nodiscard]] std::uint32_t Number(std::size_t at, std::size_t count) const {
    return ReadLittleEndian(Part(at, count));
  }
  [[nodiscard]] bool Has(std::size_t at, std::string_view text) const {
    return std::ranges::equal(Part(at, text.size()), text,
                              [](std::uint8_t byte, char c) { return byte == std::uint8_t(c); });
  }
  // A field of text: top bits cleared, cut at the first carriage return or NUL, without the blanks
  // at its ends.
  [[nodiscard]] std::string Text(std::size_t at, std::size_t count) const {
    std::string text;
    for (const std::uint8_t byte : Part(at, count)) {
      text += static_cast<char>(byte & kLowBits);
    }
    return TrimBlanks(CutAt(CutAt(text, '\r'), '\0'));
  }
  // The even bytes alone, for a card behind an 8-bit interface.
  [[nodiscard]] Start Halved() const {
    std::vector<std::uint8_t> even;
    for (std::size_t i = 0; i < bytes_.size(); i += 2) even.push_back(bytes_[i]);
    return {even, Size / 2};
  }

 private:
  std::vector<std::uint8_t> bytes_;
};

using Found = std::optional<FileLook>;

FileLook Look(FileForm form, std::string title = "") {
  FileLook look;
  look.Form = form;
  look.Title = std::move(title);
  return look;
}

bool MapSumsAreRight(const MapSectors& map) {
  return map.StoredChecksum(0) == map.RightChecksum(0) &&
         map.StoredChecksum(1) == map.RightChecksum(1);
}

// --- ADFS of the 8-bit machines ------------------------------------------------------------------

constexpr std::int64_t kSectorsOfS = 640;
constexpr std::int64_t kSectorsOfM = 1280;
constexpr std::int64_t kSectorsOfL = 2560;

FileForm FormOfSectors(std::int64_t sectors) {
  switch (sectors) {
    case kSectorsOfS:
      return FileForm::kAdfsS;
    case kSectorsOfM:
      return FileForm::kAdfsM;
    case kSectorsOfL:
      return FileForm::kAdfsL;
    default:
      return FileForm::kAdfsHardDisc;
  }
}

// How many sectors the disc has. A map with a wrong sum is not believed if the file itself is as
// long as a floppy.
std::int64_t SectorsOfDisc(const Start& start, const MapSectors& map) {
  const auto there = static_cast<std::int64_t>(start.Size / kSectorSize);
  const bool isFloppy = FormOfSectors(there) != FileForm::kAdfsHardDisc;
  const bool sumIsRight = map.StoredChecksum(0) == map.RightChecksum(0);
  return isFloppy && !sumIsRight ? there : map.DiscSize();
}

Found LookForAdfs(const Start& start) {
  if (!start.Has(kMapSize + kDirMark, kHugo)) return std::nullopt;
  const std::int64_t sectors = SectorsOfDisc(start, MapSectors(start.Part(0, kMapSize)));
  Directory::Bytes root{};
  std::ranges::copy(start.Part(kMapSize, kDirSize), root.begin());
  FileLook look = Look(FormOfSectors(sectors), Directory(root).Title());
  look.IsTrimmed = start.Size < static_cast<std::uint64_t>(sectors) * kSectorSize;
  return look;
}

Found LookForDoubledAdfs(const Start& start) {
  Found look = LookForAdfs(start.Halved());
  if (look) look->IsDoubled = true;
  return look;
}

// --- ADFS of the 32-bit machines -----------------------------------------------------------------

constexpr std::uint64_t kBytesOfD = 819200;
constexpr std::uint64_t kBytesOfE = 819200;
constexpr std::uint64_t kBytesOfF = 1638400;

// Their directories have 2048 bytes, with a mark in front as ours, or another one.
constexpr std::string_view kNick = "Nick";
constexpr std::size_t kLargeDirTitle = 2013;

bool IsLargeDirectory(const Start& start, std::size_t at) {
  return start.Has(at + kDirMark, kNick) || start.Has(at + kDirMark, kHugo);
}

std::string TitleOfLargeDirectory(const Start& start, std::size_t at) {
  return IsLargeDirectory(start, at) ? start.Text(at + kLargeDirTitle, kTitleLength) : "";
}

FileLook LookOfBytes(const Start& start, FileForm form, std::uint64_t bytes, std::string title) {
  FileLook look = Look(form, std::move(title));
  look.IsTrimmed = start.Size < bytes;
  return look;
}

// The old map with directories of 2048 bytes, the root in the second 1024 bytes.
Found LookForOldMap32(const Start& start) {
  constexpr std::size_t kRoot = 1024;
  if (!IsLargeDirectory(start, kRoot)) return std::nullopt;
  const MapSectors map(start.Part(0, kMapSize));
  const auto bytes = static_cast<std::uint64_t>(map.DiscSize()) * kSectorSize;
  if (bytes != kBytesOfD && !MapSumsAreRight(map)) return std::nullopt;
  const FileForm form = bytes == kBytesOfD ? FileForm::kAdfsD : FileForm::kAdfsHardDisc32;
  return LookOfBytes(start, form, bytes, TitleOfLargeDirectory(start, kRoot));
}

// The record that tells the shape of a disc with the new map. All offsets count from its start.
class DiscRecord {
 public:
  DiscRecord(const Start& start, std::size_t at) : start_(start), at_(at) {}

  [[nodiscard]] int SectorShift() const { return start_.At(at_); }  // 10: sectors of 1024 bytes
  [[nodiscard]] std::uint64_t Bytes() const { return start_.Number(at_ + 16, 4); }
  [[nodiscard]] std::string Name() const { return start_.Text(at_ + 22, 10); }
  // True if the numbers can be those of a disc.
  [[nodiscard]] bool IsLikely() const {
    const int shift = SectorShift();
    const int idLength = start_.At(at_ + 4);
    return shift >= 8 && shift <= 12 && start_.At(at_ + 1) > 0 && start_.At(at_ + 2) > 0 &&
           idLength >= shift + 3 && idLength <= 21 && start_.At(at_ + 9) > 0 && Bytes() > 0;
  }

 private:
  const Start& start_;
  std::size_t at_;
};

// A map of one zone begins with the record.
Found LookForE(const Start& start) {
  constexpr std::size_t kRecord = 4;
  constexpr std::size_t kRoot = 0x800;
  const DiscRecord record(start, kRecord);
  if (!record.IsLikely() || record.SectorShift() != 10 || record.Bytes() != kBytesOfE) {
    return std::nullopt;
  }
  std::string title = record.Name();
  if (title.empty()) title = TitleOfLargeDirectory(start, kRoot);
  return LookOfBytes(start, FileForm::kAdfsE, kBytesOfE, std::move(title));
}

// The sum of a boot block, whose last byte holds it: from the end to the start, each carry is added
// to the next sum.
std::uint8_t SumOfBootBlock(std::span<const std::uint8_t> block) {
  unsigned sum = 0;
  for (std::size_t i = block.size() - 1; i-- > 0;) sum = (sum & 0xFF) + (sum >> 8) + block[i];
  return static_cast<std::uint8_t>(sum);
}

// A map of more zones lies in the middle of the disc. A boot block near its start has the record.
Found LookForBootBlock(const Start& start) {
  constexpr std::size_t kBootBlock = 0xC00;
  constexpr std::size_t kBootBlockSize = 512;
  constexpr std::size_t kRecord = kBootBlock + 0x1C0;
  const DiscRecord record(start, kRecord);
  const auto block = start.Part(kBootBlock, kBootBlockSize);
  if (!record.IsLikely() || SumOfBootBlock(block) != block.back()) return std::nullopt;
  const bool isF = record.Bytes() == kBytesOfF && record.SectorShift() == 10;
  return LookOfBytes(start, isF ? FileForm::kAdfsF : FileForm::kAdfsHardDisc32, record.Bytes(),
                     record.Name());
}

// --- DFS -----------------------------------------------------------------------------------------

constexpr std::uint64_t kCatalogueSize = 512;
constexpr std::uint64_t kMostOfOneSide = 204800;
constexpr std::size_t kSecondCatalogue = 2560;  // where the tracks of two sides stand by turns

// One entry of a catalogue; slot counts from 1.
bool IsDfsEntry(const Start& start, std::size_t catalogue, std::size_t slot, std::uint32_t size) {
  const auto name = start.Part(catalogue + 8 * slot, 8);
  const std::size_t info = catalogue + kSectorSize + 8 * slot;
  const std::uint32_t sector = (start.At(info + 6) & 3U) << 8 | start.At(info + 7);
  return sector <= size && std::ranges::all_of(name, [](std::uint8_t byte) {
           const int c = byte & kLowBits;
           return c >= 32 && c < 127;
         });
}

bool IsDfsCatalogue(const Start& start, std::size_t at) {
  if (start.Size < at + kCatalogueSize) return false;
  const std::uint8_t end = start.At(at + 261);
  if (end % 8 != 0) return false;
  const std::uint32_t size = (start.At(at + 262) & 3U) << 8 | start.At(at + 263);
  if (size != 400 && size != 800) return false;
  for (std::size_t slot = 1; slot <= end / 8U; ++slot) {
    if (!IsDfsEntry(start, at, slot, size)) return false;
  }
  return true;
}

// The title stands in two fields; a short one ends with a NUL in the first of them.
std::string DfsTitle(const Start& start) {
  std::vector<std::uint8_t> field;
  for (const auto part : {start.Part(0, 8), start.Part(kSectorSize, 4)}) {
    field.insert(field.end(), part.begin(), part.end());
  }
  return Start(field, field.size()).Text(0, field.size());
}

Found LookForDfs(const Start& start) {
  if (!IsDfsCatalogue(start, 0)) return std::nullopt;
  std::string title = DfsTitle(start);
  if (start.Size <= 2 * kMostOfOneSide && IsDfsCatalogue(start, kSecondCatalogue)) {
    return Look(FileForm::kDfsTwoSides, std::move(title));
  }
  if (start.Size > kMostOfOneSide) return std::nullopt;
  return Look(FileForm::kDfsOneSide, std::move(title));
}

// --- DOS -----------------------------------------------------------------------------------------

constexpr std::uint64_t kBytesOfDos640 = 655360;
constexpr std::uint64_t kBytesOfDos800 = 819200;

constexpr bool IsPowerOfTwo(std::uint32_t value) {
  return value != 0 && (value & (value - 1)) == 0;
}

std::string LabelOfDos(const Start& start) {
  constexpr std::uint8_t kHasLabel = 0x29;
  const std::string label = start.At(38) == kHasLabel ? start.Text(43, 11) : "";
  return label == "NO NAME" ? "" : label;
}

// A boot sector begins with a jump over the block of numbers that tells the shape of the disc.
Found LookForDos(const Start& start) {
  if (start.At(0) != 0xEB && start.At(0) != 0xE9) return std::nullopt;
  const std::uint32_t sectorSize = start.Number(11, 2);
  const std::uint8_t tables = start.At(16);
  const std::uint8_t medium = start.At(21);
  if (!IsPowerOfTwo(sectorSize) || sectorSize < 128 || sectorSize > 4096 ||
      !IsPowerOfTwo(start.At(13)) || tables < 1 || tables > 2 || medium < 0xF0) {
    return std::nullopt;
  }
  const std::uint32_t small = start.Number(19, 2);
  const std::uint64_t sectors = small != 0 ? small : start.Number(32, 4);
  const std::uint64_t bytes = sectors * sectorSize;
  const FileForm form = bytes == kBytesOfDos640   ? FileForm::kDos640
                        : bytes == kBytesOfDos800 ? FileForm::kDos800
                                                  : FileForm::kDosOther;
  return Look(form, LabelOfDos(start));
}

// The 800K discs of the Master 512 begin with their table at once.
Found LookForDosTable(const Start& start) {
  if (start.Size != kBytesOfDos800 || !start.Has(0, "\xFD\xFF\xFF")) return std::nullopt;
  return Look(FileForm::kDos800);
}

// --- Containers ----------------------------------------------------------------------------------

Found LookForContainer(const Start& start) {
  struct Container {
    std::string_view Magic;
    FileForm Form;
  };
  static constexpr std::array<Container, 5> kContainers = {{
      {"PK\3\4", FileForm::kZip},
      {"\x1F\x8B", FileForm::kGzip},
      {"7z\xBC\xAF", FileForm::kSevenZip},
      {"HXCPICFE", FileForm::kHfe},
      {"UEF File!", FileForm::kUef},
  }};
  for (const Container& container : kContainers) {
    if (start.Has(0, container.Magic)) return Look(container.Form);
  }
  return std::nullopt;
}

// The marks of ADFS stand at odd places, and a map may begin with any bytes. So ADFS is looked for
// before what is told by its first bytes alone.
constexpr std::array kLooks = {LookForAdfs, LookForDoubledAdfs, LookForOldMap32,
                               LookForE,    LookForBootBlock,   LookForContainer,
                               LookForDos,  LookForDosTable,    LookForDfs};

}  // namespace

FileLook Identify(std::span<const std::uint8_t> first, std::uint64_t size) {
  FileLook look;
  if (size == 0) {
    look.Form = FileForm::kEmpty;
    return look;
  }
  const Start start(first.first(std::min(first.size(), kLookedAt)), size);
  for (const auto& lookFor : kLooks) {
    if (const Found found = lookFor(start)) {
      look = *found;
      break;
    }
  }
  look.Size = size;
  return look;
}

FileLook IdentifyFile(const std::string& path) {
  if (KindOfHostFile(path) == HostFileKind::kOther) throw HostError(path, "Not a plain file");
  const std::vector<std::uint8_t> first = ReadHostFile(path, 0, kLookedAt);
  return Identify(first, HostFileLength(path));
}

std::string TextOf(FileForm form) {
  static constexpr std::array<const char*, static_cast<std::size_t>(FileForm::kUnknown) + 1>
      kTexts = {"ADFS S",
                "ADFS M",
                "ADFS L",
                "ADFS hard disc",
                "ADFS D (Archimedes)",
                "ADFS E (Archimedes)",
                "ADFS F (Archimedes)",
                "ADFS hard disc (Archimedes)",
                "DFS, one side",
                "DFS, two sides",
                "DOS 640K",
                "DOS 800K",
                "DOS",
                "ZIP archive",
                "gzip file",
                "7z archive",
                "HFE floppy image",
                "UEF tape image",
                "empty",
                "unknown"};
  return kTexts[static_cast<std::size_t>(form)];
}

std::string TextOf(const FileLook& look) {
  std::string text = TextOf(look.Form);
  if (look.IsDoubled) text += ", byte-doubled";
  if (look.IsTrimmed) text += ", trimmed";
  return text;
}

}  // namespace sectorbox
