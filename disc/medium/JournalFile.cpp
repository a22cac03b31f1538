#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/medium/JournalPlace.h"

namespace sectorbox {

std::vector<std::uint8_t> JournalFile::Read() {
  return HostFileIsPlain(path_) ? ReadHostFile(path_) : std::vector<std::uint8_t>();
}

void JournalFile::Write(std::span<const std::uint8_t> bytes) {
  // The file is new each time: a journal that is half written isn't whole, and an older one has
  // served.
  Remove();
  RandomAccessFile file(path_, FileAccess::kCreate);
  file.WriteAt(0, bytes);
  file.Sync();
  file.Close();
  SyncHostFolder(HostFolderOf(path_));
}

void JournalFile::Remove() {
  if (HostFileExists(path_)) DeleteHostFile(path_);
}

std::vector<std::string> StateJournal::FilesOf(const std::string& kind) {
  std::vector<std::string> files;
  try {
    const std::string folder = HostStateFolder();
    if (!HostFolderExists(folder)) return files;
    for (const std::string& name : ListHostFolder(folder)) {
      if (name.starts_with(kind + "-")) files.push_back(JoinHostPath(folder, name));
    }
  } catch (const HostError&) {
    // Without such a folder nobody has kept a journal there.
    files.clear();
  }
  return files;
}

std::vector<std::uint8_t> StateJournal::Read() {
  return path_.empty() ? std::vector<std::uint8_t>() : JournalFile(path_).Read();
}

void StateJournal::Write(std::span<const std::uint8_t> bytes) {
  const std::string folder = HostStateFolder();
  CreateHostFolders(folder);
  // Another program, or another card that looks the same, may have a journal of this kind.
  std::string path;
  for (int number = 0; path.empty() || HostFileExists(path); ++number) {
    path = JoinHostPath(folder, kind_ + "-" + std::to_string(number) + ".journal");
  }
  path_ = path;
  JournalFile(path_).Write(bytes);
}

void StateJournal::Remove() {
  if (path_.empty()) return;
  JournalFile(path_).Remove();
  path_.clear();
}

}  // namespace sectorbox
