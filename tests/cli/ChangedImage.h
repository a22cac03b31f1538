#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/DiscReading.h"
#include "tests/support/ImageBuilder.h"
#include "tests/support/TempFolder.h"

// A disc in a file, and the commands of sbx that change it: what the tests of failing hosts share.
namespace sectorbox::testing {

struct SbxCommand {
  const char* Name;
  std::vector<std::string> Arguments;  // IMAGE stands for the image, OUT for another file
};

// For the list of tests, in which GoogleTest would show the bytes of the value.
inline void PrintTo(const SbxCommand& command, std::ostream* out) {
  *out << command.Name;
}

struct ImageFile {
  const char* Name;
  const char* File;
  std::int32_t Sectors;  // a floppy image is known by its size
  bool IsCard;
};

inline constexpr ImageFile kAdfFile = {"Adf", "x.adf", 640, false};
inline constexpr ImageFile kAdlFile = {"Adl", "x.adl", 2560, false};
inline constexpr ImageFile kDatFile = {"Dat", "x.dat", 240, false};
inline constexpr ImageFile kCardFile = {"Card", "x.raw", 240, true};

inline void PrintTo(const ImageFile& image, std::ostream* out) {
  *out << image.Name;
}

// What changes a disc of any kind.
inline const std::vector<SbxCommand> kChangingCommands = {
    {"Add", {"add", "IMAGE", "$", "NEW"}},
    {"Replace", {"add", "IMAGE", "$", "F03"}},
    {"AddAFolder", {"add", "IMAGE", "$", "TREE"}},
    {"Delete", {"delete", "IMAGE", "$.F05"}},
    {"DeleteATree", {"--delete-non-empty", "on", "delete", "IMAGE", "$.SUB"}},
    {"Rename", {"rename", "IMAGE", "$.F06", "ZZZ"}},
    {"Mkdir", {"mkdir", "IMAGE", "$.SUB", "MADE"}},
    {"Access", {"access", "IMAGE", "$.SUB", "LR"}},
    {"Address", {"address", "IMAGE", "$.F07", "FFFF1900", "FFFF8023"}},
    {"Title", {"title", "IMAGE", "$", "Another"}},
    {"Boot", {"boot", "IMAGE", "exec"}},
    {"Compact", {"compact", "IMAGE"}},
};

// The image of a test, in a folder with the host files that the commands name.
class ChangedImage {
 public:
  using Bytes = std::vector<std::uint8_t>;

  explicit ChangedImage(const ImageFile& kind) : kind_(kind), stored_(MakeStored()) {
    WriteAll(folder_ / "NEW", Bytes(3000, 7));
    WriteAll(folder_ / "F03", Bytes(4000, 8));
    std::filesystem::create_directory(folder_ / "TREE");
    for (int i = 0; i < 3; ++i) WriteAll(folder_ / ("TREE/T" + std::to_string(i)), Bytes(700, 9));
    Write();
  }

  [[nodiscard]] const std::string& Folder() const { return folder_.Path(); }
  [[nodiscard]] std::string Path() const { return folder_ / kind_.File; }
  // The other file that a command may write, which has an older disc's bytes before it.
  [[nodiscard]] std::string Out() const { return folder_ / "out.dat"; }
  static Bytes OldOut() { return Bytes(5000, 0x11); }

  // The words of a command, with the names in their places.
  [[nodiscard]] std::vector<std::string> Words(std::vector<std::string> words) const {
    for (std::string& word : words) {
      if (word == "IMAGE") word = kind_.IsCard ? "cf:" + Path() + ",0" : Path();
      if (word == "OUT") word = Out();
    }
    return words;
  }

  // Puts the image back as it was, with no journal anywhere.
  void Write() const {
    for (const char* ending : {"-journal", ".dsc"}) std::filesystem::remove(Path() + ending);
    std::filesystem::remove(folder_ / "x.dsc");
    std::filesystem::remove_all(StateFolder());
    WriteAll(Out(), OldOut());
    std::filesystem::remove(folder_ / "out.dsc");
    WriteAll(Path(), stored_);
  }

  // The disc's bytes, as they stand in the file; not for an .adl. A floppy image may be stored
  // without the free space at its end.
  [[nodiscard]] Bytes Disc() const { return DiscIn(ReadAll(Path())); }
  // The same in the bytes of a file, and of what may follow them.
  [[nodiscard]] Bytes DiscIn(const Bytes& file) const {
    Bytes bytes;
    for (std::size_t i = 0; i < file.size(); i += kind_.IsCard ? 2 : 1) bytes.push_back(file[i]);
    bytes.resize(static_cast<std::size_t>(kind_.Sectors) * 256);
    return bytes;
  }

  // True if a change may be unfinished: a journal waits for the next program.
  [[nodiscard]] bool HasJournal() const {
    return std::filesystem::exists(Path() + "-journal") ||
           (std::filesystem::exists(StateFolder()) && !std::filesystem::is_empty(StateFolder()));
  }

 private:
  static std::string StateFolder() {
    const char* home = std::getenv("XDG_STATE_HOME");
    return std::string(home == nullptr ? "" : home) + "/sectorbox";
  }

  [[nodiscard]] Bytes MakeStored() const {
    ImageBuilder image(kind_.Sectors);
    for (int i = 0; i < 10; ++i) {
      if (i == 2) image.AddHole(5);
      image.AddFile(2,
                    {"F0" + std::to_string(i), Bytes(200U + 300U * static_cast<unsigned>(i), 1)});
    }
    const std::int32_t sub = image.AddDirectory(2, "SUB");
    image.AddFile(sub, {"IN", Bytes(900, 2)});
    if (kind_.Sectors == kAdlFile.Sectors) return image.InterleavedBytes();
    if (!kind_.IsCard) return image.Bytes();
    Bytes card;
    for (const std::uint8_t byte : image.Bytes()) card.insert(card.end(), {byte, 0xC5});
    return card;
  }

  TempFolder folder_;
  ImageFile kind_;
  Bytes stored_;
};

}  // namespace sectorbox::testing
