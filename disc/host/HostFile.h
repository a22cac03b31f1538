#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "disc/host/HostPath.h"

// Host files and folders. Every failure is a HostError with the path and the system's text.
namespace sectorbox {

// --- Whole files and folders -----------------------------------------------------------------

enum class HostFileKind {
  kPlain,   // a regular file
  kFolder,  // a folder
  kOther,   // a device, a pipe, a socket
};

// What path names; links are followed. HostError if the host can't tell, as where nothing is there.
[[nodiscard]] HostFileKind KindOfHostFile(const std::string& path);
// The three below give false where KindOfHostFile throws.
[[nodiscard]] bool HostFileExists(const std::string& path);   // anything that isn't a folder
[[nodiscard]] bool HostFileIsPlain(const std::string& path);  // a regular file
[[nodiscard]] bool HostFolderExists(const std::string& path);
// True if anything has that path: a link counts, even if it leads nowhere.
[[nodiscard]] bool HostPathIsTaken(const std::string& path);

// Bytes in a regular file; 0 for anything else. HostError if nothing is there.
[[nodiscard]] std::uint64_t HostFileLength(const std::string& path);
// Up to limit bytes from offset on; fewer at the end of the file.
[[nodiscard]] std::vector<std::uint8_t> ReadHostFile(const std::string& path,
                                                     std::uint64_t offset = 0,
                                                     std::uint64_t limit = UINT64_MAX);
// Exactly count bytes from offset on, which the host has told are there. HostError "Unexpected end
// of file" if the file ends before.
[[nodiscard]] std::vector<std::uint8_t> ReadHostBytes(const std::string& path, std::uint64_t offset,
                                                      std::uint64_t count);
// Writes over bytes of a file that exists, from offset on; its other bytes stay.
void OverwriteHostFile(const std::string& path, std::uint64_t offset,
                       std::span<const std::uint8_t> bytes);
// Deletes a file. HostError if that fails, also if the file doesn't exist.
void DeleteHostFile(const std::string& path);

// Deletes a file, or a folder with all that is in it, as far as that can be done. Failures are
// ignored. Links are removed and never followed.
void RemoveHostTree(const std::string& path);

// Removes path if it is a link, wherever it leads. Failures are ignored.
void RemoveHostLink(const std::string& path);

// Makes a folder inside one that exists. A folder that is already there stays as it is.
void CreateHostFolder(const std::string& path);
// The same with all folders on the way to it.
void CreateHostFolders(const std::string& path);
// The names of all that is in a folder, hidden files included, in no order.
[[nodiscard]] std::vector<std::string> ListHostFolder(const std::string& folder);

// True if this program may make files in a folder.
[[nodiscard]] bool HostFolderIsWritable(const std::string& folder);
// Returns when the names in a folder are safe, also against a power cut: those of files that were
// made there, put in place or deleted. A host that can't do that for a folder isn't an error.
// HostError if the host fails.
void SyncHostFolder(const std::string& folder);

// --- Open files --------------------------------------------------------------------------------

// Owns the host's number of one open file, and closes it.
class OpenFileNumber {
 public:
  // number is -1 if no file is open.
  explicit OpenFileNumber(int number = -1) : number_(number) {}
  // Closes the file if it is open; an error that the host reports then is lost.
  ~OpenFileNumber() { (void)Close(); }
  OpenFileNumber(OpenFileNumber&& other) noexcept : number_(other.Release()) {}
  OpenFileNumber& operator=(OpenFileNumber&& other) noexcept;
  OpenFileNumber(const OpenFileNumber&) = delete;
  OpenFileNumber& operator=(const OpenFileNumber&) = delete;

  [[nodiscard]] bool IsOpen() const { return number_ >= 0; }
  [[nodiscard]] int Get() const { return number_; }
  // Closes the file. Gives the host's error number (errno), or 0 if all went well or no file was
  // open. The file is closed also after an error.
  int Close();

 private:
  // Gives the number away without closing the file.
  int Release();

  int number_;
};

// How RandomAccessFile opens a file.
enum class FileAccess {
  kRead,   // the file must exist
  kWrite,  // the file must exist; the host needs no right to read it, and ReadAt fails
  // The file is opened for reading and writing, and created, empty, if it doesn't exist.
  kCreate,
  // As kCreate. But if the host lets us only read the file, it is opened for reading, and
  // WriteError tells why.
  kCreateOrFallBack,
};

// One open host file whose bytes are read and written in place, at offsets in bytes from its start.
// There is no position and no buffer: each call goes to the host. The object owns the open file.
// Its destructor closes it, but can't tell of an error that the host reports then; Close can.
class RandomAccessFile {
 public:
  // No file is open. Only IsOpen, Open, Close and moves make sense then.
  RandomAccessFile() = default;
  RandomAccessFile(const std::string& path, FileAccess access) { Open(path, access); }

  // Closes what was open before, as the destructor does, then opens path. HostError if the host
  // refuses; no file is open then.
  void Open(const std::string& path, FileAccess access);
  // Opens a new, empty file for reading and writing, which has no name in the folder and ends when
  // it is closed, however the program ends. HostError if the host refuses; no file is open then.
  void OpenNameless(const std::string& folder);
  [[nodiscard]] bool IsOpen() const { return file_.IsOpen(); }
  // The path as it was given to Open; the folder of a file without a name.
  [[nodiscard]] const std::string& Path() const { return path_; }
  // Why the file could be opened only for reading: the host's error number (errno). 0 if it can be
  // written.
  [[nodiscard]] int WriteError() const { return writeError_; }

