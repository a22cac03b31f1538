#pragma once

#include <string>

#include "disc/host/HostError.h"
#include "disc/store/Disc.h"

// Writing the open disc to a file, and copying a file into the open disc. Each function clears
// ImageChanged before it writes anything. After a HostError an existing target file, ImageChanged
// and ImageName are as they were. If the file is the open card itself, or the file that holds it,
// each function refuses with a HostError: the backup would replace the card that it is read from.
namespace sectorbox {

// The open disc was to be saved empty over the file that it was opened from. The text is the
// message for the user.
class EmptySaveError : public HostError {
 public:
  explicit EmptySaveError(const std::string& path);
  const char* what() const noexcept override { return SystemText().c_str(); }
};

// Saves for a user who has chosen to save: asks "Are You Sure ?" with the title "Save Changes", and
// runs SaveImageAs unless the answer is No.
void RunSaveCommand(Disc& disc);

// Asks for a name, makes it ImageName, and saves. The disc's size decides the kind of the file, not
// the extension. The store isn't opened anew: the store of a .dat or a card goes on working on the
// old file or device.
void SaveImageAs(Disc& disc);
// The same without the dialog: fileName becomes ImageName.
void SaveImageTo(Disc& disc, const std::string& fileName);

// Saves sector by sector, with the progress dialog. With wholeCard it saves as many sectors as the
// card has; else the option Pad Disc Images decides between the disc's size and the trimmed size.
// An abort leaves a short file. But if fileName is the open .dat itself, an abort leaves it whole,
// and after a save the store goes on with the new file. Also writes the companion of a .dat.
// HostError if another file stands where that goes; nothing has changed then.
void SaveDatImage(Disc& disc, const std::string& fileName, bool wholeCard);
// Saves the trimmed image. With the option Pad Disc Images the file stays empty (kept so on
// purpose), and the user gets a note. Over the file that the disc was opened from it isn't written
// empty (EmptySaveError).
void SaveAdfImage(Disc& disc, const std::string& fileName);
// Saves the full length. The tracks are permuted if the option Interleaved Disc is set and there
// are more than 80.
void SaveAdlImage(Disc& disc, const std::string& fileName);

enum class RestoreEnd {
  kDone,
  kAborted,  // by the user
  kFailed,   // the card has failed; the user has been told
};

// Copies the file into the open disc from sector 0 on, with the progress dialog. On a card no more
// is written than fits on its partition; the user gets a note if that isn't all. The disc that was
// there is taken away first, and the front of the new one comes last (DiscReplacement.h): if the
// copy ends before, by an abort, a fault or a kill, there is no disc on the partition, and the user
// is told. An abort before the first sector leaves the old disc.
[[nodiscard]] RestoreEnd RestoreImage(Disc& disc, const std::string& fileName);

}  // namespace sectorbox
