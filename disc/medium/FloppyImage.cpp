// How a floppy image lies in its file: loading and storing for the two kinds that live in memory.

#include <algorithm>
#include <cstdint>

#include "disc/catalogue/Adfs.h"
#include "disc/host/HostFile.h"
#include "disc/medium/FloppyTracks.h"
#include "disc/store/Disc.h"
#include "disc/store/DiscImg.h"

namespace sectorbox {

std::int32_t LoadedTrack(std::int32_t fileTrack, bool interleaved) {
  return interleaved ? (fileTrack % 2) * format::kFloppyTracks + fileTrack / 2 : fileTrack;
}

std::int32_t StoredTracks(std::int32_t discSize, std::size_t bytesInMemory) {
  // S / 16 rounded to nearest, ties to even as everywhere; and never more than there is.
  std::int32_t tracks = discSize / format::kFloppySectors;
  const std::int32_t rest = discSize % format::kFloppySectors;
  if (rest > 8 || (rest == 8 && tracks % 2 == 1)) ++tracks;
  return static_cast<std::int32_t>(std::min<std::size_t>(static_cast<std::size_t>(tracks),
                                                         bytesInMemory / format::kFloppyTrackSize));
}

std::vector<std::uint8_t> ArrangeAdl(Disc& disc) {
  std::int32_t discSize = MapDiscSize(disc);
  // A card partition or a .dat can hold a disc of this size too; it is fetched as far as it goes.
  const std::size_t available = disc.TheDisc.InMemory() ? disc.TheDisc.ImageBytes() : SIZE_MAX;
  // By a damaged map not even the track of the map and the root may be there. Storing back is no
  // reason to cut the user's file down to that.
  if (disc.TheDisc.InMemory() && StoredTracks(discSize, available) == 0) {
    discSize = static_cast<std::int32_t>(available / format::kSectorSize);
  }
  const std::int32_t tracks = StoredTracks(discSize, available);
  // Only a store interleaves by the number of tracks; a load does whenever the option is set. An
  // image of one side is permuted on its way in and not on its way out, and stays so.
  const bool interleaved = tracks > format::kFloppyTracks && disc.Host.InterleavedDisc();
  const std::size_t bytes =
      std::min(static_cast<std::size_t>(discSize) * format::kSectorSize, available);
  std::vector<std::uint8_t> file(
      std::max(bytes, static_cast<std::size_t>(tracks) * format::kFloppyTrackSize));
  for (std::int32_t i = 0; i < tracks; ++i) {
    const auto track = std::int64_t{LoadedTrack(i, interleaved)} * format::kFloppyTrackSize;
    disc.TheDisc.FetchBytes(
        track, std::span(file).subspan(static_cast<std::size_t>(i) * format::kFloppyTrackSize,
                                       format::kFloppyTrackSize));
  }
  file.resize(bytes);
  return file;
}

void DiscImg::LoadAdf(const std::vector<std::uint8_t>& file) {
  std::copy(file.begin(), file.end(), image_.begin());
}

void DiscImg::LoadAdl(const std::vector<std::uint8_t>& file) {
  const bool interleaved = disc_.Host.InterleavedDisc();
  for (std::size_t at = 0; at < file.size(); at += format::kSectorSize) {
    const auto i = static_cast<std::int32_t>(at / format::kSectorSize);
    const std::int32_t track = LoadedTrack(i / format::kFloppySectors, interleaved);
    const std::int32_t sector = track * format::kFloppySectors + i % format::kFloppySectors;
    const auto part = std::min<std::size_t>(format::kSectorSize, file.size() - at);
    StoreBytes(SectorOffset(sector), std::span(file).subspan(at, part));
  }
}

void DiscImg::StoreAdf() {
  std::vector<std::uint8_t> file(image_);
  if (!disc_.Host.PadDiscImages()) {
    if (const auto trimmed = TrimmedSize(disc_, MapDiscSize(disc_))) {
      const auto bytes = static_cast<std::size_t>(*trimmed) * format::kSectorSize;
      file.resize(std::min(bytes, image_.size()));
    }
  }
  OutputFile output = CreateOutputFile(fileName_);
  output.Write(file);
  output.Close();
}

void DiscImg::StoreAdl() {
  const std::vector<std::uint8_t> file = ArrangeAdl(disc_);
  OutputFile output = CreateOutputFile(fileName_);
  output.Write(file);
  output.Close();
}

}  // namespace sectorbox
