#pragma once

#include <cstdint>
#include <optional>
#include <string>

// Paths of the host: taking them apart, putting them together, and what file they stand for. A path
// is bytes in the encoding of the host's file names. Nothing here changes the process's current
// folder.
namespace sectorbox {

// --- The text of a path; the host isn't asked ------------------------------------------------

// The path of name inside folder. One separator stands between the two, also if folder ends with
// one already.
[[nodiscard]] std::string JoinHostPath(const std::string& folder, const std::string& name);
// The last part of a path: "/a/b" and "/a/b/" give "b". Empty for an empty path and for a root.
[[nodiscard]] std::string HostBaseName(const std::string& path);
// The folder that a file's path lies in: "/a/b" gives "/a", a lone name gives ".".
[[nodiscard]] std::string HostFolderOf(const std::string& path);

// The host's folder for temporary files, with a separator at its end; empty if there is none.
[[nodiscard]] std::string GetTempFolder();

// --- What a path stands for ------------------------------------------------------------------

// The same path from the root on. HostError for an empty path, and for a relative one if the
// current folder doesn't exist any more.
[[nodiscard]] std::string AbsoluteHostPath(const std::string& path);
// The path from the root on, without a separator, "." or ".." at its end, so that its last part is
// the name that the file or folder has. HostError as for AbsoluteHostPath, and if "." or ".." at
// the end can't be followed.
[[nodiscard]] std::string ResolveHostPath(const std::string& path);

// The path from the root on of what path names, with every link followed. If nothing is there, or
// the host can't tell, the path as it was given.
[[nodiscard]] std::string RealHostPath(const std::string& path);

// The folder in which this user's programs keep what has to survive a restart, with a folder of our
// own in it: "sectorbox". It may not be there yet. HostError if the host has no such place.
[[nodiscard]] std::string HostStateFolder();

// Which file an open file or a path is, whatever its name. Two are equal only if they are the same
// file on the same file system. The numbers mean nothing outside this process.
struct FileIdentity {
  std::uint64_t Volume = 0;
  std::uint64_t File = 0;

  bool operator==(const FileIdentity&) const = default;
};

// What tells whether a file was changed or replaced.
struct FileStamp {
  FileIdentity Identity;
  std::uint64_t Length = 0;
  std::int64_t Changed = 0;  // the time of the last change to its bytes, in the host's own units

  bool operator==(const FileStamp&) const = default;
};

// The stamp of what path names now; none if nothing is there or the host can't tell.
[[nodiscard]] std::optional<FileStamp> StampOfPath(const std::string& path);

// The identity of the file or folder that path names; links are followed. HostError if there is no
// such file, or if the host doesn't let us look.
[[nodiscard]] FileIdentity RequireIdentity(const std::string& path);
// The same, but nothing where RequireIdentity throws.
[[nodiscard]] std::optional<FileIdentity> IdentityOfPath(const std::string& path);
// True if both paths name one file or folder that exists.
[[nodiscard]] bool NameSameFile(const std::string& one, const std::string& other);

}  // namespace sectorbox
