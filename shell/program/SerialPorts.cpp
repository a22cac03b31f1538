#include "shell/program/SerialPorts.h"

#include "link/wire/SerialDevices.h"
#include "toolkit/SettingsStore.h"
#include "toolkit/Text.h"

namespace sectorbox {

std::string DeviceOfCom(std::int16_t number) {
  const std::string key = "Com" + std::to_string(number) + "Device";
  std::string chosen = ToHost(SettingsStore().GetString(key.c_str()));
  if (!chosen.empty()) return chosen;
  const auto devices = ListSerialDevices();
  const auto index = static_cast<std::size_t>(number) - 1;
  return number >= 1 && index < devices.size() ? devices[index] : std::string();
}

}  // namespace sectorbox
