#pragma once

#include <cstdint>
#include <string>

namespace sectorbox {

// The device that "Com 1" to "Com 4" stand for. If the user has put one into the setting
// "Com1Device" to "Com4Device", it is that; otherwise number counts the machine's serial devices in
// the order in which they are found. Empty if there is neither.
[[nodiscard]] std::string DeviceOfCom(std::int16_t number);

}  // namespace sectorbox
