#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "disc/store/Disc.h"

// The commands of the CF Card menu. Each saves or drops the current image, lets the user choose a
// partition, does its work, and leaves something open: where the user declines, an empty disc named
// "NewDisc.adl", since the dialog's scan has closed the image that was there before.
namespace sectorbox {

// The two dialogs that choose a partition. Each runs to its end and leaves Disc::ProgressRunning
// true with ImageName set, or false.
class CardDialogs {
 public:
  virtual ~CardDialogs() = default;
  virtual void ShowCF() = 0;
  virtual void ShowFormatCF() = 0;  // formats, too
};

void RunCFCardOpen(Disc& disc, CardDialogs& dialogs);
void RunCFFormat(Disc& disc, CardDialogs& dialogs);
// The used part of a partition, or the whole of it, into a .dat. A cancelled save dialog leaves the
// partition open.
void RunCFCardBackup(Disc& disc, CardDialogs& dialogs, bool wholeCard);
// A file onto a partition, from its first sector on. What the partition has no room for isn't
// written, and the host is told. A cancelled file dialog leaves the empty disc.
void RunCFCardRestore(Disc& disc, CardDialogs& dialogs);

// The twenty formats by size that no menu entry is bound to: each size with the wipe behind the
// plain dialog, and without it behind the format dialog.
struct SizedFormat {
  std::int32_t Sectors;
  bool Wipe;
};
inline constexpr std::size_t kSizedFormats = 20;
std::array<SizedFormat, kSizedFormats> SizedFormats();
void RunSizedFormat(Disc& disc, CardDialogs& dialogs, const SizedFormat& format);

// The save steps of the two backups, on the open partition.
void BackupPartition(Disc& disc, bool wholeCard);
// "E:,0" gives "drive_E0.dat".
std::string BackupFileName(const std::string& imageName);
// An empty double-sided floppy in memory takes the place of whatever was open.
void OpenBlankImage(Disc& disc);

}  // namespace sectorbox
