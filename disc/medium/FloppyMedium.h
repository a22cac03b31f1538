#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "disc/ask/StatusLine.h"
#include "disc/medium/DiscBytes.h"
#include "disc/medium/ImageRules.h"
#include "disc/medium/Medium.h"

namespace sectorbox {

// Gives the track of the store that lies at a track of a double-sided image file. The store holds
// side 0 and then side 1. An interleaved file holds track 0 of side 0, track 0 of side 1, track 1
// of side 0, and so on; the tracks of any other file lie as in the store.
[[nodiscard]] std::int32_t LoadedTrack(std::int32_t fileTrack, bool interleaved);

// How many tracks an image of discSize sectors is stored with: the nearest whole number, but never
// more tracks than are in memory.
[[nodiscard]] std::int32_t StoredTracks(std::int32_t discSize, std::size_t bytesInMemory);

// The bytes of a double-sided image file of discSize sectors. The tracks are permuted if
// interleaved is true and there are more than 80. inMemory is how many bytes the disc has in
// memory; the file gets no more than these. For a disc that isn't in memory it is none.
[[nodiscard]] std::vector<std::uint8_t> ArrangeAdl(DiscBytes& disc, std::int32_t discSize,
                                                   std::optional<std::size_t> inMemory,
                                                   bool interleaved);

// A floppy image, whole in memory: single-sided (.adf), which lies in its file as it lies in
// memory, or double-sided (.adl). Its bytes reach the file at Close, which replaces the file whole.
class FloppyMedium final : public Medium, private DiscBytes {
 public:
  enum class Sides { kOne, kTwo };

  // bytes is the size of the disc. If there is no such file, all of the disc is zero; if the file
  // is shorter, the rest is. Bytes behind the size aren't read. status and rules outlive the
  // medium. HostError if the file can't be read, also if it ends before the length that the host
  // has told.
  FloppyMedium(const std::string& path, Sides sides, std::size_t bytes, StatusLine& status,
               ImageRules& rules);

  [[nodiscard]] bool InMemory() const override { return true; }
  [[nodiscard]] std::span<std::uint8_t> Memory() override { return image_; }
  [[nodiscard]] std::vector<std::uint8_t> WholeFile() override;
  [[nodiscard]] bool ReadBlock(std::int32_t block, std::span<std::uint8_t> data) override;
  void WriteBlock(std::int32_t block, std::span<const std::uint8_t> data) override;
  [[nodiscard]] std::string HostPath() const override { return path_; }
  [[nodiscard]] std::int64_t Extent() const override { return EndOfData(); }
  [[nodiscard]] std::int64_t EndOfData() const override {
    return static_cast<std::int64_t>(image_.size());
  }
  [[nodiscard]] std::int64_t LongestFile() const override { return EndOfData(); }
  void Close() override;

 private:
  void FetchBytes(std::int64_t offset, std::span<std::uint8_t> bytes) override;
  // The first two fill the image from the bytes of its file; the other two make those bytes.
  void LoadAdf(const std::vector<std::uint8_t>& file);
  void LoadAdl(const std::vector<std::uint8_t>& file);
  [[nodiscard]] std::vector<std::uint8_t> StoreAdf();
  [[nodiscard]] std::vector<std::uint8_t> StoreAdl();

  std::string path_;
  Sides sides_;
  StatusLine& status_;
  ImageRules& rules_;
  std::vector<std::uint8_t> image_;
};

}  // namespace sectorbox
