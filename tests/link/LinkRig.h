#pragma once

#include <string>
#include <vector>

#include "link/Link.h"
#include "tests/support/ScriptedLinkHost.h"
#include "tests/support/SimulatedBbc.h"
#include "tests/support/TempFolder.h"
#include "tests/support/VirtualLine.h"

namespace sectorbox::testing {

// A PC, a cable and a BBC in virtual time. Port and host write into one log, in order.
struct LinkRig {
  VirtualClock Clock;
  SimulatedBbc Bbc;
  ScriptedLinkHost Host{Clock};
  VirtualPort Port{Clock, Bbc, &Host.Log};
  Link TheLink{Port, Host};
  TempFolder Folder;

  LinkRig() { TheLink.Port.Settings("1200,N,8,1"); }

  // A port that is open and a server that has been connected at 19200 baud.
  void Connect() {
    Bbc.Speed = 19200;
    Port.Settings("19200,N,8,1");
    Port.Open();
    Host.Log.clear();
  }
};

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

}  // namespace sectorbox::testing
