#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/medium/JournalPlace.h"

namespace sectorbox {

std::int64_t JournalFile::Length() {
  if (written_) return *written_;
  if (!file_.IsOpen()) {
    if (!HostFileIsPlain(path_)) return 0;
    file_.Open(path_, FileAccess::kRead);
  }
  return static_cast<std::int64_t>(file_.Length());
}

void JournalFile::ReadAt(std::int64_t offset, std::span<std::uint8_t> bytes) {
  if (!file_.IsOpen()) file_.Open(path_, FileAccess::kRead);
  if (file_.ReadAt(static_cast<std::uint64_t>(offset), bytes) != bytes.size()) {
    throw HostError(path_, "Unexpected end of file");
  }
}

bool JournalFile::IsInUse() {
  FileLock lock;
  return !isOurs_ && !lock.Take(path_, std::chrono::milliseconds(0));
}

// Our own journals are finished or dropped when the disc is opened. What is there now belongs to
// another disc or is no journal at all. A file without bytes is what a power cut may leave. One
// that Append has begun and Remove couldn't take away makes room.
void JournalFile::RequireRoom() {
  if (isOurs_ || Length() == 0) return;
  throw HostError(path_, "stands where the journal goes. Move it to another place first");
}

void JournalFile::Append(std::span<const std::uint8_t> bytes) {
  if (!written_) {
    RequireRoom();
    Remove();
    file_.Open(path_, FileAccess::kCreate);
    // Nobody has a new file; whoever takes it for one of an earlier program leaves it alone now.
    (void)lock_.Take(path_, std::chrono::milliseconds(0));
    written_ = 0;
    isOurs_ = true;
  }
  file_.WriteAt(static_cast<std::uint64_t>(*written_), bytes);
  *written_ += static_cast<std::int64_t>(bytes.size());
}

void JournalFile::Sync() {
  if (!written_) return;
  file_.Sync();
  SyncHostFolder(HostFolderOf(path_));
}

void JournalFile::Remove() {
  file_ = {};
  written_.reset();
  if (HostFileExists(path_)) DeleteHostFile(path_);
  lock_.Release();
  isOurs_ = false;
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

std::int64_t StateJournal::Length() {
  return file_ ? file_->Length() : 0;
}

void StateJournal::ReadAt(std::int64_t offset, std::span<std::uint8_t> bytes) {
  if (!file_) throw HostError(kind_, "Unexpected end of file");
  file_->ReadAt(offset, bytes);
}

void StateJournal::Append(std::span<const std::uint8_t> bytes) {
  if (!file_) {
    const std::string folder = HostStateFolder();
    CreateHostFolders(folder);
    // Another program, or another card that looks the same, may have a journal of this kind.
    std::string path;
    for (int number = 0; path.empty() || HostFileExists(path); ++number) {
      path = JoinHostPath(folder, kind_ + "-" + std::to_string(number) + ".journal");
    }
    file_.emplace(path);
  }
  file_->Append(bytes);
}

void StateJournal::Sync() {
  if (file_) file_->Sync();
}

void StateJournal::Remove() {
  if (!file_) return;
  file_->Remove();
  file_.reset();
}

}  // namespace sectorbox
