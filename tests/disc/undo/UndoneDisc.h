#pragma once

#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "disc/change/Compaction.h"
#include "disc/change/Mutation.h"
#include "disc/exchange/HostExchange.h"
#include "disc/undo/History.h"
#include "tests/disc/EngineTest.h"
#include "tests/disc/change/ChangeOperations.h"
#include "tests/support/FaultyMedium.h"

// Discs of each kind with a history, on mediums that fail as a plan says.
namespace sectorbox::testing {

struct UndoKind {
  const char* Name;
  sectorbox::DiscType Type;
  bool IsTrimmed;  // the file ends behind what is in use
};

inline void PrintTo(const UndoKind& kind, std::ostream* out) {
  *out << kind.Name;
}

inline constexpr UndoKind kUndoKinds[] = {{"Floppy", kAdf, false},
                                          {"DoubleSidedFloppy", kAdl, false},
                                          {"Dat", kDat, false},
                                          {"TrimmedDat", kDat, true},
                                          {"Card", kCF, false}};

class UndoneDisc {
 public:
  UndoneDisc(const UndoKind& kind, UndoRoom room) : kind_(kind) {
    WriteHostFiles(folder_);
    host_.AcceptMessages = true;
    plan_.SkipsSyncs = true;
    host_.Interleave = false;
    OpenNew();
    history_.emplace(disc_, room);
  }

  Disc& TheDisc() { return disc_; }
  History& TheHistory() { return *history_; }
  ScriptedHost& Host() { return host_; }
  FaultPlan& Plan() { return plan_; }
  [[nodiscard]] std::string Folder() const { return folder_.Path(); }
  [[nodiscard]] std::string Path() const {
    return folder_ / (kind_.Type == kCF ? "card.raw" : kind_.Type == kDat ? "x.dat" : "x.img");
  }

  // All bytes of the disc, and the length of a .dat's file.
  Bytes Now() {
    Bytes bytes(static_cast<std::size_t>(kChangedSectors) * 256);
    disc_.TheDisc.FetchBytes(0, bytes);
    if (kind_.Type == kDat) {
      const auto length = static_cast<std::size_t>(std::filesystem::file_size(Path()));
      bytes.resize(std::min(bytes.size(), length));
    }
    return bytes;
  }
  Bytes Whole() {
    Bytes bytes = Now();
    bytes.resize(static_cast<std::size_t>(kChangedSectors) * 256);
    return bytes;
  }

  // Does something at random, as one step. Gives the step's name.
  std::string DoSomething(std::mt19937& random) {
    const auto pick = [&](unsigned count) { return static_cast<unsigned>(random() % count); };
    const std::int32_t dir = AnyDirectory(pick(4));
    const std::string name = AnyName(dir, pick(47));
    const std::string other = "N" + std::to_string(pick(30));
    switch (pick(12)) {
      case 0:
      case 1:
      case 2: {
        const History::Step step(*history_, "Add");
        WriteAll(folder_ / other, Pattern(pick(6) == 0 ? pick(30000) : pick(3000), pick(200)));
        (void)AddFile(disc_, dir, folder_ / other);
        return "Add";
      }
      case 3:
      case 4: {
        const History::Step step(*history_, "Delete");
        (void)DeleteEntry(disc_, dir, name, false, pick(2) == 0);
        return "Delete";
      }
      case 5: {
        const History::Step step(*history_, "Rename");
        (void)RenameEntry(disc_, other, name, dir, false);
        return "Rename";
      }
      case 6: {
        const History::Step step(*history_, "New Directory");
        (void)NewDirectory(disc_, dir, "D" + other);
        return "New Directory";
      }
      case 7: {
        const History::Step step(*history_, "Compact");
        (void)CompactDisc(disc_);
        return "Compact";
      }
      case 8: {
        const History::Step step(*history_, "Title");
        (void)SetDirTitle(disc_, dir, other);
        return "Title";
      }
      case 9: {
        const History::Step step(*history_, "Boot", History::Mark::kLeaves);
        (void)SetBootOption(disc_, static_cast<std::uint8_t>(pick(4)), MapSums::kUpdate);
        return "Boot";
      }
      case 10: {
        const History::Step step(*history_, "Import");
        (void)ImportFolder(disc_, dir, folder_ / "TREE");
        return "Import";
      }
      default: {
        const History::Step step(*history_, "Delete Directory");
        const Entry entry = EntryOf(dir, name);
        if (!entry.IsDirectory()) return "nothing";
        (void)DeleteTree(disc_, dir, entry.Start(), name, true, true);
        return "Delete Directory";
      }
    }
  }

 private:
  void OpenNew() {
    Bytes bytes = MakeChangedDisc().Bytes();
    if (kind_.IsTrimmed) bytes.resize(static_cast<std::size_t>(LastUsed(bytes)) * 256);
    if (kind_.Type == kCF) {
      Bytes card;
      for (const std::uint8_t byte : bytes) card.insert(card.end(), {byte, 0xC5});
      WriteAll(Path(), card);
      disc_.TheDisc.OpenFile(Path() + ",0", kCF, 0, 0, 0);
    } else {
      WriteAll(Path(), bytes);
      disc_.TheDisc.OpenFile(Path(), kind_.Type, 13, 1, 16);
    }
    ReadFreeMap(disc_);
  }
  static std::int32_t LastUsed(const Bytes& bytes) { return ReadFreeRuns(bytes).back().Start; }

  std::int32_t AnyDirectory(unsigned number) {
    std::int32_t dir = 2;
    for (; number > 0; --number) {
      for (std::int32_t slot = 0; slot < 47; ++slot) {
        const Entry entry = DirectoryAt(disc_, dir).At(slot);
        if (entry.IsEmpty()) break;
        if (entry.IsDirectory() && (static_cast<unsigned>(slot) + number) % 2 == 0) {
          dir = entry.Start();
          break;
        }
      }
    }
    return dir;
  }
  std::string AnyName(std::int32_t dir, unsigned number) {
    std::vector<std::string> names;
    for (std::int32_t slot = 0; slot < 47; ++slot) {
      const std::string name = GetEntryName(disc_, dir, slot);
      if (EntryIsEmpty(name)) break;
      names.push_back(name);
    }
    return names.empty() ? "NONE" : names[number % names.size()];
  }
  Entry EntryOf(std::int32_t dir, const std::string& name) {
    const std::int32_t slot = FindEntry(disc_, dir, name);
    return slot < 0 ? Entry() : DirectoryAt(disc_, dir).At(slot);
  }

  UndoKind kind_;
  TempFolder folder_;
  ScriptedHost host_;
  FaultPlan plan_;
  Disc disc_{host_, MakeHostDevice(), std::make_unique<FaultyMaker>(plan_)};
  std::optional<History> history_;
};

}  // namespace sectorbox::testing
