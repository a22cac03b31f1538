#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "disc/host/HostPath.h"

// Host files. Every failure is a HostError with the path and the system's text.
namespace sectorbox {

bool HostFileExists(const std::string& path);   // a file of any kind that isn't a folder
bool HostFileIsPlain(const std::string& path);  // a regular file, or a link to one
bool HostFolderExists(const std::string& path);
std::uint64_t HostFileLength(const std::string& path);
// Up to limit bytes from offset on; fewer at the end of the file.
std::vector<std::uint8_t> ReadHostFile(const std::string& path, std::uint64_t offset = 0,
                                       std::uint64_t limit = UINT64_MAX);
// Writes over bytes of a file that exists, from offset on; its other bytes stay.
void OverwriteHostFile(const std::string& path, std::uint64_t offset,
                       std::span<const std::uint8_t> bytes);
// The last part of a path.
std::string HostBaseName(const std::string& path);

// How RandomAccessFile opens a file.
enum class FileAccess {
  kRead,   // the file must exist
  kWrite,  // the file must exist; the host needs no right to read it, and ReadAt fails
  // For reading and writing. A file that doesn't exist is created, empty. If the host lets us only
  // read it, it is opened for reading, and WriteError tells why.
  kCreateOrFallBack,
};

// One open host file whose bytes are read and written in place, at offsets in bytes from its start.
// There is no position and no buffer: each call goes to the host. The object owns the open file.
class RandomAccessFile {
 public:
  // No file is open. Only IsOpen, Open, Close and moves make sense then.
  RandomAccessFile() = default;
  RandomAccessFile(const std::string& path, FileAccess access) { Open(path, access); }
  // Closes the file if it is open; an error that the host reports then is lost. Call Close to hear
  // of it.
  ~RandomAccessFile();
  RandomAccessFile(RandomAccessFile&& other) noexcept;
  RandomAccessFile& operator=(RandomAccessFile&& other) noexcept;
  RandomAccessFile(const RandomAccessFile&) = delete;
  RandomAccessFile& operator=(const RandomAccessFile&) = delete;

  // Opens path, after closing what was open before (as the destructor does). HostError if the host
  // refuses; no file is open then.
  void Open(const std::string& path, FileAccess access);
  [[nodiscard]] bool IsOpen() const { return file_ >= 0; }
  // The path as it was given to Open.
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
  // Closes the file; nothing happens if none is open. HostError if the host reports then that a
  // write has failed; the file is closed all the same.
  void Close();

 private:
  std::string path_;
  int file_ = -1;  // the host's number of the open file, -1 if none is open
  int writeError_ = 0;
};

// When the bytes of a replaced file have to be on the medium: before its name is, so that a power
// cut too leaves a whole file; or whenever the host likes, for files that are copies of what a disc
// holds anyway.
enum class OnMedium { kAtOnce, kLater };

// A whole host file that is written anew. The bytes go to a temporary name in the same folder;
// Close puts the file in place, so that a kill at any moment leaves the old file or the new one.
// Destroyed without Close, it removes the temporary and leaves the old file.
class OutputFile {
 public:
  explicit OutputFile(const std::string& path, OnMedium onMedium = OnMedium::kAtOnce);
  ~OutputFile();
  OutputFile(OutputFile&& other) noexcept;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  OutputFile& operator=(OutputFile&&) = delete;

  void Write(std::span<const std::uint8_t> bytes);
  void Write(const std::string& text);
  // Leaves a hole of that many bytes, which reads as zeros and takes no room on the medium.
  void Skip(std::uint64_t bytes);
  // Puts the file in place; an older one goes only once the new one is on the medium (unless
  // kLater). HostError if that fails; the old file stays.
  void Close();

 private:
  // True if Close waits until every byte is on the medium.
  bool IsAwaited() const;
  // Bytes more have been written, which Close will have to wait for if it IsAwaited.
  void SendOn(std::size_t bytes);

  std::string path_;
  std::string temporary_;
  OnMedium onMedium_;
  int file_ = -1;
  std::size_t waiting_ = 0;  // bytes written since the host was last asked to send them on
  bool replaces_ = false;
  bool endsInHole_ = false;
};

// Replaces and creates a host file. All writers of whole host files use it.
OutputFile CreateOutputFile(const std::string& path, OnMedium onMedium = OnMedium::kAtOnce);

}  // namespace sectorbox
