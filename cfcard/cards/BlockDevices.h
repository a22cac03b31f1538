#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// The block devices of this machine.
namespace sectorbox {

// What a drive is. The numbers are those that the drive table has always had; 1 is no drive.
enum DriveType : std::int32_t {
  kUnknownDrive = 0,
  kNoDrive = 1,
  kRemovableDrive = 2,
  kFixedDrive = 3,
  kRemoteDrive = 4,
  kCdRom = 5,
  kRamDisk = 6,
};

struct BlockDevice {
  std::string Path;  // the name that RawDevice::Open takes, such as "/dev/sdb"
  DriveType Type = kUnknownDrive;
};

// The host's table of block devices. Tests bring one of their own.
class BlockDevices {
 public:
  virtual ~BlockDevices() = default;
  // Every whole disc that is attached at the moment of the call, in the order in which the host
  // counts them (on Linux sda before sdb, and sdz before sdaa). Empty if the host won't tell.
  //
  // A device is removable if its medium can be taken out: a card reader, a stick, a floppy drive,
  // an SD card in a slot of its own. Everything else that holds data is fixed, also a hard disc on
  // USB and flash that is soldered to the board. Fixed devices are never touched, as nobody means
  // to format one from here.
  [[nodiscard]] virtual std::vector<BlockDevice> List() const = 0;
};

// The table of the machine that the program runs on.
[[nodiscard]] std::unique_ptr<BlockDevices> MakeHostBlockDevices();

}  // namespace sectorbox
