#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "cfcard/cards/CardDrives.h"
#include "cfcard/cards/CardMenu.h"
#include "cfcard/cards/FormatCF.h"
#include "cfcard/cards/ScanCFCards.h"
#include "disc/image/OpenImage.h"
#include "disc/store/Disc.h"
#include "tests/support/DeviceShelf.h"
#include "tests/support/ImageBuilder.h"
#include "tests/support/MemoryDevice.h"
#include "tests/support/NoBlockDevices.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"

namespace sectorbox::testing {

inline constexpr std::uint64_t kGibibyte = std::uint64_t{1} << 30;
inline constexpr std::uint64_t kPartitionSectors = 0x200000;

// Writes the bytes of a disc into the even bytes of a card.
inline void PutDisc(MemoryDevice& card, int partition, const std::vector<std::uint8_t>& bytes) {
  const std::uint64_t start = static_cast<std::uint64_t>(partition) * kGibibyte;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (bytes[i] != 0) card.Poke(start + 2 * i, bytes[i]);
  }
}

inline std::uint8_t DiscByte(const MemoryDevice& card, int partition, std::uint64_t offset) {
  return card.Peek(static_cast<std::uint64_t>(partition) * kGibibyte + 2 * offset);
}

// A machine with cards in memory under letters. The first card that a test inserts is C.
class CardTest : public ::testing::Test {
 protected:
  CardTest() : disc(host, MakeCardDevice(drives, shelf.MakeDevice())) {
    host.ProgressRunning = &disc.ProgressRunning;
  }

  MemoryDevice& Insert(const std::string& path, std::uint64_t sectors) {
    auto files = drives.CardFiles();
    files.push_back(path);
    drives.SetCardFiles(files);
    drives.Refresh();
    return shelf.Put(path, sectors);
  }

  TempFolder folder;
  ScriptedHost host;
  CardShelf shelf;
  CardDrives drives{std::make_unique<NoBlockDevices>()};
  Disc disc;
};

}  // namespace sectorbox::testing
