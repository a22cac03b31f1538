#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

// The .dsc file beside a .dat: 22 bytes that record the geometry of the hard disc. Only bytes 13
// (high byte of the tracks), 14 (low byte) and 15 (heads) are interpreted; the others are copied
// from an existing companion or from a template.
namespace sectorbox {

inline constexpr int kCompanionSize = 22;
using CompanionBytes = std::array<std::uint8_t, kCompanionSize>;

struct CompanionGeometry {
  std::int32_t Tracks = 0;
  std::int32_t Heads = 0;
};

// The path of an image's companion, always in the image's folder: the image's path plus ".dsc"; if
// its name ends in a dot and three characters, ".dsc" stands in their place.
[[nodiscard]] std::string CompanionName(const std::string& imagePath);
// The geometry in an existing companion; none if there is no such file. Bytes that a shorter file
// lacks read as zero; bytes behind the 22 are ignored. HostError if the file can't be read.
[[nodiscard]] std::optional<CompanionGeometry> ReadCompanion(const std::string& imagePath);
// HostError if something stands where the image's companion goes that isn't an older companion: a
// folder, or a file that is neither empty nor 22 bytes long. Such a file, maybe another disc, is
// never replaced. Whatever writes an image with a companion asks this before it changes anything.
void RequireRoomForCompanion(const std::string& imagePath);
// Writes the companion: bytes 13 to 15 from geometry, the rest from the existing companion or the
// template. Nothing happens for an image that is itself called ".dsc". HostError if the host
// refuses, and as for RequireRoomForCompanion.
void WriteCompanion(const std::string& imagePath, const CompanionGeometry& geometry);

}  // namespace sectorbox
