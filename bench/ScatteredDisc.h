#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace sectorbox::bench {

inline void PutNumber(std::vector<std::uint8_t>& bytes, std::size_t at, std::uint32_t value,
                      int width) {
  for (int i = 0; i < width; ++i)
    bytes[at + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> 8 * i);
}

// The layout of a disc that is made for a measurement.
struct DiscPlan {
  std::uint32_t Objects = 0;      // files and directories together, the root left out
  std::uint32_t FileSectors = 1;  // of each file
  std::uint32_t FileLength = 1;   // in bytes
  std::uint32_t Holes = 0;        // free runs between the objects, evenly spread; at most 79
  std::uint32_t HoleSectors = 0;  // of each hole
  bool Scattered = false;         // a directory's files lie all over the disc
};

// A sound hard disc image with every byte on the medium. A directory holds 46 files, a directory
// above holds 46 of these directories, and the root holds the upper ones.
class ScatteredDisc {
 public:
  ScatteredDisc(std::string path, const DiscPlan& plan) : path_(std::move(path)), plan_(plan) {
    PlanObjects();
    PlaceObjects();
  }

  // Writes the image anew.
  void Write() const {
    const int file = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (file < 0) throw std::runtime_error("cannot make " + path_);
    std::vector<std::uint8_t> part(std::size_t{1} << 20);
    for (std::uint64_t at = 0; at < std::uint64_t{Sectors()} * 256; at += part.size()) {
      const auto value = static_cast<std::uint8_t>(at >> 20 | 1);
      std::fill(part.begin(), part.end(), value);
      const auto left = std::uint64_t{Sectors()} * 256 - at;
      Put(file, at, part, static_cast<std::size_t>(std::min<std::uint64_t>(left, part.size())));
    }
    Put(file, 0, Map(), 512);
    for (std::size_t i = 0; i < objects_.size(); ++i) {
      if (objects_[i].IsDirectory) Put(file, objects_[i].Start * 256ULL, Directory(i), 1280);
    }
    ::close(file);
  }

  const std::string& Path() const { return path_; }
  std::uint32_t Sectors() const { return end_ + 16; }
  std::uint32_t FirstMoved() const { return holes_.empty() ? end_ : holes_.front() + HoleSize(); }
  // Sectors of all objects behind the first hole.
  std::uint32_t MovedSectors() const {
    const auto holes = static_cast<std::uint32_t>(holes_.size());
    return end_ - FirstMoved() - (holes > 0 ? holes - 1 : 0) * HoleSize();
  }
  std::vector<std::uint32_t> DirectoryOfEachFile() const {
    std::vector<std::uint32_t> sectors;
    for (const Object& object : objects_) {
      if (!object.IsDirectory) sectors.push_back(objects_[object.Parent].Start);
    }
    return sectors;
  }

 private:
  static constexpr std::uint32_t kFanOut = 46;
  struct Object {
    bool IsDirectory;
    std::size_t Parent;
    std::uint32_t Slot;
    std::uint32_t Start;
    std::vector<std::size_t> Children;
  };

  std::uint32_t HoleSize() const { return plan_.HoleSectors; }
  std::size_t Add(bool isDirectory, std::size_t parent) {
    const auto slot = static_cast<std::uint32_t>(objects_[parent].Children.size());
    objects_[parent].Children.push_back(objects_.size());
    objects_.push_back({isDirectory, parent, slot, 0, {}});
    return objects_.size() - 1;
  }
  void PlanObjects() {
    objects_.push_back({true, 0, 0, 2, {}});
    std::size_t group = 0;
    std::size_t directory = 0;
    while (objects_.size() <= plan_.Objects) {
      const bool full = directory == 0 || objects_[directory].Children.size() == kFanOut;
      if (!full) {
        Add(false, directory);
      } else if (group == 0 || objects_[group].Children.size() == kFanOut) {
        group = Add(true, 0);
        directory = Add(true, group);
      } else {
        directory = Add(true, group);
      }
    }
  }
  void PlaceObjects() {
    const std::size_t count = objects_.size() - 1;
    // The number of objects is never a multiple of this prime, so each object comes up once.
    const std::size_t stride = plan_.Scattered ? 7919 : 1;
    std::uint32_t next = 7;
    for (std::size_t i = 0; i < count; ++i) {
      if (plan_.Holes > 0 && holes_.size() < plan_.Holes &&
          i == (holes_.size() + 1) * count / (plan_.Holes + 1)) {
        holes_.push_back(next);
        next += HoleSize();
      }
      Object& object = objects_[1 + i * stride % count];
      object.Start = next;
      next += object.IsDirectory ? 5 : plan_.FileSectors;
    }
    end_ = next;
  }
  static void Put(int file, std::uint64_t at, const std::vector<std::uint8_t>& bytes,
                  std::size_t size) {
    if (::pwrite(file, bytes.data(), size, static_cast<off_t>(at)) != static_cast<ssize_t>(size)) {
      throw std::runtime_error("no room for the disc");
    }
  }
  std::vector<std::uint8_t> Map() const {
    std::vector<std::uint8_t> map(512);
    std::vector<std::uint32_t> starts = holes_;
    starts.push_back(end_);
    for (std::size_t i = 0; i < starts.size(); ++i) {
      PutNumber(map, 3 * i, starts[i], 3);
      PutNumber(map, 256 + 3 * i, i < holes_.size() ? HoleSize() : Sectors() - end_, 3);
    }
    PutNumber(map, 252, Sectors(), 3);
    map[510] = static_cast<std::uint8_t>(3 * starts.size());
    for (const std::size_t base : {std::size_t{0}, std::size_t{256}}) {
      unsigned sum = 255;
      for (std::size_t i = 255; i-- > 0;) sum = sum % 256 + sum / 256 + map[base + i];
      map[base + 255] = static_cast<std::uint8_t>(sum);
    }
    return map;
  }
  static void PutName(std::vector<std::uint8_t>& bytes, std::size_t at, const Object& object) {
    bytes[at] = object.IsDirectory ? 'D' : 'F';
    bytes[at + 1] = static_cast<std::uint8_t>('0' + object.Slot / 10);
    bytes[at + 2] = static_cast<std::uint8_t>('0' + object.Slot % 10);
    bytes[at + 3] = 13;
  }
  std::vector<std::uint8_t> Directory(std::size_t index) const {
    const Object& directory = objects_[index];
    std::vector<std::uint8_t> bytes(1280);
    std::copy_n("Hugo", 4, bytes.begin() + 1);
    std::copy_n("Hugo", 4, bytes.begin() + 1275);
    if (index > 0) PutName(bytes, 1228, directory);
    PutNumber(bytes, 1238, objects_[directory.Parent].Start, 3);
    for (const std::size_t child : directory.Children) {
      const Object& object = objects_[child];
      const std::size_t at = 5 + 26 * object.Slot;
      PutName(bytes, at, object);
      if (object.IsDirectory) bytes[at + 3] |= 0x80;
      PutNumber(bytes, at + 18, object.IsDirectory ? 1280 : plan_.FileLength, 4);
      PutNumber(bytes, at + 22, object.Start, 3);
    }
    return bytes;
  }

  std::string path_;
  DiscPlan plan_;
  std::vector<Object> objects_;
  std::vector<std::uint32_t> holes_;
  std::uint32_t end_ = 7;
};

}  // namespace sectorbox::bench
