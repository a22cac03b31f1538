#pragma once

#include <cstdint>
#include <string>

#include "disc/store/Disc.h"

// Writing the open disc to a file, and pouring a file into the open store. Each clears ImageChanged
// before anything is written. A HostError leaves an existing target as it was, and ImageChanged and
// ImageName too. The open card, or the file that holds it, is refused as the other end of any of
// them (a HostError): its own backup would take its place.
namespace sectorbox {

// mnuDiscSave: "Are You Sure ?" with the title "Save Changes"; unless No, SaveImageAs.
void RunSaveCommand(Disc& disc);

// Asks for a name, makes it ImageName, and saves by the disc's size, whatever the extension. The
// store isn't reopened: a .dat or a card goes on working on the old file or device.
void SaveImageAs(Disc& disc);
// The same without the dialog: FileName becomes ImageName.
void SaveImageTo(Disc& disc, const std::string& FileName);

// Sector by sector with the progress dialog; an abort leaves a short file, except where FileName is
// the open .dat itself, which then stays whole. A .dat saved over itself goes on with the new file.
// WholeCard takes the card's size, else Pad Disc Images decides between the disc's size and the
// trimmed size. Writes the companion of a .dat.
void SaveDatImage(Disc& disc, const std::string& FileName, bool WholeCard);
// The trimmed image. With Pad Disc Images set the file stays empty (kept so on purpose).
void SaveAdfImage(Disc& disc, const std::string& FileName);
// Always the full length, tracks permuted if Interleaved Disc is set and there are more than 80.
void SaveAdlImage(Disc& disc, const std::string& FileName);

// Pours the file into the open store from sector 0 on, with the progress dialog. Onto a card goes
// what its partition has room for; the host is told when that isn't all.
void RestoreImage(Disc& disc, const std::string& FileName);

}  // namespace sectorbox
