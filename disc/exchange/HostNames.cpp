#include <algorithm>
#include <array>

#include "disc/catalogue/Adfs.h"
#include "disc/exchange/HostExchange.h"
#include "disc/exchange/Sidecar.h"
#include "disc/format/Text.h"

namespace sectorbox {
namespace {

// Names that mean devices to some hosts. Anything that begins like one is changed, COMMAND too.
constexpr std::array<const char*, 4> kDevices = {"CON", "PRN", "LPT", "COM"};

char ToHost(char c) {
  switch (c) {
    case '/':
      return '.';
    case '?':
      return '#';
    case '<':
      return '$';
    case '>':
      return '^';
    default:
      return c;
  }
}

}  // namespace

std::string AdfsToHostName(const std::string& Name) {
  // A field padded with NULs alone keeps them, and no host name can hold one.
  std::string host = Name.substr(0, Name.find('\0'));
  std::transform(host.begin(), host.end(), host.begin(), ToHost);
  for (const char* device : kDevices) {
    if (UpperCase(host.substr(0, 3)) == device) host.insert(3, "_");
  }
  const std::string upper = UpperCase(host);
  // A file doesn't pass for a sidecar, nor for the folder itself or the one above.
  const bool isSidecar = upper.size() >= 4 && upper.substr(upper.size() - 4) == kSidecarEnding;
  if (isSidecar || host == "." || host == "..") host += '_';
  return host;
}

std::string HostToAdfsName(const std::string& Name) {
  std::string adfs = Name;
  for (std::size_t i = 0; i < adfs.size(); ++i) {
    char& c = adfs[i];
    // A dot among the first two characters stays: A.PROG goes to directory A.
    if (c == '.' && i >= 2) c = '/';
    if (c == '#') c = '?';
    if (c == '$') c = '<';
    if (c == '^') c = '>';
  }
  return adfs;
}

std::string HostNamesOfFolder::Take(const std::string& Name) {
  std::string host = AdfsToHostName(Name);
  while (!used_.insert(host).second) host += '_';
  return host;
}

std::string GetHostName(Disc& disc, std::int32_t DirSector, std::int32_t Slot) {
  return AdfsToHostName(GetEntryName(disc, DirSector, Slot));
}

}  // namespace sectorbox
