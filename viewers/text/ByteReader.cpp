#include "viewers/text/ByteReader.h"

#include <algorithm>

namespace sectorbox {

std::uint8_t ByteReader::Refill(std::int64_t offset) {
  disc_.TheDisc.FetchBytes(offset, bytes_);
  start_ = offset;
  held_ = bytes_.size();
  return bytes_[0];
}

FileExtent ObjectExtentOf(Disc& disc, const ListRow& row) {
  return {SectorOffset(row.StartSector()), std::min(std::int64_t{row.Length()}, ImageLength(disc))};
}

FileExtent ExtentOf(Disc& disc, const ListRow& row) {
  return row.IsDirectory() ? FileExtent{} : ObjectExtentOf(disc, row);
}

}  // namespace sectorbox
