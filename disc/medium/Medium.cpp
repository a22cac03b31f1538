#include "disc/medium/Medium.h"

#include "disc/medium/JournalPlace.h"

namespace sectorbox {

void Medium::WriteStored(std::int32_t block, std::span<const std::uint8_t> data,
                         const StoredBytes& stored) {
  (void)stored;
  WriteBlock(block, data);
}

std::size_t Medium::ReadRun(std::int64_t offset, std::span<std::uint8_t> bytes) {
  (void)offset;
  (void)bytes;
  return 0;
}

std::size_t Medium::WriteRun(std::int64_t offset, std::span<const std::uint8_t> bytes) {
  (void)offset;
  (void)bytes;
  return 0;
}

std::vector<std::unique_ptr<JournalPlace>> Medium::OldJournals() {
  return {};
}

}  // namespace sectorbox
