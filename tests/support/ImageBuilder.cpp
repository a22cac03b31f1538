#include "tests/support/ImageBuilder.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace sectorbox::testing {
namespace {

void Put(std::vector<std::uint8_t>& to, std::size_t at, std::uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) {
    to.at(at + static_cast<std::size_t>(i)) = static_cast<std::uint8_t>(value >> (8 * i));
  }
}

void PutText(std::vector<std::uint8_t>& to, std::size_t at, const std::string& text,
             std::size_t width) {
  for (std::size_t i = 0; i < width; ++i) {
    to.at(at + i) = i < text.size()    ? static_cast<std::uint8_t>(text[i])
                    : i == text.size() ? std::uint8_t{13}
                                       : std::uint8_t{0};
  }
}

std::string Folded(const std::vector<std::uint8_t>& bytes, std::size_t at) {
  std::string name;
  for (std::size_t i = 0; i < 10; ++i) {
    const int c = bytes.at(at + i) & 127;
    if (c == 13) break;
    name += static_cast<char>(c >= '@' ? c | 32 : c);
  }
  return name;
}

void Save(const std::string& path, const std::vector<std::uint8_t>& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  if (!file) throw std::runtime_error("cannot write " + path);
}

}  // namespace

ImageBuilder::ImageBuilder(std::int32_t sectors)
    : bytes_(static_cast<std::size_t>(sectors) * 256), runs_{{7, sectors - 7}} {
  Put(bytes_, 252, static_cast<std::uint32_t>(sectors), 3);
  bytes_[512] = 1;
  PutText(bytes_, 513, "Hugo", 4);
  PutText(bytes_, 512 + 1228, "$", 10);
  PutText(bytes_, 512 + 1241, "$", 19);
  bytes_[512 + 1274] = 1;
  PutText(bytes_, 512 + 1275, "Hugo", 4);
  WriteMap();
}

std::int32_t ImageBuilder::AddFile(std::int32_t dir, const File& file) {
  const auto count = std::max<std::size_t>(1, (file.Bytes.size() + 255) / 256);
  const std::int32_t start = Take(static_cast<std::int32_t>(count));
  std::copy(file.Bytes.begin(), file.Bytes.end(),
            bytes_.begin() + static_cast<std::ptrdiff_t>(start) * 256);
  std::vector<std::uint8_t> entry(26);
  PutText(entry, 0, file.Name, 10);
  for (const char letter : file.Attr) {
    const std::string order = "RWLDE";
    const auto at = order.find(letter);
    if (at != std::string::npos) entry[at] |= 128;
  }
  Put(entry, 10, file.Load, 4);
  Put(entry, 14, file.Exec, 4);
  Put(entry, 18, static_cast<std::uint32_t>(file.Bytes.size()), 4);
  Put(entry, 22, static_cast<std::uint32_t>(start), 3);
  Insert(dir, entry);
  return start;
}

std::int32_t ImageBuilder::AddDirectory(std::int32_t dir, const std::string& name,
                                        const std::string& attr) {
  const std::int32_t start = Take(5);
  const auto base = static_cast<std::size_t>(start) * 256;
  std::vector<std::uint8_t> entry(26);
  PutText(entry, 0, name, 10);
  for (const char letter : attr + "D") {
    const std::string order = "RWLDE";
    const auto at = order.find(letter);
    if (at != std::string::npos) entry[at] |= 128;
  }
  Put(entry, 18, 1280, 4);
  Put(entry, 22, static_cast<std::uint32_t>(start), 3);
  bytes_[base] = 1;
  PutText(bytes_, base + 1, "Hugo", 4);
  std::copy(entry.begin(), entry.begin() + 10,
            bytes_.begin() + static_cast<std::ptrdiff_t>(base) + 1228);
  Put(bytes_, base + 1238, static_cast<std::uint32_t>(dir), 3);
  PutText(bytes_, base + 1241, name, 19);
  bytes_[base + 1274] = 1;
  PutText(bytes_, base + 1275, "Hugo", 4);
  Insert(dir, entry);
  return start;
}

