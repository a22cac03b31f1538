// The serial devices that the kernel's table tells of.

#include "link/wire/SerialDevices.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <tuple>

#include "link/wire/linux/SerialClass.h"

namespace sectorbox {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 3> kUsbNames = {"ttyUSB", "ttyACM", "ttyXR"};

// The number at the end of a device's name; -1 if it has none.
long NumberOf(const std::string& name) {
  const auto digits = name.find_last_not_of("0123456789") + 1;
  if (digits >= name.size() || name.size() - digits > 9) return -1;
  return std::stol(name.substr(digits));
}

// The kernel makes ttyS0 to ttyS3 also where there is no chip. The type of such a device is 0.
bool HasChip(const fs::path& entry) {
  std::ifstream file(entry / "type");
  int type = 0;
  return !(file >> type) || type != 0;
}

}  // namespace

std::vector<std::string> ListSerialDevicesIn(const std::string& classFolder,
                                             const std::string& deviceFolder) {
  std::vector<std::tuple<int, long, std::string>> found;
  std::error_code ignored;
  for (fs::directory_iterator at(classFolder, ignored), end; at != end; at.increment(ignored)) {
    const std::string name = at->path().filename().string();
    // Consoles, virtual terminals and pseudo-terminals have no device behind them.
    if (!fs::exists(at->path() / "device", ignored) || !HasChip(at->path())) continue;
    if (!fs::exists(fs::path(deviceFolder) / name, ignored)) continue;
    const bool isUsb = std::any_of(kUsbNames.begin(), kUsbNames.end(),
                                   [&](std::string_view usb) { return name.starts_with(usb); });
    found.emplace_back(isUsb ? 0 : 1, NumberOf(name), name);
  }
  std::sort(found.begin(), found.end());
  std::vector<std::string> devices;
  devices.reserve(found.size());
  for (const auto& [kind, number, name] : found) {
    devices.push_back((fs::path(deviceFolder) / name).string());
  }
  return devices;
}

std::vector<std::string> ListSerialDevices() {
  return ListSerialDevicesIn("/sys/class/tty", "/dev");
}

}  // namespace sectorbox
