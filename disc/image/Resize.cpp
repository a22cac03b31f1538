#include "disc/image/Resize.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <vector>

#include "disc/catalogue/Agreement.h"
#include "disc/host/FileLock.h"
#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/image/NewDisc.h"
#include "disc/image/OpenImage.h"
#include "disc/image/Session.h"
#include "disc/medium/BlockJournal.h"
#include "disc/medium/FileMedium.h"
#include "disc/store/HeldBlocks.h"

namespace sectorbox {
namespace {

using namespace format;

constexpr std::int32_t kTracksPerMegabyte = 32;
constexpr std::int64_t kLargestSize = 0xFFFFFF;  // the size field has three bytes

// The last free run grows or shrinks with the disc. Nothing tests that it reaches the disc's end: a
// disc that becomes smaller than what lies on it gets a damaged map. A full disc has no run; if it
// grows, it gets one for the sectors that were added.
void ResizeLastRun(MapSectors& map, std::int32_t newSize) {
  const std::int32_t added = newSize - map.DiscSize();
  std::vector<FreeRun> runs = map.Runs();
  if (runs.size() > static_cast<std::size_t>(kMapEntries)) runs.resize(kMapEntries);
  if (!runs.empty()) {
    runs.back().Length += added;
  } else if (added > 0) {
    runs.push_back({map.DiscSize(), added});
  } else {
    return;
  }
  map.SetRuns(runs);
}

// Through a journal, as every change.
void WriteFirstBlock(FileMedium& file, const std::vector<std::uint8_t>& bytes) {
  HeldBlocks change;
  change.Begin(file, {});
  change.WriteBlock(file, 0, {bytes, false, {}});
  change.Commit(file, file.HostPath());
  file.Close();
}

// Tells the user if the disc can't be changed now. Changes are refused then, so nothing is lost.
void NoteContradiction(Disc& disc, const std::string& fileName) {
  const std::string& contradiction = FindContradiction(disc);
  if (contradiction.empty()) return;
  if (contradiction.ends_with(kPastTheEnd)) {
    disc.Host.Note("The disc holds more than that: make it larger again before you change it");
  } else {
    disc.Host.Note(HostBaseName(fileName) + ": the map doesn't fit the new size, so the disc " +
                   "can't be changed before it is repaired");
  }
}

}  // namespace

std::optional<std::int32_t> TracksOfMegabytes(const std::string& text) {
  double number = 0;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number, std::chars_format::fixed);
  if (error != std::errc() || rest != end || !std::isfinite(number)) return std::nullopt;
  // To the nearest whole number, ties to even.
  const double tracks = std::nearbyint(number * kTracksPerMegabyte);
  if (std::abs(tracks) > 1e9) return std::nullopt;
  return static_cast<std::int32_t>(tracks);
}

void ResizeImage(Disc& disc, std::int32_t tracks, std::int32_t heads, std::int32_t sectors) {
  const std::string name = ChooseImageFile(disc);
  if (!name.empty()) ResizeImageFile(disc, name, tracks, heads, sectors);
}

void ResizeImageFile(Disc& disc, const std::string& fileName, std::int32_t tracks,
                     std::int32_t heads, std::int32_t sectors) {
  const std::int64_t size = std::int64_t{tracks} * heads * sectors;
  if (size < 1 || size > kLargestSize) {
    disc.Host.ShowMessage("Disc Size Is Out Of Range");
    return;
  }
  // If the image is open, blocks that wait in memory would later be written over the new map.
  if (disc.TheDisc.IsOpenMedium(fileName)) disc.TheDisc.CloseFile();
  FileLock lock;
  const bool isOurs = disc.TheDisc.Lock().IsOn(fileName);
  if (!isOurs && !lock.Take(fileName, disc.Host.LockPatience())) {
    disc.Host.ShowMessage(HostBaseName(fileName) + " is in use by another program");
    return;
  }
  FileMedium file(fileName);
  for (const auto& journal : file.OldJournals()) (void)FinishJournal(*journal, file);
  std::vector<std::uint8_t> bytes = ReadHostFile(fileName, 0, Medium::kBlockSize);
  if (bytes.size() < Medium::kBlockSize) throw HostError(fileName, "Too short for a disc image");
  if (!std::ranges::equal(std::span(bytes).subspan(kMapSize + kDirMark, kHugoLength),
                          std::span(kHugo, kHugoLength))) {
    disc.Host.ShowMessage(std::string(kDamagedDiscMessage) + kNoRoot);
    return;
  }
  // HostError if the file can't be written.
  (void)file.Storable(0, bytes);
  MapSectors map(bytes);
  ResizeLastRun(map, static_cast<std::int32_t>(size));
  map.SetDiscSize(static_cast<std::int32_t>(size));
  map.UpdateChecksums();
  std::copy(map.Raw().begin(), map.Raw().end(), bytes.begin());
  WriteFirstBlock(file, bytes);
  lock.Release();
  OpenImage(disc, fileName);
  NoteTooLarge(disc);
  NoteContradiction(disc, fileName);
}

}  // namespace sectorbox
