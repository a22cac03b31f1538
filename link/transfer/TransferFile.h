#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace sectorbox {

// How a transfer's image file orders its sectors.
enum class FileLayout {
  kLinear,       // sector s at s x 256
  kDoubleSided,  // an .adl: tracks of the two sides in turn
};

// Byte offset of a sector in the file. In a double-sided file track 0 of side 1 (sector 1280 on)
// comes right behind track 0 of side 0.
std::int64_t TransferOffset(FileLayout layout, std::int32_t sector);

// The image file of a transfer, read and written in place. Unlike a saved image it is not replaced
// as a whole: a receive may resume over an earlier copy, and keeps what it doesn't write.
// Every failure is a HostError.
class TransferFile {
 public:
  enum class Access { kRead, kReadWrite };  // kReadWrite creates a missing file, truncates nothing

  TransferFile(const std::string& path, Access access);
  ~TransferFile();
  TransferFile(const TransferFile&) = delete;
  TransferFile& operator=(const TransferFile&) = delete;

  // Bytes past the end of the file read as zeros.
  void ReadAt(std::int64_t offset, std::span<std::uint8_t> bytes) const;
  void WriteAt(std::int64_t offset, std::span<const std::uint8_t> bytes);

  // Sectors first to first + count of a chunk; buffer holds count x 256 bytes. Sectors at or past
  // discSize are not read: their bytes become zeros.
  void ReadChunk(FileLayout layout, std::int32_t first, std::int32_t count, std::int32_t discSize,
                 std::span<std::uint8_t> buffer) const;
  // A linear chunk goes out with one write, a double-sided one sector by sector.
  void WriteChunk(FileLayout layout, std::int32_t first, std::int32_t count,
                  std::span<const std::uint8_t> buffer);

 private:
  std::string path_;
  int file_ = -1;
};

}  // namespace sectorbox
