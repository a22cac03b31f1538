#pragma once

#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cfcard/cards/BlockDevices.h"
#include "disc/host/RawDevice.h"

// The drives that may hold a card. The dialogs and ImageName know them by letters.
namespace sectorbox {

inline constexpr char kFirstLetter = 'C';  // A and B are floppy drives of old and never scanned
inline constexpr char kLastLetter = 'Z';

// Gives letters to the devices that may be cards: the removable block devices in their order, then
// the files that the user has named as cards. A letter belongs to its device as long as the program
// runs, also while the device is away: the open partition "E:,0" never turns into a partition of
// another device. A device that comes when no letter is left gets none.
class CardDrives {
 public:
  // devices is the table that Refresh reads; never null.
  explicit CardDrives(std::unique_ptr<BlockDevices> devices = MakeHostBlockDevices())
      : devices_(std::move(devices)) {}

  // The plain files (or devices) that the user has named as raw cards. The next Refresh gives them
  // letters.
  void SetCardFiles(std::vector<std::string> paths) { cardFiles_ = std::move(paths); }
  [[nodiscard]] const std::vector<std::string>& CardFiles() const { return cardFiles_; }

  // Looks again at what is attached.
  void Refresh();

  // The path of a letter's device; empty if the last Refresh found none.
  [[nodiscard]] std::string PathOf(char letter) const;

  // The type of the drive that the first character of drive names, and the type's name in text. An
  // empty drive means the drive that the program runs from, which is fixed. A letter that no device
  // has here is no drive (kNoDrive, with an empty text).
  DriveType DriveTypeText(const std::string& drive, std::string& text) const;

 private:
  struct Drive {
    std::string Path;      // empty while no device has the letter
    bool Present = false;  // whether the last Refresh found the device
  };

  static constexpr std::size_t kLetters = kLastLetter - kFirstLetter + 1;

  // Marks path's drive as present. A path that is new gets the first free letter.
  void Take(const std::string& path);

  std::unique_ptr<BlockDevices> devices_;
  std::vector<std::string> cardFiles_;
  std::array<Drive, kLetters> drives_;
};

// The name of a type, such as "Removable Drive"; empty for kNoDrive.
[[nodiscard]] std::string NameOfDriveType(DriveType type);

// A raw device that is opened by its letter and a colon ("E:"). drives tells the letter's path, and
// outlives the device. Open refuses any other name, so that only what the user picked from the list
// is ever opened.
[[nodiscard]] std::unique_ptr<RawDevice> MakeCardDevice(
    const CardDrives& drives, std::unique_ptr<RawDevice> device = MakeHostDevice());

}  // namespace sectorbox
