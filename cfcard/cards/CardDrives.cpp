#include "cfcard/cards/CardDrives.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace sectorbox {
namespace {

class CardDevice final : public RawDevice {
 public:
  CardDevice(const CardDrives& drives, std::unique_ptr<RawDevice> device)
      : drives_(drives), device_(std::move(device)) {}

  [[nodiscard]] bool Open(const std::string& path) override {
    device_->Close();
    const bool isLetter = path.size() == 2 && path[1] == ':';
    const std::string found = isLetter ? drives_.PathOf(path[0]) : std::string();
    known_ = !found.empty();
    return known_ && device_->Open(found);
  }
  bool IsOpen() const override { return device_->IsOpen(); }
  [[nodiscard]] std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> buffer) override {
    return device_->Read(offset, buffer);
  }
  [[nodiscard]] std::size_t Write(std::uint64_t offset,
                                  std::span<const std::uint8_t> buffer) override {
    return device_->Write(offset, buffer);
  }
  void Close() override { device_->Close(); }
  bool Is(const std::string& path) const override { return device_->Is(path); }
  int LastError() const override {
    return known_ ? device_->LastError() : static_cast<int>(std::errc::no_such_device);
  }

 private:
  const CardDrives& drives_;
  std::unique_ptr<RawDevice> device_;
  bool known_ = true;
};

}  // namespace

void CardDrives::Refresh() {
  for (Drive& drive : drives_) drive.Present = false;
  for (const BlockDevice& device : devices_->List()) {
    if (device.Type == kRemovableDrive) Take(device.Path);
  }
  for (const std::string& path : cardFiles_) Take(path);
}

void CardDrives::Take(const std::string& path) {
  if (path.empty()) return;
  const auto known = std::find_if(drives_.begin(), drives_.end(),
                                  [&](const Drive& drive) { return drive.Path == path; });
  const auto place = known != drives_.end()
                         ? known
                         : std::find_if(drives_.begin(), drives_.end(),
                                        [](const Drive& drive) { return drive.Path.empty(); });
  if (place == drives_.end()) return;
  place->Path = path;
  place->Present = true;
}

std::string CardDrives::PathOf(char letter) const {
  if (letter < kFirstLetter || letter > kLastLetter) return "";
  const Drive& drive = drives_[static_cast<std::size_t>(letter - kFirstLetter)];
  return drive.Present ? drive.Path : "";
}

std::string NameOfDriveType(DriveType type) {
  switch (type) {
    case kUnknownDrive:
      return "(unknown)";
    case kRemovableDrive:
      return "Removable Drive";
    case kFixedDrive:
      return "Fixed Drive";
    case kRemoteDrive:
      return "Remote Drive";
    case kCdRom:
      return "CD-ROM";
    case kRamDisk:
      return "RAM Disk";
    case kNoDrive:
      break;
  }
  return "";
}

DriveType CardDrives::DriveTypeText(const std::string& drive, std::string& text) const {
  DriveType type = kFixedDrive;
  if (!drive.empty()) type = PathOf(drive[0]).empty() ? kNoDrive : kRemovableDrive;
  text = NameOfDriveType(type);
  return type;
}

std::unique_ptr<RawDevice> MakeCardDevice(const CardDrives& drives,
                                          std::unique_ptr<RawDevice> device) {
  return std::make_unique<CardDevice>(drives, std::move(device));
}

}  // namespace sectorbox
