#pragma once

#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cfcard/cards/BlockDevices.h"
#include "disc/host/RawDevice.h"

// The drives that may hold a card, under letters as the dialogs and ImageName name them.
namespace sectorbox {

inline constexpr char kFirstLetter = 'C';  // A and B are floppy drives of old and never scanned
inline constexpr char kLastLetter = 'Z';

// Gives letters to the candidates: the removable block devices in their order, then the files that
// the user named as cards. A letter belongs to its device for as long as the program runs, also
// while the device is away: the open partition "E:,0" never becomes one of another device. Devices
// that come when no letter is left get none.
class CardDrives {
 public:
  // devices is the table that Refresh reads; never null.
  explicit CardDrives(std::unique_ptr<BlockDevices> devices = MakeHostBlockDevices())
      : devices_(std::move(devices)) {}

  // Plain files (or devices) that the user says are raw cards; taken up by the next Refresh.
  void SetCardFiles(std::vector<std::string> paths) { cardFiles_ = std::move(paths); }
  const std::vector<std::string>& CardFiles() const { return cardFiles_; }

  // Looks again at what is attached.
  void Refresh();

  // The device behind a letter; empty when there is none at the last Refresh.
  std::string PathOf(char letter) const;

  // The type of the drive of drive's first letter, and its name in text. An empty drive asks for
  // the drive that the program runs from, which is fixed. What has no letter here is no drive (1,
  // with an empty text): only candidates have one.
  DriveType DriveTypeText(const std::string& drive, std::string& text) const;

 private:
  struct Drive {
    std::string Path;
    bool Present = false;
  };

  static constexpr std::size_t kLetters = kLastLetter - kFirstLetter + 1;

  void Take(const std::string& path);

  std::unique_ptr<BlockDevices> devices_;
  std::vector<std::string> cardFiles_;
  std::array<Drive, kLetters> drives_;
};

// The name of a type: "Removable Drive"; empty for no drive.
std::string NameOfDriveType(DriveType type);

// A raw device that is opened by its letter and a colon ("E:"), through drives, which outlives it.
// Any other name is refused: nothing but what the user picked from the list is ever opened.
std::unique_ptr<RawDevice> MakeCardDevice(const CardDrives& drives,
                                          std::unique_ptr<RawDevice> device = MakeHostDevice());

}  // namespace sectorbox
