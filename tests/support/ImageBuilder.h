#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace sectorbox::testing {

// Makes discs byte by byte. It calls nothing of the code under test. The bytes are in the order of
// the store (side 0, then side 1); byte 0 is the first byte of sector 0.
class ImageBuilder {
 public:
  // An empty disc of that many sectors: map, root, both checksums right.
  explicit ImageBuilder(std::int32_t sectors);

  struct File {
    std::string Name;
    std::vector<std::uint8_t> Bytes;
    std::uint32_t Load = 0;
    std::uint32_t Exec = 0;
    std::string Attr = "WR";  // any of E, L, W, R
  };

  // Adds an entry in its sorted place and takes its sectors from the start of the free space, which
  // stays one run. Both give the start sector. dir is a directory's start sector, 2 for the root.
  std::int32_t AddFile(std::int32_t dir, const File& file);
  std::int32_t AddDirectory(std::int32_t dir, const std::string& name,
                            const std::string& attr = "WR");

  // Moves the entry of that name from one directory to another. The object itself stays at its
  // place, so that it may lie below the directory that lists it.
  void Rehang(std::int32_t from, const std::string& name, std::int32_t to);

  // Leaves a hole of that many sectors at the start of the free space and makes it a run.
  void AddHole(std::int32_t sectors);
  // The whole free list, as pairs of start and length; rewrites the map and its checksums.
  void SetFreeRuns(const std::vector<std::pair<std::int32_t, std::int32_t>>& runs);
  void SetTitle(std::int32_t dir, const std::string& title);
  void SetBootOption(std::uint8_t option);

  // Writes a byte anywhere, whatever it breaks.
  void Poke(std::int64_t offset, std::uint8_t value);
  std::uint8_t Peek(std::int64_t offset) const;
  // Makes both map checksums right again after pokes.
  void FixChecksums();

  // The flat bytes (.adf, .dat), and the bytes with the tracks of the two sides by turns (.adl).
  const std::vector<std::uint8_t>& Bytes() const { return bytes_; }
  std::vector<std::uint8_t> InterleavedBytes() const;
  void WriteTo(const std::string& path) const;
  void WriteInterleavedTo(const std::string& path) const;

 private:
  std::int32_t Take(std::int32_t sectors);
  void Insert(std::int32_t dir, const std::vector<std::uint8_t>& entry);
  void WriteMap();

  std::vector<std::uint8_t> bytes_;
  std::vector<std::pair<std::int32_t, std::int32_t>> runs_;
};

}  // namespace sectorbox::testing
