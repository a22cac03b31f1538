#include "disc/catalogue/Directories.h"

#include <cstddef>
#include <span>

#include "disc/format/SectorSet.h"

namespace sectorbox {
namespace {

using namespace format;

class DirectoryWalk {
 public:
  DirectoryWalk(Disc& disc, DirectoryVisitor& visitor, const WalkRules& rules)
      : disc_(disc), visitor_(visitor), rules_(rules) {}

  // False when the visitor ended the walk.
  bool Visit(const WalkStep& at) {
    if (!rules_.EnterAgain && !entered_.Insert(at.Sector)) {
      return visitor_.MeetAgain(at, above_.Has(at.Sector)) != Walk::kStop;
    }
    if (at.Depth >= kMaxWalkDepth || count_ >= kMaxWalkDirectories) exhausted_ = true;
    if (exhausted_) return visitor_.OutOfBounds(at) != Walk::kStop;
    ++count_;
    const Directory directory = DirectoryAt(disc_, at.Sector);
    const Walk into = visitor_.Enter(at, directory);
    if (into == Walk::kStop) return false;
    if (into == Walk::kPassOver) return true;
    if (directory.HasMark()) {
      (void)above_.Insert(at.Sector);
      if (!VisitEntries(at, directory)) return false;
      above_.Erase(at.Sector);
    }
    visitor_.Leave(at);
    return true;
  }

 private:
  bool VisitEntries(const WalkStep& at, const Directory& directory) {
    for (std::int32_t slot = 0; slot < kEntryCount; ++slot) {
      const Entry entry = directory.At(slot);
      if (rules_.PastEmptySlots) {
        if (entry.IsUnused()) continue;
      } else if (entry.IsEmpty()) {
        break;
      }
      const Walk into = visitor_.Meet(at, slot, entry);
      if (into == Walk::kStop) return false;
      if (!entry.IsDirectory()) continue;
      if (into == Walk::kOn && !Visit({entry.Start(), slot, &at, &entry, at.Depth + 1})) {
        return false;
      }
      if (visitor_.Return(at, slot) == Walk::kStop) return false;
    }
    return true;
  }

  Disc& disc_;
  DirectoryVisitor& visitor_;
  WalkRules rules_;
  SectorSet entered_;
  SectorSet above_;  // the directories that the walk is in, if it enters each only once
  std::int32_t count_ = 0;
  bool exhausted_ = false;
};

}  // namespace

Directory DirectoryAt(Disc& disc, std::int32_t sector) {
  Directory::Bytes bytes;
  disc.TheDisc.FetchBytes(SectorOffset(sector), bytes);
  return Directory(bytes);
}

std::optional<Directory> ReadDirectory(Disc& disc, std::int32_t sector) {
  const Directory directory = DirectoryAt(disc, sector);
  if (!directory.HasMark()) return std::nullopt;
  return directory;
}

Entry EntryAt(Disc& disc, std::int32_t sector, std::int32_t slot) {
  Entry::Bytes bytes;
  disc.TheDisc.FetchBytes(SectorOffset(sector) + kDirEntries + std::int64_t{slot} * kEntrySize,
                          bytes);
  return Entry(bytes);
}

std::uint8_t SequenceAt(Disc& disc, std::int32_t sector) {
  return disc.TheDisc.Fetch(SectorOffset(sector) + kDirSequence);
}

void WriteDirectory(Disc& disc, std::int32_t sector, const Directory& directory) {
  const std::span<const std::uint8_t> bytes(directory.Raw());
  directory.WasSet().ForEachRun([&](std::size_t at, std::size_t count) {
    disc.TheDisc.StoreBytes(SectorOffset(sector) + static_cast<std::int64_t>(at),
                            bytes.subspan(at, count));
  });
}

bool WalkDirectories(Disc& disc, std::int32_t sector, DirectoryVisitor& visitor,
                     const WalkRules& rules) {
  return DirectoryWalk(disc, visitor, rules).Visit({sector, -1, nullptr, nullptr, 0});
}

}  // namespace sectorbox
