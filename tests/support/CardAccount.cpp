#include "tests/support/CardAccount.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

#include "tests/support/ImageBuilder.h"

namespace sectorbox::testing {
namespace {

// An open file. The destructor closes it.
struct OpenedFile {
  OpenedFile(const std::string& path, int flags) : Number(::open(path.c_str(), flags, 0600)) {
    if (Number < 0) throw std::runtime_error("cannot open " + path);
  }
  ~OpenedFile() { ::close(Number); }
  OpenedFile(const OpenedFile&) = delete;
  OpenedFile& operator=(const OpenedFile&) = delete;
  int Number;
};

}  // namespace

CardAccount::Sector CardAccount::At(std::uint64_t sector) const {
  const auto found = sectors_.find(sector);
  return found == sectors_.end() ? Sector{} : found->second;
}

void CardAccount::Fill(std::uint64_t sector, std::uint64_t count) {
  for (std::uint64_t i = sector; i < sector + count; ++i) {
    for (std::uint64_t k = 0; k < kSector; ++k) {
      sectors_[i][k] = static_cast<std::uint8_t>((i * kSector + k) % 251 + 1);
    }
  }
}

void CardAccount::Wipe(int partition, std::uint64_t count) {
  const std::uint64_t first = StartOf(partition);
  sectors_.erase(sectors_.lower_bound(first), sectors_.lower_bound(first + count));
}

void CardAccount::Put(int partition, std::uint64_t offset, std::span<const std::uint8_t> bytes) {
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const std::uint64_t place = StartOf(partition) * kSector + 2 * (offset + i);
    sectors_[place / kSector][place % kSector] = bytes[i];
  }
}

void CardAccount::FormatFully(int partition, std::int32_t sectors) {
  Wipe(partition, static_cast<std::uint64_t>(sectors));
  Put(partition, 0, ImageBuilder(sectors).Bytes());
}

void CardAccount::FormatQuickly(int partition, std::int32_t sectors) {
  const std::vector<std::uint8_t> empty = ImageBuilder(sectors).Bytes();
  Put(partition, 0, std::span(empty).first(7 * 256));
}

std::vector<std::uint8_t> CardAccount::DiscBytes(int partition, std::uint64_t sectors) const {
  std::vector<std::uint8_t> bytes;
  for (std::uint64_t i = 0; i < sectors; ++i) {
    const Sector sector = At(StartOf(partition) + i);
    for (std::size_t k = 0; k < kSector; k += 2) bytes.push_back(sector[k]);
  }
  return bytes;
}

void CardAccount::WriteTo(const std::string& path) const {
  const OpenedFile file(path, O_WRONLY | O_CREAT | O_TRUNC);
  if (::ftruncate(file.Number, static_cast<off_t>(size_ * kSector)) != 0) {
    throw std::runtime_error("no room for " + path);
  }
  for (const auto& [number, sector] : sectors_) {
    if (::pwrite(file.Number, sector.data(), kSector, static_cast<off_t>(number * kSector)) < 0) {
      throw std::runtime_error("cannot write " + path);
    }
  }
}

std::string CardAccount::WhatDiffers(const std::string& path) const {
  const std::uint64_t length = std::filesystem::file_size(path);
  if (length != size_ * kSector) return "the card is " + std::to_string(length) + " bytes long";
  const OpenedFile file(path, O_RDONLY);
  std::map<std::uint64_t, Sector> found;
  // The bytes of a hole are zero; all other bytes are read.
  off_t at = 0;
  while ((at = ::lseek(file.Number, at, SEEK_DATA)) >= 0) {
    const off_t end = ::lseek(file.Number, at, SEEK_HOLE);
    at -= at % static_cast<off_t>(kSector);
    for (; at < end; at += static_cast<off_t>(kSector)) {
      Sector sector{};
      if (::pread(file.Number, sector.data(), kSector, at) < 0) return "the card can't be read";
      found[static_cast<std::uint64_t>(at) / kSector] = sector;
    }
  }
  for (const auto& [number, sector] : sectors_) found.try_emplace(number);
  for (const auto& [number, sector] : found) {
    const Sector expected = At(number);
    for (std::size_t k = 0; k < kSector; ++k) {
      if (sector[k] == expected[k]) continue;
      return "byte " + std::to_string(k) + " of device sector " + std::to_string(number) + " is " +
             std::to_string(sector[k]) + " and not " + std::to_string(expected[k]);
    }
  }
  return "";
}

std::vector<std::uint8_t> DiscWithAddedFile(std::int32_t sectors, const std::string& name,
                                            const std::vector<std::uint8_t>& bytes) {
  constexpr std::int64_t kRoot = 512;
  ImageBuilder disc(sectors);
  disc.AddFile(2, {name, bytes});
  // One change has been made since the disc was made: both of the directory's sequence numbers and
  // that of the entry say so.
  for (const std::int64_t at : {kRoot, kRoot + 1274, kRoot + 5 + 25}) disc.Poke(at, 2);
  return disc.Bytes();
}

}  // namespace sectorbox::testing
