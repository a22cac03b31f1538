#include "disc/medium/FloppyMedium.h"

#include <algorithm>

#include "disc/format/FloppyTracks.h"
#include "disc/format/Format.h"
#include "disc/format/MapSectors.h"
#include "disc/host/HostFile.h"

namespace sectorbox {

std::int32_t LoadedTrack(std::int32_t fileTrack, bool interleaved) {
  return interleaved ? format::DiscTrackOfInterleaved(fileTrack) : fileTrack;
}

std::int32_t StoredTracks(std::int32_t discSize, std::size_t bytesInMemory) {
  // The size in tracks is rounded to the nearest number, ties to even.
  std::int32_t tracks = discSize / format::kFloppySectors;
  const std::int32_t rest = discSize % format::kFloppySectors;
  if (rest > 8 || (rest == 8 && tracks % 2 == 1)) ++tracks;
  return static_cast<std::int32_t>(std::min<std::size_t>(static_cast<std::size_t>(tracks),
                                                         bytesInMemory / format::kFloppyTrackSize));
}

std::vector<std::uint8_t> ArrangeAdl(DiscBytes& disc, std::int32_t discSize,
                                     std::optional<std::size_t> inMemory, bool interleaved) {
  const std::size_t available = inMemory.value_or(SIZE_MAX);
  // By a damaged map the disc may not even have one track. The whole disc is stored then, so that
  // the user's file isn't cut to nothing.
  if (inMemory && StoredTracks(discSize, available) == 0) {
    discSize = static_cast<std::int32_t>(available / format::kSectorSize);
  }
  const std::int32_t tracks = StoredTracks(discSize, available);
  // Storing looks at the number of tracks; loading interleaves whenever the option is set. So an
  // image of one side is permuted when it is loaded, but not when it is stored. This stays so,
  // because users have images that were made this way.
  const bool permuted = tracks > format::kFloppyTracks && interleaved;
  const std::size_t bytes =
      std::min(static_cast<std::size_t>(discSize) * format::kSectorSize, available);
  std::vector<std::uint8_t> file(
      std::max(bytes, static_cast<std::size_t>(tracks) * format::kFloppyTrackSize));
  for (std::int32_t i = 0; i < tracks; ++i) {
    const auto track = std::int64_t{LoadedTrack(i, permuted)} * format::kFloppyTrackSize;
    disc.FetchBytes(track,
                    std::span(file).subspan(static_cast<std::size_t>(i) * format::kFloppyTrackSize,
                                            format::kFloppyTrackSize));
  }
  file.resize(bytes);
  return file;
}

namespace {

// The first bytes of an image file, at most that many; none if there is no file. A file that has no
// length, such as a pipe, is read as far as it goes.
std::vector<std::uint8_t> ReadImageFile(const std::string& path, std::size_t bytes) {
  if (!HostFileExists(path)) return {};
  const std::uint64_t length = HostFileLength(path);
  if (length == 0) return ReadHostFile(path, 0, bytes);
  // If the host gave fewer bytes and zeros stood for the others, the next save would store these.
  return ReadHostBytes(path, 0, std::min<std::uint64_t>(length, bytes));
}

}  // namespace

FloppyMedium::FloppyMedium(const std::string& path, Sides sides, std::size_t bytes,
                           StatusLine& status, ImageRules& rules)
    : path_(path), sides_(sides), status_(status), rules_(rules) {
  const std::vector<std::uint8_t> file = ReadImageFile(path, bytes);
  image_.assign(bytes, 0);
  if (sides_ == Sides::kOne) {
    LoadAdf(file);
  } else {
    LoadAdl(file);
  }
}

bool FloppyMedium::ReadBlock(std::int32_t block, std::span<std::uint8_t> data) {
  FetchBytes(std::int64_t{block} * kBlockSize, data);
  return true;
}

void FloppyMedium::WriteBlock(std::int32_t block, std::span<const std::uint8_t> data) {
  const auto place = static_cast<std::size_t>(block) * kBlockSize;
  if (place >= image_.size()) return;
  const auto part = data.first(std::min(data.size(), image_.size() - place));
  std::copy(part.begin(), part.end(), image_.begin() + static_cast<std::ptrdiff_t>(place));
}

void FloppyMedium::FetchBytes(std::int64_t offset, std::span<std::uint8_t> bytes) {
  std::fill(bytes.begin(), bytes.end(), std::uint8_t{0});
  if (offset < 0 || offset >= EndOfData()) return;
  const auto there = std::min(bytes.size(), image_.size() - static_cast<std::size_t>(offset));
  std::copy_n(image_.begin() + offset, there, bytes.begin());
}

std::vector<std::uint8_t> FloppyMedium::WholeFile() {
  if (sides_ == Sides::kOne) return image_;
  const auto sectors = static_cast<std::int32_t>(image_.size() / format::kSectorSize);
  return ArrangeAdl(*this, sectors, image_.size(), rules_.InterleavedDisc());
}

void FloppyMedium::Close() {
  const std::vector<std::uint8_t> file = sides_ == Sides::kOne ? StoreAdf() : StoreAdl();
  OutputFile output = CreateOutputFile(path_);
  output.Write(file);
  output.Close();
  if (!output.Unkept().empty()) status_.Note(output.Unkept());
}

void FloppyMedium::LoadAdf(const std::vector<std::uint8_t>& file) {
  std::copy(file.begin(), file.end(), image_.begin());
}

void FloppyMedium::LoadAdl(const std::vector<std::uint8_t>& file) {
  const bool interleaved = rules_.InterleavedDisc();
  for (std::size_t at = 0; at < file.size(); at += format::kFloppyTrackSize) {
    const auto fileTrack = static_cast<std::int32_t>(at / format::kFloppyTrackSize);
    const auto place =
        static_cast<std::size_t>(LoadedTrack(fileTrack, interleaved)) * format::kFloppyTrackSize;
    // In an image with few tracks a permuted track may have no place in memory.
    if (place >= image_.size()) continue;
    const auto part = std::min({static_cast<std::size_t>(format::kFloppyTrackSize),
                                file.size() - at, image_.size() - place});
    std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(at), part,
                image_.begin() + static_cast<std::ptrdiff_t>(place));
  }
}

std::vector<std::uint8_t> FloppyMedium::StoreAdf() {
  std::vector<std::uint8_t> file(image_);
  if (const auto sectors = rules_.SectorsToStore()) {
    file.resize(std::min(static_cast<std::size_t>(*sectors) * format::kSectorSize, image_.size()));
  }
  return file;
}

std::vector<std::uint8_t> FloppyMedium::StoreAdl() {
  const std::int32_t discSize = MapSectors(image_).DiscSize();
  return ArrangeAdl(*this, discSize, image_.size(), rules_.InterleavedDisc());
}

}  // namespace sectorbox
