#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "disc/host/HostFile.h"
#include "disc/medium/MediumKinds.h"

namespace sectorbox {

// How a transfer's image file orders its sectors.
enum class FileLayout {
  kLinear,       // sector s at s x 256
  kDoubleSided,  // an .adl: tracks of the two sides in turn
};

// The layout of the image files of that kind.
[[nodiscard]] FileLayout LayoutOf(DiscType type);

// Byte offset of a sector in the file. In a double-sided file track 0 of side 1 (sector 1280 on)
// comes right behind track 0 of side 0.
[[nodiscard]] std::int64_t TransferOffset(FileLayout layout, std::int32_t sector);

// The image file of a transfer, read and written in place. It is not replaced as a whole, as a
// saved image is: a receive may resume over an earlier copy, and keeps the bytes that it doesn't
// write. Every failure is a HostError.
class TransferFile {
 public:
  // kRead needs a file that exists. kReadWrite creates a missing file and keeps what is in another.
  enum class Access { kRead, kReadWrite };

  TransferFile(const std::string& path, Access access);

  // Bytes past the end of the file read as zeros.
  void ReadAt(std::int64_t offset, std::span<std::uint8_t> bytes) const;
  void WriteAt(std::int64_t offset, std::span<const std::uint8_t> bytes);

  // Reads the count sectors from first on into buffer, which holds count x 256 bytes. Sectors at or
  // past discSize are not read: their bytes become zeros.
  void ReadChunk(FileLayout layout, std::int32_t first, std::int32_t count, std::int32_t discSize,
                 std::span<std::uint8_t> buffer) const;
  // Writes the count sectors from first on: a linear chunk with one write, a double-sided one
  // sector by sector.
  void WriteChunk(FileLayout layout, std::int32_t first, std::int32_t count,
                  std::span<const std::uint8_t> buffer);

 private:
  RandomAccessFile file_;
};

}  // namespace sectorbox
