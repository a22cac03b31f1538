#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "disc/change/Outcome.h"
#include "disc/host/HostPath.h"
#include "disc/store/Disc.h"
#include "disc/store/TrackedSector.h"

// The steps of an import that AddFile, AddFiles and ImportFolder share.
namespace sectorbox {

// What an import has to remember from its first file to its last. disc outlives it.
class ImportWalk {
 public:
  explicit ImportWalk(Disc& disc) : disc_(disc) {}

  // The host folders that are being imported, the outermost first. With them an import notices a
  // link that leads back to one of these folders.
  std::vector<FileIdentity> Folders;
  // Host files and folders that the import has put on the disc, and those that it came to or still
  // had before it when a refusal ended it. A folder that nobody has looked into counts as one.
  std::size_t Added = 0;
  std::size_t NotAdded = 0;
  // The path of the host file or folder that was refused and ended the import; else empty.
  std::string Refused;

  // The path of the host file that this import has added under that name to the directory at
  // dirSector; null if there is none.
  [[nodiscard]] const std::string* FindAdded(std::int32_t dirSector, const std::string& name);
  // This import has added a host file under that name.
  void KeepAdded(std::int32_t dirSector, const std::string& name, const std::string& hostPath);

  // The import begins to fill a directory that it has made. Gives how many directories it remembers
  // the names of, this one included. ForgetAfter forgets all but the first count of them: once a
  // host folder is done, nothing more goes into the directories below it.
  [[nodiscard]] std::size_t Remember(std::int32_t dirSector);
  void ForgetAfter(std::size_t count);

 private:
  // The files that were added to one directory: the host path of each folded name.
  struct Names {
    Names(Disc& disc, std::int32_t sector) : Sector(disc, sector) {}
    TrackedSector Sector;
    std::map<std::string, std::string> HostPaths;
  };

  // Null if nothing was added to that directory.
  Names* NamesIn(std::int32_t dirSector);

  Disc& disc_;
  std::vector<std::unique_ptr<Names>> directories_;
  std::map<std::int32_t, Names*> bySector_;
  bool stale_ = false;            // bySector_ has to be made anew
  std::int32_t compactions_ = 0;  // Disc::Compactions that bySector_ holds for
};

// AddFile and ImportFolder inside a running import. A host file whose name is that of a file that
// this import has added before isn't added; the user gets a note.
[[nodiscard]] Outcome AddHostPath(Disc& disc, std::int32_t dirSector, const std::string& hostPath,
                                  ImportWalk& walk);
[[nodiscard]] Outcome AddHostFolder(Disc& disc, std::int32_t dirSector, const std::string& folder,
                                    ImportWalk& walk);

// How many of the paths from first on are no sidecars.
[[nodiscard]] std::size_t CountEntries(const std::vector<std::string>& paths, std::size_t first);
// Tells the user how many entries were not added and which one was refused, if the import was more
// than one host file.
void TellNotAdded(Disc& disc, const ImportWalk& walk, std::size_t notAdded);

}  // namespace sectorbox
