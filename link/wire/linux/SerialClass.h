#pragma once

#include <string>
#include <vector>

namespace sectorbox {

// ListSerialDevices over other folders than the kernel's table (/sys/class/tty) and the folder of
// the devices (/dev). Empty if the table can't be read.
[[nodiscard]] std::vector<std::string> ListSerialDevicesIn(const std::string& classFolder,
                                                           const std::string& deviceFolder);

}  // namespace sectorbox
