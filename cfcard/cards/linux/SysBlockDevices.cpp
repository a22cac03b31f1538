#include "cfcard/cards/linux/SysBlockDevices.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <utility>

#include "disc/host/HostPath.h"

namespace sectorbox {
namespace {

namespace fs = std::filesystem;

struct NamedKind {
  std::string_view Prefix;
  DriveType Type;
};

// The kernel tells nothing else of these kinds but their names.
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
  // The kernel calls an SD card in a slot fixed, although the card comes out. Soldered flash is of
  // the type "MMC", and so isn't meant here.
  if (FirstWord(entry / "device" / "type") == "SD") return kRemovableDrive;
  return removable.empty() ? kUnknownDrive : kFixedDrive;
}

}  // namespace

std::vector<BlockDevice> SysBlockDevices::List() const {
  std::vector<std::pair<std::string, BlockDevice>> found;
  std::error_code error;
  for (fs::directory_iterator entry(sysBlock_, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    // The table writes "!" for a slash in a device's name.
    std::string file = name;
    std::replace(file.begin(), file.end(), '!', '/');
    found.push_back({name, {JoinHostPath(dev_, file), TypeOf(entry->path())}});
  }
  std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) {
    return std::pair(a.first.size(), a.first) < std::pair(b.first.size(), b.first);
  });
  std::vector<BlockDevice> devices;
  devices.reserve(found.size());
  for (auto& device : found) devices.push_back(std::move(device.second));
  return devices;
}

std::unique_ptr<BlockDevices> MakeHostBlockDevices() {
  return std::make_unique<SysBlockDevices>("/sys/block", "/dev");
}

}  // namespace sectorbox
