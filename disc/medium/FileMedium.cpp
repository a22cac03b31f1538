#include "disc/medium/FileMedium.h"

#include <algorithm>
#include <string_view>

#include "disc/host/HostError.h"
#include "disc/medium/BlockJournal.h"

namespace sectorbox {
namespace {

std::uint64_t PlaceOf(std::int32_t block) {
  return static_cast<std::uint64_t>(block) * Medium::kBlockSize;
}

std::string KindOfJournal(const FileIdentity& file) {
  return "file-" + std::to_string(file.Volume) + "-" + std::to_string(file.File);
}

constexpr std::string_view kJournalSuffix = "-journal";

std::string JournalPathOf(const std::string& path) {
  return RealHostPath(path) + std::string(kJournalSuffix);
}

}  // namespace

void RequireNoJournal(const std::string& path) {
  const std::string journal = JournalPathOf(path);
  if (!HostFileIsPlain(journal) || HostFileLength(journal) == 0) return;
  throw HostError(
      journal,
      "a change to this disc was interrupted. Open the disc, which finishes the change, "
      "or move the journal to another place first");
}

FileMedium::FileMedium(const std::string& path)
    : file_(path, FileAccess::kCreateOrFallBack),
      journalPath_(JournalPathOf(path)),
      elsewhere_(KindOfJournal(file_.Identity())) {}

JournalPlace* FileMedium::Journal() {
  if (HostFolderIsWritable(HostFolderOf(journalPath_))) return &journal_;
  return &elsewhere_;
}

std::vector<std::unique_ptr<JournalPlace>> FileMedium::OldJournals() {
  std::vector<std::unique_ptr<JournalPlace>> all;
  // A change can't be finished in a file that can't be written.
  if (file_.WriteError() != 0) return all;
  if (HostFileIsPlain(journalPath_)) all.push_back(std::make_unique<JournalFile>(journalPath_));
  for (const std::string& path : StateJournal::FilesOf(KindOfJournal(file_.Identity()))) {
    all.push_back(std::make_unique<JournalFile>(path));
  }
  const std::string noted = NotedJournal();
  if (noted == journalPath_ || !noted.ends_with(kJournalSuffix) || !HostFileIsPlain(noted)) {
    return all;
  }
  // What isn't whole may be the journal of a change to another disc.
  auto journal = std::make_unique<JournalFile>(noted);
  if (IsWholeJournal(*journal, *this)) all.push_back(std::move(journal));
  return all;
}

void FileMedium::NoteJournal(bool isThere) {
  file_.SetNote(isThere ? journalPath_ : "");
}

std::string FileMedium::NotedJournal() const {
  return file_.Note();
}

void FileMedium::ReadAt(std::uint64_t place, std::span<std::uint8_t> bytes) const {
  const std::size_t done = file_.ReadAt(place, bytes);
  if (done == bytes.size()) return;
  // Behind its end a file reads as zeros. A file that ends earlier than the host says is one that
  // the host can't read.
  if (place + done < file_.Length()) throw HostError(file_.Path(), "Unexpected end of file");
  std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(done), bytes.end(), std::uint8_t{0});
}

bool FileMedium::ReadBlock(std::int32_t block, std::span<std::uint8_t> data) {
  ReadAt(PlaceOf(block), data);
  return true;
}

void FileMedium::WriteBlock(std::int32_t block, std::span<const std::uint8_t> data) {
  file_.WriteAt(PlaceOf(block), data);
}

std::size_t FileMedium::ReadRun(std::int64_t offset, std::span<std::uint8_t> bytes) {
  if (offset < 0) return 0;
  ReadAt(static_cast<std::uint64_t>(offset), bytes);
  return bytes.size();
}

std::size_t FileMedium::WriteRun(std::int64_t offset, std::span<const std::uint8_t> bytes) {
  if (offset < 0 || offset % kBlockSize != 0) return 0;
  const auto run = bytes.first(bytes.size() - bytes.size() % kBlockSize);
  file_.WriteAt(static_cast<std::uint64_t>(offset), run);
  return run.size();
}

std::int64_t FileMedium::EndOfData() const {
  return static_cast<std::int64_t>(file_.Length());
}

// The two blocks of the store may hold bytes behind the file's end that aren't written yet.
std::int64_t FileMedium::LongestFile() const {
  return EndOfData() + std::int64_t{2} * kBlockSize;
}

std::span<const std::uint8_t> FileMedium::Storable(std::int64_t offset,
                                                   std::span<const std::uint8_t> bytes) {
  (void)offset;
  if (file_.WriteError() != 0) ThrowHostError(file_.Path(), file_.WriteError());
  return bytes;
}

bool FileMedium::Is(const std::string& path) const {
  const auto other = IdentityOfPath(path);
  if (!other) return false;
  return file_.IsOpen() ? file_.Identity() == *other : IdentityOfPath(file_.Path()) == other;
}

}  // namespace sectorbox
