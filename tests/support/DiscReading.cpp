#include "tests/support/DiscReading.h"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <tuple>

namespace sectorbox::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::uint32_t Number(const Bytes& disc, std::size_t at, int bytes) {
  std::uint32_t value = 0;
  for (int i = bytes; i-- > 0;) value = value << 8 | disc.at(at + static_cast<std::size_t>(i));
  return value;
}

std::string Text(const Bytes& disc, std::size_t at, std::size_t width) {
  std::string text;
  for (std::size_t i = 0; i < width; ++i) {
    const int c = disc.at(at + i) & 127;
    if (c == 13) break;
    text += static_cast<char>(c);
  }
  return text;
}

// Names are compared with bit 5 of each letter set, and of each character in the letters' columns.
std::string Folded(std::string text) {
  for (char& c : text) c = c >= '@' ? static_cast<char>(c | 32) : c;
  return text;
}

std::string Letters(const Bytes& disc, std::size_t entry) {
  std::string letters;
  const std::string order = "EDLWR";
  for (std::size_t i = 0; i < 5; ++i) {
    if (disc.at(entry + 4 - i) & 128) letters += order[i];
  }
  return letters;
}

std::int32_t SectorsOf(const ReadObject& object) {
  if (object.IsDirectory()) return 5;
  return static_cast<std::int32_t>(object.Length == 0 ? 1 : (object.Length - 1) / 256 + 1);
}

void ReadContents(const Bytes& disc, ReadObject& dir) {
  const auto base = static_cast<std::size_t>(dir.Start) * 256;
  dir.MasterSequence = disc.at(base);
  dir.Title = Text(disc, base + 1241, 19);
  dir.Title = dir.Title.substr(0, dir.Title.find('\0'));
  for (std::size_t slot = 0; slot < 47; ++slot) {
    const std::size_t at = base + 5 + slot * 26;
    if ((disc.at(at) & 127) == 0) break;
    ReadObject object;
    object.Name = Text(disc, at, 10);
    object.Attr = Letters(disc, at);
    object.Load = Number(disc, at + 10, 4);
    object.Exec = Number(disc, at + 14, 4);
    object.Length = Number(disc, at + 18, 4);
    object.Start = static_cast<std::int32_t>(Number(disc, at + 22, 3));
    object.Sequence = disc.at(at + 25);
    if (object.IsDirectory()) {
      ReadContents(disc, object);
    } else {
      const auto end = static_cast<std::size_t>(object.Start) * 256 + object.Length;
      if (end > disc.size()) throw std::runtime_error(object.Name + " ends past the disc");
      const auto from = disc.begin() + static_cast<std::ptrdiff_t>(object.Start) * 256;
      object.Bytes.assign(from, from + static_cast<std::ptrdiff_t>(object.Length));
    }
    dir.Contents.push_back(std::move(object));
  }
}

std::uint8_t Checksum(const Bytes& disc, std::size_t base) {
  unsigned sum = 255;
  unsigned carry = 0;
  for (std::size_t i = 255; i-- > 0;) {
    sum += disc.at(base + i) + carry;
    carry = sum >> 8;
    sum &= 255;
  }
  return static_cast<std::uint8_t>(sum);
}

using Faults = std::vector<std::string>;
using Extents = std::vector<std::tuple<std::int32_t, std::int32_t, std::string>>;

