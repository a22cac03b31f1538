#pragma once

#include <cstdint>
#include <optional>
#include <string>

// Paths of the host, as text, and what a path stands for. The text is in the encoding of the host's
// file names; nothing here changes the process's current folder.
namespace sectorbox {

// Which file an open file or a path is, whatever its name. Two are equal only if they are the same
// file on the same file system. The numbers mean nothing outside this process.
struct FileIdentity {
  std::uint64_t Volume = 0;
  std::uint64_t File = 0;

  bool operator==(const FileIdentity&) const = default;
};

// The identity of the file or folder that path names; links are followed. Nothing if there is no
// such file, or if the host doesn't let us look.
[[nodiscard]] std::optional<FileIdentity> IdentityOfPath(const std::string& path);

}  // namespace sectorbox