void ImageBuilder::Rehang(std::int32_t from, const std::string& name, std::int32_t to) {
  const auto base = static_cast<std::size_t>(from) * 256 + 5;
  std::vector<std::uint8_t> wanted(10);
  PutText(wanted, 0, name, 10);
  std::size_t slot = 0;
  while (slot < 47 && Folded(bytes_, base + slot * 26) != Folded(wanted, 0)) ++slot;
  if (slot == 47) throw std::runtime_error("there is no " + name);
  const auto at = bytes_.begin() + static_cast<std::ptrdiff_t>(base + slot * 26);
  const std::vector<std::uint8_t> entry(at, at + 26);
  Insert(to, entry);
  std::copy(at + 26, bytes_.begin() + static_cast<std::ptrdiff_t>(base + 47 * 26), at);
  std::fill_n(bytes_.begin() + static_cast<std::ptrdiff_t>(base + 46 * 26), 26, std::uint8_t{0});
  if ((entry[3] & 128) == 0) return;
  const auto start = static_cast<std::size_t>(entry[22]) | static_cast<std::size_t>(entry[23]) << 8;
  Put(bytes_, start * 256 + 1238, static_cast<std::uint32_t>(to), 3);
}

void ImageBuilder::AddHole(std::int32_t sectors) {
  const std::int32_t start = Take(sectors);
  runs_.insert(runs_.end() - 1, {start, sectors});
  WriteMap();
}

void ImageBuilder::SetFreeRuns(const std::vector<std::pair<std::int32_t, std::int32_t>>& runs) {
  runs_ = runs;
  WriteMap();
}

void ImageBuilder::SetTitle(std::int32_t dir, const std::string& title) {
  PutText(bytes_, static_cast<std::size_t>(dir) * 256 + 1241, title, 19);
}

void ImageBuilder::SetBootOption(std::uint8_t option) {
  bytes_[509] = option;
  FixChecksums();
}

void ImageBuilder::Poke(std::int64_t offset, std::uint8_t value) {
  bytes_.at(static_cast<std::size_t>(offset)) = value;
}

std::uint8_t ImageBuilder::Peek(std::int64_t offset) const {
  return bytes_.at(static_cast<std::size_t>(offset));
}

void ImageBuilder::FixChecksums() {
  for (const std::size_t base : {std::size_t{0}, std::size_t{256}}) {
    unsigned sum = 255;
    unsigned carry = 0;
    for (std::size_t i = 255; i-- > 0;) {
      sum += bytes_[base + i] + carry;
      carry = sum >> 8;
      sum &= 255;
    }
    bytes_[base + 255] = static_cast<std::uint8_t>(sum);
  }
}

std::vector<std::uint8_t> ImageBuilder::InterleavedBytes() const {
  std::vector<std::uint8_t> file(bytes_.size());
  constexpr std::size_t kTrack = 16 * 256;
  for (std::size_t track = 0; track * kTrack < file.size(); ++track) {
    const std::size_t from = (track % 2 * 80 + track / 2) * kTrack;
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(from), kTrack,
                file.begin() + static_cast<std::ptrdiff_t>(track * kTrack));
  }
  return file;
}

void ImageBuilder::WriteTo(const std::string& path) const {
  Save(path, bytes_);
}

void ImageBuilder::WriteInterleavedTo(const std::string& path) const {
  Save(path, InterleavedBytes());
}

std::int32_t ImageBuilder::Take(std::int32_t sectors) {
  auto& last = runs_.back();
  if (last.second < sectors) throw std::runtime_error("the disc is full");
  const std::int32_t start = last.first;
  last.first += sectors;
  last.second -= sectors;
  WriteMap();
  return start;
}

void ImageBuilder::Insert(std::int32_t dir, const std::vector<std::uint8_t>& entry) {
  const auto base = static_cast<std::size_t>(dir) * 256 + 5;
  const std::string name = Folded(entry, 0);
  std::size_t slot = 0;
  while (slot < 47 && (bytes_.at(base + slot * 26) & 127) != 0 &&
         Folded(bytes_, base + slot * 26) < name) {
    ++slot;
  }
  if (slot == 47 || (bytes_.at(base + 46 * 26) & 127) != 0) {
    throw std::runtime_error("the directory is full");
  }
  const auto at = bytes_.begin() + static_cast<std::ptrdiff_t>(base);
  std::copy_backward(at + static_cast<std::ptrdiff_t>(slot * 26), at + 46 * 26, at + 47 * 26);
  std::copy(entry.begin(), entry.end(), at + static_cast<std::ptrdiff_t>(slot * 26));
}

void ImageBuilder::WriteMap() {
  for (std::size_t i = 0; i < runs_.size(); ++i) {
    Put(bytes_, 3 * i, static_cast<std::uint32_t>(runs_[i].first), 3);
    Put(bytes_, 256 + 3 * i, static_cast<std::uint32_t>(runs_[i].second), 3);
  }
  bytes_[510] = static_cast<std::uint8_t>(3 * runs_.size());
  FixChecksums();
}

}  // namespace sectorbox::testing
