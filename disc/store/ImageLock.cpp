#include "disc/store/ImageLock.h"

namespace sectorbox {

void ImageLock::NoteOpening(const std::string& path, bool isWrittenInPlace) {
  if (!lock_.IsOn(path)) lock_.Release();
  path_ = path;
  isWrittenInPlace_ = isWrittenInPlace;
  stamp_ = StampOfPath(path);
}

ImageLock::Result ImageLock::Take(std::chrono::milliseconds patience) {
  if (path_.empty() || lock_.IsOn(path_)) return Result::kTaken;
  if (!lock_.Take(path_, patience)) return Result::kInUse;
  // What was read from a disc that is written in place may be out of date now. A disc in memory is
  // compared with its file when it is saved.
  if (!isWrittenInPlace_ || !stamp_ || stamp_ == StampOfPath(path_)) return Result::kTaken;
  lock_.Release();
  return Result::kChanged;
}

bool ImageLock::WasReplaced() const {
  const auto now = StampOfPath(path_);
  return now && now != stamp_;
}

}  // namespace sectorbox
