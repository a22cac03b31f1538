#pragma once

#include <string>
#include <utility>
#include <vector>

#include "cfcard/cards/BlockDevices.h"

namespace sectorbox {

// The block devices as the kernel's table tells of them. sysBlock is the folder of that table and
// dev the folder of the devices; tests bring folders of their own.
class SysBlockDevices final : public BlockDevices {
 public:
  SysBlockDevices(std::string sysBlock, std::string dev)
      : sysBlock_(std::move(sysBlock)), dev_(std::move(dev)) {}

  // Removable is what the kernel calls removable, and an SD card in a slot.
  [[nodiscard]] std::vector<BlockDevice> List() const override;

 private:
  std::string sysBlock_;
  std::string dev_;
};

}  // namespace sectorbox
