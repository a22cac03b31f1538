#pragma once

#include <cstddef>
#include <cstdint>

namespace sectorbox {

// Is told what happens to the bytes of the open disc. Offsets and sizes count bytes of the disc.
class DiscWatcher {
 public:
  virtual ~DiscWatcher() = default;

  // Another disc is open now, or the same one was opened anew.
  virtual void DiscOpened() = 0;
  // Bytes are about to be stored. The disc still has the old ones, which may be fetched.
  virtual void BytesWillChange(std::int64_t offset, std::size_t size) = 0;
  // Bytes in free sectors are about to be cut off. The disc still has them.
  virtual void BytesWillVanish(std::int64_t offset, std::size_t size) = 0;
  // Sectors of a card's device were written past the store of bytes.
  virtual void DeviceWritten() = 0;
  // A change to the disc has become safe, or was dropped (DiscImg::CommitChange and DropChange).
  virtual void ChangeEnded(bool isMade) noexcept = 0;
};

}  // namespace sectorbox
