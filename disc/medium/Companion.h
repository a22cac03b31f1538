#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

// The .dsc file beside a .dat: 22 bytes that record the geometry of the hard disc. Only bytes 13
// (high byte of the tracks), 14 (low byte) and 15 (heads) are interpreted; the others are carried
// from an existing companion or come from a template.
namespace sectorbox {

inline constexpr int kCompanionSize = 22;
using CompanionBytes = std::array<std::uint8_t, kCompanionSize>;

struct CompanionGeometry {
  std::int32_t Tracks = 0;
  std::int32_t Heads = 0;
};

// The image's path without its last four characters, plus ".dsc".
std::string CompanionName(const std::string& imagePath);
// The geometry in an existing companion, none if there is no such file. A file of another length is
// read as far as it goes; bytes that it lacks read as zero.
std::optional<CompanionGeometry> ReadCompanion(const std::string& imagePath);
// Writes all 22 bytes, bytes 13 to 15 new, the rest from the existing companion or the template.
void WriteCompanion(const std::string& imagePath, const CompanionGeometry& geometry);

}  // namespace sectorbox
