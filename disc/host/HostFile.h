#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

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
