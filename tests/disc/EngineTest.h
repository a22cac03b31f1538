#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Directories.h"
#include "disc/change/FreeMap.h"
#include "disc/change/Mutation.h"
#include "disc/exchange/HostExchange.h"
#include "disc/format/Names.h"
#include "disc/store/Disc.h"
#include "tests/support/DiscReading.h"
#include "tests/support/ImageBuilder.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"

namespace sectorbox::testing {

using Bytes = std::vector<std::uint8_t>;

inline Bytes Pattern(std::size_t length, unsigned seed = 1) {
  Bytes bytes(length);
  for (std::size_t i = 0; i < length; ++i) {
    bytes[i] = static_cast<std::uint8_t>((i * 31 + seed * 97 + i / 251) & 255);
  }
  return bytes;
}

// An open disc, a scripted host and a folder of the host.
class EngineTest : public ::testing::Test {
 protected:
  void Open(const ImageBuilder& image, DiscType kind = kAdf) { Open(image.Bytes(), kind); }

  // Opens a new image with these bytes, which are in the order of the store.
  void Open(const Bytes& bytes, DiscType kind = kAdf) {
    size_ = bytes.size();
    // A .dat that is still open would later write its blocks over the new bytes.
    if (!disc_.TheDisc.InMemory()) disc_.TheDisc.CloseFile();
    const std::string path = folder_ / "disc.img";
    WriteAll(path, bytes);
    host_.Interleave = false;
    disc_.TheDisc.OpenFile(path, kind, static_cast<std::int32_t>(size_ / 4096 + 1), 1, 16);
    ReadFreeMap(disc_);
    host_.Log.clear();
  }

  // The same on the first partition of a card, which is a file here. In it bytes of the disc and
  // bytes of the card's own stand by turns.
  void OpenOnCard(const ImageBuilder& image) {
    const Bytes& bytes = image.Bytes();
    if (!disc_.TheDisc.InMemory()) disc_.TheDisc.CloseFile();
    Bytes card;
    for (const std::uint8_t byte : bytes) card.insert(card.end(), {byte, 0xC5});
    WriteAll(folder_ / "card.raw", card);
    disc_.TheDisc.OpenFile((folder_ / "card.raw") + ",0", kCF, 0, 0, 0);
    ReadFreeMap(disc_);
    size_ = bytes.size();
    host_.Log.clear();
  }

  Bytes Image() {
    Bytes bytes(size_);
    disc_.TheDisc.FetchBytes(0, bytes);
    return bytes;
  }
  std::vector<std::string> Faults() { return FaultsOf(Image()); }
  ReadObject Tree() { return ReadTree(Image()); }

  // The names in a directory, in order, with blanks between.
  std::string Names(std::int32_t dir) {
    std::string names;
    for (std::int32_t slot = 0; slot < 47; ++slot) {
      const std::string name = GetEntryName(disc_, dir, slot);
      if (EntryIsEmpty(name)) break;
      names += (names.empty() ? "" : " ") + name;
    }
    return names;
  }
  Entry Find(std::int32_t dir, const std::string& name) {
    return DirectoryAt(disc_, dir).At(FindEntry(disc_, dir, name));
  }
  int Sequence(std::int32_t dir) { return disc_.TheDisc.Fetch(SectorOffset(dir)); }
  std::string Attr(std::int32_t dir, const std::string& name) { return Find(dir, name).Letters(); }
  std::uint32_t Load(std::int32_t dir, const std::string& name) { return Find(dir, name).Load(); }
  std::uint32_t Length(std::int32_t dir, const std::string& name) {
    return Find(dir, name).Length();
  }
  Bytes Contents(std::int32_t dir, const std::string& name) {
    Bytes bytes(Length(dir, name));
    disc_.TheDisc.FetchBytes(SectorOffset(GetEntrySector(disc_, dir, name)), bytes);
    return bytes;
  }
  // The free list, as a text such as "7+20 40+600": start and length of each run.
  std::string Runs() { return RunsOf(Image()); }
  static std::string RunsOf(const Bytes& disc) {
    std::string text;
    for (const FreeRun& run : ReadFreeRuns(disc)) {
      text +=
          (text.empty() ? "" : " ") + std::to_string(run.Start) + "+" + std::to_string(run.Length);
    }
    return text;
  }

  // Makes a host file and gives its path.
  std::string HostFile(const std::string& name, const Bytes& bytes) {
    WriteAll(folder_ / name, bytes);
    return folder_ / name;
  }
  std::string HostFile(const std::string& name, const std::string& text) {
    return HostFile(name, Bytes(text.begin(), text.end()));
  }
  Outcome Add(const std::string& name, const Bytes& bytes, std::int32_t dir = 2) {
    return AddFile(disc_, dir, HostFile(name, bytes));
  }

  TempFolder folder_;
  ScriptedHost host_;
  Disc disc_{host_};
  std::size_t size_ = 0;
};

}  // namespace sectorbox::testing
