#pragma once

#include <string>

#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/store/Disc.h"

// Files that come from the open disc never take the place of that disc's own image or companion.
namespace sectorbox {

// An output was to go to the open disc's own image or companion. The text is "NAME Is The Open
// Disc" with the last part of the path, whatever the path.
class OpenDiscError : public HostError {
 public:
  explicit OpenDiscError(const std::string& path);
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  std::string message_;
};

// Throws OpenDiscError if path names the image of the open disc: its file, also by another name or
// through a link, or the device or file of the open card. A floppy image that is only in memory so
// far has the path that it will be written to.
void RefuseOpenImage(const Disc& disc, const std::string& path);
// The same if path names the companion of an open .dat, whether it is there or not.
void RefuseOpenCompanion(const Disc& disc, const std::string& path);
// Both. Everything that writes a host file with what is on the disc calls this before it opens the
// file; only saving the disc itself doesn't.
void RefuseOpenDisc(const Disc& disc, const std::string& path);

// The host file of something that is exported. OpenDiscError as above. A link at path is replaced
// and never followed: whoever can put links into the folder doesn't choose what is overwritten.
[[nodiscard]] OutputFile CreateExportFile(const Disc& disc, const std::string& path);

}  // namespace sectorbox
