#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

// What kind of file something is, told by its first bytes and its size. Discs of other machines and
// of other filing systems are known too, so that the user can be told what a file is that holds no
// disc of ours.
namespace sectorbox {

// TextOf has their names, in this order.
enum class FileForm {
  // ADFS of the 8-bit machines.
  kAdfsS,         // 160K
  kAdfsM,         // 320K
  kAdfsL,         // 640K
  kAdfsHardDisc,  // any other size
  // ADFS of the 32-bit machines. We can't read these.
  kAdfsD,           // 800K with the old map
  kAdfsE,           // 800K with the new map
  kAdfsF,           // 1600K with the new map
  kAdfsHardDisc32,  // any other size, with either map
  // Other filing systems.
  kDfsOneSide,   // .ssd
  kDfsTwoSides,  // .dsd, with the tracks of the sides by turns
  kDos640,
  kDos800,
  kDosOther,
  // Files that may hold an image inside, packed or in a form of their own.
  kZip,
  kGzip,
  kSevenZip,
  kHfe,
  kUef,
  kEmpty,    // no bytes at all
  kUnknown,  // none of these
};

struct FileLook {
  FileForm Form = FileForm::kUnknown;
  std::uint64_t Size = 0;  // bytes in the file
  // The file ends before its disc does. Told of the discs of ADFS only.
  bool IsTrimmed = false;
  // Every second byte of the file belongs to the disc, as on a card behind an 8-bit interface. Told
  // of the 8-bit machines' ADFS only.
  bool IsDoubled = false;
  // The title of the root directory, the name of the disc, or the label of a DOS disc. The BBC's
  // bytes, top bits cleared; empty if the disc has none.
  std::string Title;
};

// So many bytes from a file's start are looked at.
inline constexpr std::size_t kLookedAt = 4096;

// Tells a file by its first bytes: kLookedAt of them, or all if it has fewer. size is the length of
// the whole file. The bytes may be anything.
[[nodiscard]] FileLook Identify(std::span<const std::uint8_t> first, std::uint64_t size);
// Reads the first bytes of a host file and tells it. HostError if it can't be read, and if it is no
// plain file.
[[nodiscard]] FileLook IdentifyFile(const std::string& path);

// The form in words: "ADFS L", "ADFS E (Archimedes)", "DFS, one side".
[[nodiscard]] std::string TextOf(FileForm form);
// The same with what else is to be said: "ADFS hard disc, byte-doubled, trimmed".
[[nodiscard]] std::string TextOf(const FileLook& look);

}  // namespace sectorbox