  // Reads bytes from offset on and gives their count. The count is smaller than the span only at
  // the end of the file, and 0 past it; the rest of the span stays as it was. HostError on failure.
  [[nodiscard]] std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> bytes) const;
  // Writes all bytes from offset on. A file that ends before offset grows, with zeros between.
  // HostError if the host doesn't take all of them, also if it takes none without an error; some
  // may have been written then.
  void WriteAt(std::uint64_t offset, std::span<const std::uint8_t> bytes);
  // Bytes in the file now. HostError on failure.
  [[nodiscard]] std::uint64_t Length() const;
  // Returns when all that was written is on the medium. HostError on failure.
  void Sync();
  // The identity of the open file. HostError on failure.
  [[nodiscard]] FileIdentity Identity() const;
  // A short text that stays with the open file under all of its names, now and later; empty takes
  // it away. It is lost where the file system keeps no such texts, and in most copies.
  void SetNote(const std::string& text);
  // The text; empty if there is none.
  [[nodiscard]] std::string Note() const;
  // Cuts a file that is longer. HostError on failure.
  void Cut(std::uint64_t length);
  // Closes the file; nothing happens if none is open. HostError if the host reports then that a
  // write has failed; the file is closed all the same.
  void Close();

 private:
  std::string path_;
  OpenFileNumber file_;
  int writeError_ = 0;
};

// A host file that only grows: what is written goes behind what any program has written before.
class AppendedFile {
 public:
  // No file is open. Only IsOpen, Open and Close make sense then.
  AppendedFile() = default;

  // Closes what was open before, then opens path, or creates it. HostError if the host refuses; no
  // file is open then.
  void Open(const std::string& path);
  [[nodiscard]] bool IsOpen() const { return file_.IsOpen(); }
  // Writes all of text, at once and without a buffer. HostError if the host doesn't take all of it.
  void Append(const std::string& text);
  // An error that the host reports now is lost.
  void Close() { (void)file_.Close(); }

 private:
  std::string path_;
  OpenFileNumber file_;
};

// --- Files that are written anew -------------------------------------------------------------

// When the bytes of a replaced file have to be on the medium.
enum class OnMedium {
  kAtOnce,  // before the file gets its name, so that also a power cut leaves a whole file
  kLater,   // whenever the host likes; for files that are copies of what a disc holds anyway
};

// What happens to a link that has the path of a file that is written anew.
enum class LinkAtPath {
  kFollowed,  // the link stays, and the file that it leads to is replaced
  kReplaced,  // the file takes the place of the link, wherever that leads
};

// A whole host file that is written anew. The bytes go to a temporary name in the same folder.
// Close puts the file in place, so that a kill at any moment leaves the old file or the new one.
// Without Close, the destructor removes the temporary file and leaves the old one. Devices and
// pipes can't be replaced: the bytes go straight to them; a pipe that nobody reads is a HostError.
class OutputFile {
 public:
  // Creates the temporary file. HostError if path is a folder, or if path or its folder can't be
  // written.
  explicit OutputFile(const std::string& path, OnMedium onMedium = OnMedium::kAtOnce,
                      LinkAtPath link = LinkAtPath::kFollowed);
  ~OutputFile();
  OutputFile(OutputFile&& other) noexcept;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  OutputFile& operator=(OutputFile&&) = delete;

  void Write(std::span<const std::uint8_t> bytes);
  void Write(const std::string& text);
  // Write, but runs of zeros become holes, as far as they are whole blocks of 4096 bytes from the
  // start of bytes on. A host leaves room out only for blocks that begin at such a place of the
  // file too.
  void WriteWithHoles(std::span<const std::uint8_t> bytes);
  // Leaves a hole of that many bytes, which reads as zeros and takes no room on the medium.
  void Skip(std::uint64_t bytes);
  // Puts the file in place. The older file goes only once the new one is on the medium, and the
  // call returns when the new name is there too (unless kLater). HostError if that fails; the older
  // file stays then, unless it is the folder that can't be made safe.
  void Close();
  // What of the older file the new one doesn't have, as a line for the user with the path: its
  // owner, its access rights, its other names (hard links, which keep the old contents). Empty if
  // it has all.
  [[nodiscard]] const std::string& Unkept() const { return unkept_; }

 private:
  // Makes the temporary file; HostError names path.
  void CreateTemporary(const std::string& path);
  // True if Close waits until every byte is on the medium.
  [[nodiscard]] bool IsAwaited() const;
  // The caller has written that many bytes more. If Close will wait for them (IsAwaited), the host
  // is asked from time to time to start sending them to the medium.
  void SendOn(std::size_t bytes);

  std::string path_;
  std::string temporary_;  // empty if the bytes go straight to path_
  std::string unkept_;
  OnMedium onMedium_;
  OpenFileNumber file_;
  std::size_t waiting_ = 0;  // bytes written since the host was last asked to send them on
  bool replaces_ = false;
  bool endsInHole_ = false;
};

// Replaces or creates a host file. All code that writes a whole host file uses it.
[[nodiscard]] OutputFile CreateOutputFile(const std::string& path,
                                          OnMedium onMedium = OnMedium::kAtOnce,
                                          LinkAtPath link = LinkAtPath::kFollowed);

}  // namespace sectorbox
