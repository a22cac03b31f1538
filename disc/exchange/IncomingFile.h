#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "disc/host/HostFile.h"
#include "disc/store/Disc.h"

namespace sectorbox {

// A host file that is about to be added to a disc, with what its sidecar says. Its bytes are read
// while they are stored, a megabyte at a time. If one of them can't be read then, the change that
// stores them is dropped, and the disc is as it was.
class IncomingFile {
 public:
  // The plain file at path, of which the host tells that it has hostLength bytes. Some files of the
  // host's system tell that they are empty and have bytes all the same. Of such a file no more is
  // read than shows that it doesn't fit into longest bytes. HostError if the file or its sidecar
  // can't be read.
  IncomingFile(const std::string& path, std::uint32_t hostLength, std::uint64_t longest);

  std::string HostPath;
  std::string HostName;
  char Prefix = '\0';  // the letter of the directory in front of the name; '\0' for none
  std::string Name;
  std::uint32_t Load = 0;
  std::uint32_t Exec = 0;
  std::string Attr;
  std::uint32_t Length = 0;      // in bytes; the entry will state it
  std::uint32_t HostLength = 0;  // bytes of the host file

  // Bytes that the free run must have.
  [[nodiscard]] std::uint32_t Need() const { return std::max(Length, HostLength); }
  // Stores the file from sector start on: Length bytes, with zeros for those that the host file
  // doesn't have, and zeros up to the end of the last sector. HostError if the host file can't be
  // read or is shorter now.
  void StoreIn(Disc& disc, std::int32_t start) const;

 private:
  void SetName(std::string name);
  // How many bytes a file has that tells that it is empty; at most limit.
  [[nodiscard]] std::uint32_t CountBytes(std::uint64_t limit);

  RandomAccessFile file_;
  // The first bytes of a file that tells that it is empty: it may have others each time that it is
  // read, so a short one is read only once.
  std::vector<std::uint8_t> first_;
};

}  // namespace sectorbox
