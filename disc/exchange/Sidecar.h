#pragma once

#include <cstdint>
#include <optional>
#include <string>

// The .INF file beside a host file or folder: one line of text with what the host can't hold.
// Columns count from 1.
namespace sectorbox {

inline constexpr const char* kSidecarEnding = ".INF";

// What a file's sidecar says. A field that the line doesn't have keeps its default; a line that
// fits no form leaves all defaults.
struct FileSidecar {
  std::optional<std::string> Name;  // trimmed, at most ten characters, as it stands in the line
  std::string Load = "00000000";    // eight characters that ought to be hex digits
  std::string Exec = "00000000";
  std::string Attr = "RW";              // letters; others may stand among them
  std::optional<std::uint32_t> Length;  // in bytes
};

// The first line of hostPath + ".INF", without its line end; none if there is no such plain file.
// Only the first 64 KiB of the file are read. HostError if it can't be read.
[[nodiscard]] std::optional<std::string> ReadSidecarLine(const std::string& hostPath);

[[nodiscard]] FileSidecar ParseFileSidecar(const std::string& line);
// The name in a folder's sidecar, trimmed; none if the line doesn't have one.
[[nodiscard]] std::optional<std::string> ParseFolderSidecar(const std::string& line);

// The lines that an export writes, with CR LF at the end. The name is padded with blanks to ten
// characters; the other texts are copied as they are.
[[nodiscard]] std::string MakeFileSidecar(const std::string& name, const std::string& load,
                                          const std::string& exec, const std::string& size,
                                          const std::string& attr);
[[nodiscard]] std::string MakeFolderSidecar(const std::string& name, const std::string& attr);

}  // namespace sectorbox
