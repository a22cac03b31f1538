#pragma once

#include <cstdint>
#include <string>

namespace sectorbox {

// Which device "Com 1" to "Com 4" stand for: the setting "Com1Device" to "Com4Device" where the
// user has put one, else the machine's serial devices in the order in which they are found. Empty
// when there is neither.
std::string DeviceOfCom(std::int16_t number);

}  // namespace sectorbox
