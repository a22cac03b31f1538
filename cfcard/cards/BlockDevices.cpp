#include "cfcard/cards/BlockDevices.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <utility>

namespace sectorbox {
namespace {

namespace fs = std::filesystem;

struct NamedKind {
  std::string_view Prefix;
  DriveType Type;
};

// Kinds that only their name tells.
constexpr std::array<NamedKind, 6> kNamedKinds = {{
    {"sr", kCdRom},
    {"ram", kRamDisk},
    {"zram", kRamDisk},
    {"nbd", kRemoteDrive},
    {"rbd", kRemoteDrive},
    {"drbd", kRemoteDrive},
}};

std::string FirstWord(const fs::path& path) {
  std::ifstream file(path);
  std::string word;
  file >> word;
  return word;
}

DriveType TypeOf(const fs::path& entry) {
  const std::string name = entry.filename().string();
  for (const NamedKind& kind : kNamedKinds) {
    if (name.starts_with(kind.Prefix)) return kind.Type;
  }
  const std::string removable = FirstWord(entry / "removable");
  if (removable == "1") return kRemovableDrive;
  // The slot of an SD card says that it is fixed although its card comes out. Soldered flash is of
  // the type "MMC" instead.
  if (FirstWord(entry / "device" / "type") == "SD") return kRemovableDrive;
  return removable.empty() ? kUnknownDrive : kFixedDrive;
}

}  // namespace

std::vector<BlockDevice> ListBlockDevices(const DeviceRoots& roots) {
  std::vector<std::pair<std::string, BlockDevice>> found;
  std::error_code error;
  for (fs::directory_iterator entry(roots.SysBlock, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    // A slash in a device's name stands there as "!".
    std::string file = name;
    std::replace(file.begin(), file.end(), '!', '/');
    found.push_back({name, {roots.Dev + "/" + file, TypeOf(entry->path())}});
  }
  std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) {
    return std::pair(a.first.size(), a.first) < std::pair(b.first.size(), b.first);
  });
  std::vector<BlockDevice> devices;
  devices.reserve(found.size());
  for (auto& device : found) devices.push_back(std::move(device.second));
  return devices;
}

}  // namespace sectorbox
