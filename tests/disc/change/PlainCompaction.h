#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace sectorbox::testing {

// Compaction of flat bytes in the plainest way: an exchange sort, one byte at a time, and a search
// through all records for each move. The engine is faster and must leave the same bytes.
class PlainCompaction {
 public:
  explicit PlainCompaction(std::vector<std::uint8_t>& disc) : disc_(disc) {}

  void Run() {
    Collect(2);
    const std::size_t count = records_.size();
    for (std::size_t i = 0; i + 1 < count; ++i) {
      for (std::size_t j = i + 1; j < count; ++j) {
        if (records_[j].Start < records_[i].Start) std::swap(records_[i], records_[j]);
      }
    }
    std::size_t next = 7;
    std::vector<std::size_t> places(count);
    for (std::size_t i = 1; i < count; ++i) {
      const std::size_t old = records_[i].Start;
      places[i] = next;
      if (old != next) Move(i, old, next);
      next += records_[i].Sectors;
    }
    for (std::size_t i = 1; i < count; ++i) {
      if (!records_[i].IsFile) Put(places[i] * 256 + 1238, records_[i].Parent);
    }
    Put(0, next);
    Put(256, Get(252) - next);
    disc_.at(510) = 3;
    for (const std::size_t base : {std::size_t{0}, std::size_t{256}}) {
      unsigned sum = 255;
      unsigned carry = 0;
      for (std::size_t i = 255; i-- > 0;) {
        sum += disc_.at(base + i) + carry;
        carry = sum / 256;
        sum %= 256;
      }
      disc_.at(base + 255) = static_cast<std::uint8_t>(sum);
    }
  }

 private:
  struct Record {
    std::string Name;
    bool IsFile;
    std::size_t Parent;
    std::size_t Start;
    std::size_t Sectors;
  };

  std::size_t Get(std::size_t at) const {
    std::size_t value = 0;
    for (std::size_t i = 3; i-- > 0;)
      value = value << 8 | (at + i < disc_.size() ? disc_[at + i] : 0U);
    return value;
  }
  void Put(std::size_t at, std::size_t value) {
    for (std::size_t i = 0; i < 3; ++i) {
      if (at + i < disc_.size()) disc_[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
    }
  }
  std::string Text(std::size_t at, bool cutNul) const {
    std::string text;
    for (std::size_t i = 0; i < 10; ++i) {
      const int c = disc_.at(at + i) & 127;
      if (c == 13 || (cutNul && c == 0)) break;
      text += static_cast<char>(c);
    }
    return text;
  }
  static std::string Upper(std::string text) {
    for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
    return text;
  }
  void Collect(std::size_t dir) {
    const std::size_t base = dir * 256;
    records_.push_back({Text(base + 1228, true), false, Get(base + 1238), dir, 5});
    if (std::string(disc_.begin() + static_cast<std::ptrdiff_t>(base + 1),
                    disc_.begin() + static_cast<std::ptrdiff_t>(base + 5)) != "Hugo") {
      return;
    }
    for (std::size_t slot = 0; slot < 47; ++slot) {
      const std::size_t at = base + 5 + 26 * slot;
      const std::string name = Text(at, false);
      if (name.empty() || name[0] == '\0') break;
      if (disc_.at(at + 3) & 128) {
        Collect(Get(at + 22));
      } else {
        const std::size_t length = Get(at + 18) | static_cast<std::size_t>(disc_.at(at + 21)) << 24;
        records_.push_back(
            {name, true, dir, Get(at + 22), length == 0 ? 1 : (length - 1) / 256 + 1});
      }
    }
  }
  void Move(std::size_t i, std::size_t old, std::size_t next) {
    for (std::size_t byte = 0; byte < records_[i].Sectors * 256; ++byte) {
      disc_.at(next * 256 + byte) = disc_.at(old * 256 + byte);
    }
    for (std::size_t slot = 0; slot < 47; ++slot) {
      const std::size_t at = records_[i].Parent * 256 + 5 + 26 * slot;
      const std::string name = Text(at, false);
      if (name.empty() || name[0] == '\0') break;
      if (Upper(name) != Upper(records_[i].Name)) continue;
      Put(at + 22, next);
      records_[i].Start = next;
      break;
    }
    if (records_[i].IsFile) return;
    for (std::size_t j = 1; j < records_.size(); ++j) {
      if (records_[j].Parent == old) records_[j].Parent = next;
    }
  }

  std::vector<std::uint8_t>& disc_;
  std::vector<Record> records_;
};

inline void CompactPlainly(std::vector<std::uint8_t>& disc) {
  PlainCompaction(disc).Run();
}

}  // namespace sectorbox::testing
