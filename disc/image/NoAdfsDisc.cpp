#include "disc/image/NoAdfsDisc.h"

#include <algorithm>
#include <vector>

#include "disc/catalogue/Adfs.h"
#include "disc/host/HostFile.h"

namespace sectorbox {

using namespace format;

bool IsAdfsDisc(Disc& disc) {
  return IsDirectory(disc, kRootSector);
}

bool FileHoldsAdfsDisc(const std::string& fileName) {
  const std::vector<std::uint8_t> mark = ReadHostFile(fileName, kMapSize + kDirMark, kHugoLength);
  return std::ranges::equal(mark, std::span(kHugo, kHugoLength));
}

std::string NoAdfsDiscText(const std::string& path) {
  return HostBaseName(path) + " Is No ADFS Disc";
}

}  // namespace sectorbox
