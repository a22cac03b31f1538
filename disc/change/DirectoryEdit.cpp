#include "disc/change/DirectoryEdit.h"

#include "disc/catalogue/Directories.h"
#include "disc/format/Text.h"

namespace sectorbox {

Outcome Refuse(Disc& disc, const std::string& message) {
  disc.Host.ShowMessage(message);
  return Outcome::kRefused;
}

std::uint32_t ParseAddress(const std::string& digits) {
  std::uint32_t value = 0;
  for (std::size_t pair = 0; pair < 8; pair += 2) {
    std::string two = pair < digits.size() ? digits.substr(pair, 2) : "";
    two.erase(0, two.find_first_not_of(' '));
    value = value << 8 | ParseHex(two);
  }
  return value;
}

void CopyNameToDirectory(Disc& disc, const Entry& entry, std::int32_t bytes) {
  if (!entry.IsDirectory()) return;
  EditedDirectory directory(disc, entry.Start());
  if (!directory.Now.HasMark()) return;
  directory.Now.TakeNameOf(entry, bytes);
  directory.Write();
}

}  // namespace sectorbox
