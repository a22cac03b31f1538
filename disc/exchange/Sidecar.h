#pragma once

#include <cstdint>
#include <optional>
#include <string>

// The .INF file beside a host file or folder: one line of text with what the host can't hold.
// Columns count from 1.
namespace sectorbox {

inline constexpr const char* kSidecarEnding = ".INF";

// What a file's sidecar says; what it doesn't say keeps these defaults. A line that fits no form
// says nothing.
struct FileSidecar {
  std::optional<std::string> Name;  // trimmed, at most ten characters, never mapped
  std::string Load = "00000000";    // eight characters that ought to be hex digits
  std::string Exec = "00000000";
  std::string Attr = "RW";              // letters; others may stand among them
  std::optional<std::uint32_t> Length;  // in bytes
};

// The first line of hostPath + ".INF", without its end, cut to 64 KiB; none if there is no such
// file. A sidecar that can't be read is a HostError; a device or pipe of that name is no sidecar.
std::optional<std::string> ReadSidecarLine(const std::string& hostPath);

FileSidecar ParseFileSidecar(const std::string& line);
// The name in a folder's sidecar, trimmed; none if the line doesn't have one.
std::optional<std::string> ParseFolderSidecar(const std::string& line);

// The lines that export writes, with their CR LF. All but the name are copied as they are.
std::string MakeFileSidecar(const std::string& Name, const std::string& Load,
                            const std::string& Exec, const std::string& Size,
                            const std::string& Attr);
std::string MakeFolderSidecar(const std::string& Name, const std::string& Attr);

}  // namespace sectorbox
