#pragma once

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

// Discs for transfers. The disc engine has no part in making them: what crosses the cable must not
// depend on it.
namespace sectorbox::testing {

// Sectors whose bytes don't compress, a different one for every number and seed.
inline std::vector<std::uint8_t> NoiseBytes(std::size_t bytes, std::uint32_t seed) {
  std::vector<std::uint8_t> noise(bytes);
  std::uint32_t state = seed * 2654435761U + 12345;
  for (auto& byte : noise) {
    state = state * 1664525U + 1013904223U;
    byte = static_cast<std::uint8_t>(state >> 24);
  }
  return noise;
}

// A disc of noise with a free space map in front: runs of start and length.
inline std::vector<std::uint8_t> NoiseDisc(std::int32_t sectors,
                                           const std::vector<std::pair<int, int>>& runs,
                                           std::uint32_t seed = 1) {
  std::vector<std::uint8_t> disc = NoiseBytes(static_cast<std::size_t>(sectors) * 256, seed);
  const auto put = [&](std::size_t at, int value) {
    for (std::size_t i = 0; i < 3; ++i) disc[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
  };
  std::fill(disc.begin(), disc.begin() + 512, std::uint8_t{0});
  put(252, sectors);
  for (std::size_t i = 0; i < runs.size(); ++i) {
    put(3 * i, runs[i].first);
    put(256 + 3 * i, runs[i].second);
  }
  disc[510] = static_cast<std::uint8_t>(3 * runs.size());
  return disc;
}

// The file order of a double-sided image, from the flat order of its sectors.
inline std::vector<std::uint8_t> Interleave(const std::vector<std::uint8_t>& flat) {
  constexpr std::size_t kTrack = 16 * 256;
  std::vector<std::uint8_t> file;
  for (std::size_t track = 0; track < flat.size() / kTrack / 2; ++track) {
    for (const std::size_t side : {std::size_t{0}, flat.size() / kTrack / 2}) {
      const auto from = flat.begin() + static_cast<std::ptrdiff_t>((track + side) * kTrack);
      file.insert(file.end(), from, from + kTrack);
    }
  }
  return file;
}

// A kind of disc: its sectors, and the extension of its file, which also tells the order of the
// file's sectors.
struct DiscKind {
  const char* Name;
  std::int32_t Sectors;
  const char* Extension;
};

inline void PrintTo(const DiscKind& kind, std::ostream* out) {
  *out << kind.Name;
}

inline constexpr DiscKind kDiscKinds[] = {{"Single40", 640, ".adf"},
                                          {"Single80", 1280, ".adf"},
                                          {"Double80", 2560, ".adl"},
                                          {"Hard800", 800, ".dat"}};

inline std::vector<std::uint8_t> FileOf(const DiscKind& kind,
                                        const std::vector<std::uint8_t>& flat) {
  return std::string(kind.Extension) == ".adl" ? Interleave(flat) : flat;
}

}  // namespace sectorbox::testing
