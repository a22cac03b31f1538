#include "cfcard/cards/OpenedCard.h"

#include <system_error>

namespace sectorbox {

bool CardIsOpen(Disc& disc) {
  if (disc.TheDisc.DeviceIsOpen()) return true;
  NoteNotOpened(disc, disc.TheDisc.FileName());
  return false;
}

void NoteNotOpened(Disc& disc, const std::string& name) {
  const int error = disc.TheDisc.DeviceError();
  disc.Host.Note(name + ": can't be opened: " + std::generic_category().message(error));
}

}  // namespace sectorbox
