#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The block devices of this machine, as the kernel tells of them.
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
  std::string Path;  // such as "/dev/sdb"
  DriveType Type = kUnknownDrive;
};

// Where the kernel's tables are read; tests bring their own.
struct DeviceRoots {
  std::string SysBlock = "/sys/block";
  std::string Dev = "/dev";
};

// Every whole disc, short names before long ones and then by name, so that sda comes before sdb,
// and sdz before sdaa. Empty where the kernel's table can't be read.
//
// Removable is a device whose medium the kernel calls removable (a card reader, a stick, a floppy
// drive), and an SD card in a slot of its own. Everything else that holds data is fixed, a hard
// disc on USB and the flash soldered to the board included: those are never touched, as nobody
// formats one by intent from here.
std::vector<BlockDevice> ListBlockDevices(const DeviceRoots& roots);

}  // namespace sectorbox
