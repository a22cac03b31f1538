#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace sectorbox::testing {

// Reads what is on a disc from its flat bytes. It calls nothing of the code under test.
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

// The root, with all that is below it. Throws if an entry leads past the disc's end.
ReadObject ReadTree(const std::vector<std::uint8_t>& disc);

struct FreeRun {
  std::int32_t Start = 0;
  std::int32_t Length = 0;
};
std::vector<FreeRun> ReadFreeRuns(const std::vector<std::uint8_t>& disc);

// The rules of a sound disc that this one breaks; empty for a sound disc. The rules: right
// checksums; a free list in order, without runs that touch; nothing overlaps; free and used sectors
// together make the size; each directory has equal marks and sequence numbers at both ends, the
// right parent, each name once and in rising order, zeros behind the last entry, and the name of
// its entry.
std::vector<std::string> FaultsOf(const std::vector<std::uint8_t>& disc);

// All that a user can see of a disc, as one text: its objects with their bytes, but not their
// places, the boot option, and the free runs.
std::string DescribeDisc(const std::vector<std::uint8_t>& disc);

}  // namespace sectorbox::testing
