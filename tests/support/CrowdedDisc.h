#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace sectorbox::testing {

// An entry as a damaged disc may hold it.
struct CrowdedEntry {
  std::string Name;
  std::int32_t Start = 0;
  std::uint32_t Length = 0;
  bool IsDirectory = false;
};

// A disc whose whole area is directories: directory n is at sector 2 + 5n. Directory n lists
// directories 2n + 1 and 2n + 2, if there are such, and then 45 entries that more(n, k) gives, k
// from 0 to 44. The map has no free run, and zeros for its sums.
template <typename More>
std::vector<std::uint8_t> CrowdedDisc(std::int32_t directories, More more) {
  const std::int32_t sectors = 2 + 5 * directories;
  std::vector<std::uint8_t> disc(static_cast<std::size_t>(sectors) * 256);
  const auto put = [&](std::size_t at, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) disc[at++] = static_cast<std::uint8_t>(value >> (8 * i));
  };
  put(252, static_cast<std::uint32_t>(sectors), 3);
  for (std::int32_t n = 0; n < directories; ++n) {
    const std::size_t at = 512 + 1280 * static_cast<std::size_t>(n);
    std::size_t entry = at + 5;
    const auto add = [&](const CrowdedEntry& one) {
      std::copy(one.Name.begin(), one.Name.end(),
                disc.begin() + static_cast<std::ptrdiff_t>(entry));
      if (one.Name.size() < 10) disc[entry + one.Name.size()] = 13;
      if (one.IsDirectory) disc[entry + 3] |= 0x80;
      put(entry + 18, one.IsDirectory ? 1280 : one.Length, 4);
      put(entry + 22, static_cast<std::uint32_t>(one.Start), 3);
      entry += 26;
    };
    for (std::int32_t child = 2 * n + 1; child <= 2 * n + 2 && child < directories; ++child) {
      add({child % 2 != 0 ? "AAAA" : "BBBB", 2 + 5 * child, 0, true});
    }
    for (std::int32_t k = 0; k < 45; ++k) add(more(n, k));
    for (const std::size_t mark : {at + 1, at + 1275}) {
      const std::string hugo = "Hugo";
      std::copy(hugo.begin(), hugo.end(), disc.begin() + static_cast<std::ptrdiff_t>(mark));
    }
    put(at + 1238, n == 0 ? 2 : static_cast<std::uint32_t>(2 + 5 * ((n - 1) / 2)), 3);
  }
  return disc;
}

}  // namespace sectorbox::testing
