#include <algorithm>
#include <array>

#include "disc/catalogue/Adfs.h"
#include "disc/exchange/HostExchange.h"
#include "disc/exchange/Sidecar.h"
#include "disc/format/Text.h"

namespace sectorbox {
namespace {

// Names of devices on some hosts. Every name that begins with one of them is changed, so also
// COMMAND.
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

std::string AdfsToHostName(const std::string& name) {
  // An entry's name may hold NULs (see Entry::Name), and no host name can hold one.
  std::string host = name.substr(0, name.find('\0'));
  std::transform(host.begin(), host.end(), host.begin(), ToHost);
  for (const char* device : kDevices) {
    if (UpperCase(host.substr(0, 3)) == device) host.insert(3, "_");
  }
  const std::string upper = UpperCase(host);
  // The name must not look like a sidecar, and not mean the folder itself or the one above it.
  const bool isSidecar = upper.size() >= 4 && upper.substr(upper.size() - 4) == kSidecarEnding;
  if (isSidecar || host == "." || host == "..") host += '_';
  return host;
}

std::string HostToAdfsName(const std::string& name) {
  std::string adfs = name;
  for (std::size_t i = 0; i < adfs.size(); ++i) {
    char& c = adfs[i];
    // A dot among the first two characters stays, since A.PROG belongs into directory A.
    if (c == '.' && i >= 2) c = '/';
    if (c == '#') c = '?';
    if (c == '$') c = '<';
    if (c == '^') c = '>';
  }
  return adfs;
}

std::string HostNamesOfFolder::Take(const std::string& name) {
  std::string host = AdfsToHostName(name);
  while (!used_.insert(host).second) host += '_';
  return host;
}

std::string GetHostName(Disc& disc, std::int32_t dirSector, std::int32_t slot) {
  return AdfsToHostName(GetEntryName(disc, dirSector, slot));
}

}  // namespace sectorbox