void LookAtDirectory(const Bytes& disc, const ReadObject& dir, std::int32_t parent,
                     const std::string& path, Extents& extents, Faults& faults) {
  const auto base = static_cast<std::size_t>(dir.Start) * 256;
  const auto expect = [&](bool holds, const std::string& what) {
    if (!holds) faults.push_back(path + ": " + what);
  };
  const std::string mark = "Hugo";
  for (const std::size_t at : {base + 1, base + 1275}) {
    expect(std::equal(mark.begin(), mark.end(), disc.begin() + static_cast<std::ptrdiff_t>(at)),
           "mark");
  }
  expect(disc.at(base) == disc.at(base + 1274), "sequence bytes differ");
  expect(static_cast<std::int32_t>(Number(disc, base + 1238, 3)) == parent, "parent");
  if (dir.Start != 2) {
    const std::string own = Text(disc, base + 1228, 10);
    expect(own == dir.Name, "own name " + own);
  }
  const std::size_t used = 5 + dir.Contents.size() * 26;
  expect(std::all_of(disc.begin() + static_cast<std::ptrdiff_t>(base + used),
                     disc.begin() + static_cast<std::ptrdiff_t>(base + 1227),
                     [](std::uint8_t byte) { return byte == 0; }),
         "bytes behind the last entry");
  for (std::size_t i = 0; i < dir.Contents.size(); ++i) {
    const ReadObject& object = dir.Contents[i];
    const std::string name = path + "." + object.Name;
    if (i > 0 && Folded(dir.Contents[i - 1].Name) >= Folded(object.Name)) {
      faults.push_back(name + ": out of order");
    }
    extents.push_back({object.Start, SectorsOf(object), name});
    if (object.IsDirectory()) {
      LookAtDirectory(disc, object, dir.Start, name, extents, faults);
    }
  }
}

}  // namespace

ReadObject ReadTree(const Bytes& disc) {
  ReadObject root;
  root.Name = "$";
  root.Attr = "D";
  root.Start = 2;
  ReadContents(disc, root);
  return root;
}

std::vector<FreeRun> ReadFreeRuns(const Bytes& disc) {
  std::vector<FreeRun> runs;
  for (std::size_t i = 0; i < disc.at(510) / 3U; ++i) {
    runs.push_back({static_cast<std::int32_t>(Number(disc, 3 * i, 3)),
                    static_cast<std::int32_t>(Number(disc, 256 + 3 * i, 3))});
  }
  return runs;
}

Faults FaultsOf(const Bytes& disc) {
  Faults faults;
  if (disc.at(255) != Checksum(disc, 0)) faults.push_back("checksum of sector 0");
  if (disc.at(511) != Checksum(disc, 256)) faults.push_back("checksum of sector 1");
  if (disc.at(510) % 3 != 0 || disc.at(510) > 246) faults.push_back("end of the free list");
  Extents extents{{0, 7, "map and root"}};
  const std::vector<FreeRun> runs = ReadFreeRuns(disc);
  for (std::size_t i = 0; i < runs.size(); ++i) {
    extents.push_back({runs[i].Start, runs[i].Length, "run " + std::to_string(i)});
    if (i > 0 && runs[i - 1].Start + runs[i - 1].Length >= runs[i].Start) {
      faults.push_back("run " + std::to_string(i) + ": out of order or touching");
    }
  }
  const auto rootParent = static_cast<std::int32_t>(Number(disc, 512 + 1238, 3));
  if (rootParent != 0 && rootParent != 2) faults.push_back("$: parent");
  LookAtDirectory(disc, ReadTree(disc), rootParent, "$", extents, faults);
  std::sort(extents.begin(), extents.end());
  std::int32_t next = 0;
  for (const auto& [start, length, name] : extents) {
    if (start < next) faults.push_back(name + ": overlaps");
    if (start > next) faults.push_back(name + ": sectors before it that nothing owns");
    next = start + length;
  }
  if (next != static_cast<std::int32_t>(Number(disc, 252, 3))) faults.push_back("size");
  return faults;
}

namespace {

std::string Describe(const ReadObject& object, const std::string& path) {
  std::string text = path + " " + object.Attr + " " + std::to_string(object.Load) + " " +
                     std::to_string(object.Exec) + " " + std::to_string(object.Length) + " " +
                     object.Title + "\n";
  text.append(object.Bytes.begin(), object.Bytes.end());
  for (const ReadObject& inner : object.Contents) text += Describe(inner, path + "." + inner.Name);
  return text;
}

}  // namespace

std::string DescribeDisc(const std::vector<std::uint8_t>& disc) {
  std::string text = Describe(ReadTree(disc), "$") + "boot " + std::to_string(disc[509] & 3);
  for (const FreeRun& run : ReadFreeRuns(disc)) {
    text += " " + std::to_string(run.Start) + "+" + std::to_string(run.Length);
  }
  return text;
}

}  // namespace sectorbox::testing
