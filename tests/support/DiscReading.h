#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace sectorbox::testing {

// What stands on a disc, read from its flat bytes with knowledge of its own.
struct ReadObject {
  std::string Name;  // cut at the first carriage return
  std::string Attr;  // letters E D L W R
  std::uint32_t Load = 0;
  std::uint32_t Exec = 0;
  std::uint32_t Length = 0;
  std::int32_t Start = 0;
  int Sequence = 0;                  // of the entry
  std::vector<std::uint8_t> Bytes;   // of a file
  std::vector<ReadObject> Contents;  // of a directory
  int MasterSequence = 0;            // of a directory
  std::string Title;                 // of a directory

  bool IsDirectory() const { return Attr.find('D') != std::string::npos; }
};

// The root, with all that is below it. Throws where an entry leads past the disc's end.
ReadObject ReadTree(const std::vector<std::uint8_t>& disc);

struct FreeRun {
  std::int32_t Start = 0;
  std::int32_t Length = 0;
};
std::vector<FreeRun> ReadFreeRuns(const std::vector<std::uint8_t>& disc);

// Every rule that a sound disc keeps and this one doesn't: checksums, the free list in order and
// without touching runs, no overlap of anything, free and used together the size, marks and
// sequence numbers at both ends of each directory, parents, names in ascending order and once,
// zeros behind the last entry, directory names as in their entries. Empty for a sound disc.
std::vector<std::string> FaultsOf(const std::vector<std::uint8_t>& disc);

}  // namespace sectorbox::testing
