#include "viewers/text/ByteReader.h"

#include <algorithm>

#include "disc/catalogue/Adfs.h"
#include "disc/host/HostFile.h"

namespace sectorbox {

std::uint8_t ByteReader::Refill(std::int64_t offset) {
  disc_.TheDisc.FetchBytes(offset, bytes_);
  start_ = offset;
  held_ = bytes_.size();
  return bytes_[0];
}

std::int64_t ImageLength(Disc& disc) {
  const DiscImg& store = disc.TheDisc;
  switch (store.disctype()) {
    case kDat:
      return static_cast<std::int64_t>(HostFileLength(store.FileName())) +
             std::int64_t{2} * DiscImg::kBlockSize;
    case kCF:
      return std::max(SectorOffset(store.DiscSize()), std::int64_t{0});
    default:
      return static_cast<std::int64_t>(store.ImageBytes());
  }
}

FileExtent MakeExtent(Disc& disc, const std::string& sectorText, std::uint32_t length) {
  FileExtent extent;
  extent.Start = SectorOffset(static_cast<std::int32_t>(ParseHex(sectorText)));
  extent.Length = std::min(std::int64_t{length}, ImageLength(disc));
  return extent;
}

FileExtent ExtentOf(Disc& disc, const ListRow& row) {
  return MakeExtent(disc, row.Columns[kColSector], ParseHex(row.Columns[kColSize]));
}

}  // namespace sectorbox
