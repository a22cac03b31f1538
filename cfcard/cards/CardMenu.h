#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "disc/store/Disc.h"

// The commands on a card. Each saves or drops the current image, lets the user choose a
// partition, does its work, and leaves a disc open. If the user declines, that is an empty disc
// named "NewDisc.adl", as the dialog's scan has closed the image that was open before.
namespace sectorbox {

// The two dialogs in which the user chooses a partition. Each call returns when the dialog has
// closed. Disc::ProgressRunning is then true, with ImageName set, or false if the user declined.
class CardDialogs {
 public:
  virtual ~CardDialogs() = default;
  virtual void ShowCF() = 0;
  // Also formats the partition, before it returns.
  virtual void ShowFormatCF() = 0;
};

void RunCFCardOpen(Disc& disc, CardDialogs& dialogs);
void RunCFFormat(Disc& disc, CardDialogs& dialogs);
// Copies the used part of a partition, or the whole of it, into a .dat. If the user cancels the
// save dialog, the partition stays open. Without wholeCard, the user is told of a partition that
// holds no ADFS disc; all of it is saved then.
void RunCFCardBackup(Disc& disc, CardDialogs& dialogs, bool wholeCard);
// Copies a file onto a partition, from its first sector on. What the partition has no room for
// isn't written, and the host is told. The user is asked before a file that is no ADFS disc is
// copied. If the user answers No, or cancels the file dialog, the empty disc is opened.
void RunCFCardRestore(Disc& disc, CardDialogs& dialogs);

// The twenty formats by size, which no user can choose today. Each size comes twice: with a wipe,
// where the plain dialog asks for the partition, and without one, where the format dialog asks.
struct SizedFormat {
  std::int32_t Sectors;  // of the disc that is made
  bool Wipe;             // whether every sector of it is zeroed first
};
inline constexpr std::size_t kSizedFormats = 20;
[[nodiscard]] std::array<SizedFormat, kSizedFormats> SizedFormats();
void RunSizedFormat(Disc& disc, CardDialogs& dialogs, const SizedFormat& format);

// The last step of the two backups: asks for the file and copies the open partition into it.
void BackupPartition(Disc& disc, bool wholeCard);
// The name that a backup's save dialog proposes: "E:,0" gives "drive_E0.dat".
[[nodiscard]] std::string BackupFileName(const std::string& imageName);

}  // namespace sectorbox
