#pragma once

#include <cstdint>
#include <filesystem>
#include <ostream>
#include <string>

#include "disc/change/Compaction.h"
#include "disc/change/Mutation.h"
#include "tests/disc/EngineTest.h"

// The operations of the products of operations, mediums and faults, and the disc that they change.
namespace sectorbox::testing {

// An operation on the disc of MakeChangedDisc. folder holds the host files of WriteHostFiles.
struct ChangeOperation {
  const char* Name;
  void (*Run)(Disc& disc, const std::string& folder);
};

// For the list of tests, in which GoogleTest would show the bytes of the value.
inline void PrintTo(const ChangeOperation& operation, std::ostream* out) {
  *out << operation.Name;
}

inline std::int32_t SubOf(Disc& disc) {
  return GetEntrySector(disc, 2, "SUB");
}

inline constexpr ChangeOperation kChangeOperations[] = {
    {"Add", [](Disc& disc,
               const std::string& folder) { (void)AddFile(disc, SubOf(disc), folder + "/NEW"); }},
    {"AddWithAPrefix",
     [](Disc& disc, const std::string& folder) { (void)AddFile(disc, 2, folder + "/P.FILE"); }},
    {"Replace",
     [](Disc& disc, const std::string& folder) { (void)AddFile(disc, 2, folder + "/F05"); }},
    {"ReplaceByALongerFile",
     [](Disc& disc, const std::string& folder) { (void)AddFile(disc, 2, folder + "/F06"); }},
    {"Import",
     [](Disc& disc, const std::string& folder) {
       (void)ImportFolder(disc, SubOf(disc), folder + "/TREE");
     }},
    {"Delete",
     [](Disc& disc, const std::string&) { (void)DeleteEntry(disc, 2, "F00", false, false); }},
    {"DeleteATree",
     [](Disc& disc, const std::string&) {
       (void)DeleteTree(disc, 2, SubOf(disc), "SUB", true, true);
     }},
    {"Rename",
     [](Disc& disc, const std::string&) { (void)RenameEntry(disc, "ZZZ", "F00", 2, false); }},
    {"RenameADirectory",
     [](Disc& disc, const std::string&) { (void)RenameEntry(disc, "AAA", "SUB", 2, false); }},
    {"MakeADirectory", [](Disc& disc, const std::string&) { (void)NewDirectory(disc, 2, "MADE"); }},
    {"SetAttributes",
     [](Disc& disc, const std::string&) {
       (void)SetEntryAttributes(disc, 2, "SUB", true, false, true);
     }},
    {"SetAddresses",
     [](Disc& disc, const std::string&) {
       (void)SetEntryAddresses(disc, 2, "F01", "FFFF1900", "FFFF8023");
     }},
    {"SetTitle",
     [](Disc& disc, const std::string&) { (void)SetDirTitle(disc, 2, "Another title"); }},
    {"SetBootOption",
     [](Disc& disc, const std::string&) { (void)SetBootOption(disc, 3, MapSums::kUpdate); }},
    {"Compact", [](Disc& disc, const std::string&) { (void)CompactDisc(disc); }},
};

inline constexpr std::int32_t kChangedSectors = 200;

// A disc with files in two directories, a hole, and an empty directory.
inline ImageBuilder MakeChangedDisc() {
  ImageBuilder image(kChangedSectors);
  image.SetTitle(2, "Title");
  for (unsigned i = 0; i < 12; ++i) {
    if (i == 3) image.AddHole(9);
    image.AddFile(2, {(i < 10 ? "F0" : "F") + std::to_string(i), Pattern(300U + 211U * i, i)});
  }
  const std::int32_t sub = image.AddDirectory(2, "SUB");
  for (unsigned i = 0; i < 5; ++i) {
    image.AddFile(sub,
                  {"S" + std::to_string(i), Pattern(700, 50U + i), 0, 0, i == 2 ? "LR" : "WR"});
  }
  image.AddDirectory(sub, "EMPTY");
  return image;
}

inline void WriteHostFiles(const TempFolder& folder) {
  WriteAll(folder / "NEW", Pattern(5000, 91));
  WriteAll(folder / "P.FILE", Pattern(3000, 92));
  WriteAll(folder / "F05", Pattern(1300, 93));
  WriteAll(folder / "F06", Pattern(9000, 94));
  std::filesystem::create_directory(folder / "TREE");
  for (unsigned i = 0; i < 4; ++i) {
    WriteAll(folder / ("TREE/T" + std::to_string(i)), Pattern(1500, 95U + i));
  }
}

}  // namespace sectorbox::testing
