#include "disc/store/DiscImg.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "disc/catalogue/Adfs.h"
#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/store/Disc.h"

namespace sectorbox {
namespace {

// Bytes from which on a run is worth going past the two blocks.
constexpr std::size_t kSmallestRun = std::size_t{2} * DiscImg::kBlockSize;

std::size_t ReadFileAt(int file, const std::string& path, std::int64_t offset,
                       std::span<std::uint8_t> bytes) {
  std::size_t total = 0;
  while (total < bytes.size()) {
    const ssize_t done = ::pread(file, bytes.data() + total, bytes.size() - total,
                                 static_cast<off_t>(offset + static_cast<std::int64_t>(total)));
    if (done < 0 && errno == EINTR) continue;
    if (done < 0) ThrowHostError(path, errno);
    if (done == 0) break;
    total += static_cast<std::size_t>(done);
  }
  return total;
}

void WriteFileAt(int file, const std::string& path, std::int64_t offset,
                 std::span<const std::uint8_t> bytes) {
  std::size_t total = 0;
  while (total < bytes.size()) {
    const ssize_t done = ::pwrite(file, bytes.data() + total, bytes.size() - total,
                                  static_cast<off_t>(offset + static_cast<std::int64_t>(total)));
    if (done < 0 && errno == EINTR) continue;
    if (done < 0) ThrowHostError(path, errno);
    total += static_cast<std::size_t>(done);
  }
}

// "/dev/sdb,0" names the device /dev/sdb: the comma and the digit are the partition. A path may
// hold commas of its own, so that nothing else at its end is taken for one.
std::string DeviceOf(const std::string& name) {
  constexpr std::size_t kPartition = 2;
  if (name.size() <= kPartition || name[name.size() - kPartition] != ',') return name;
  if (name.back() < '0' || name.back() > '9') return name;
  return name.substr(0, name.size() - kPartition);
}

// The disc bytes of a card are the even ones of the device's.
void TakeEven(const std::uint8_t* device, std::size_t count, std::uint8_t* disc) {
  for (std::size_t i = 0; i < count; ++i) disc[i] = device[2 * i];
}

void PutEven(const std::uint8_t* disc, std::size_t count, std::uint8_t* device) {
  for (std::size_t i = 0; i < count; ++i) device[2 * i] = disc[i];
}

}  // namespace

DiscImg::DiscImg(Disc& disc, std::unique_ptr<RawDevice> device)
    : disc_(disc), device_(std::move(device)) {}

DiscImg::~DiscImg() {
  if (fileNumber_ >= 0) ::close(fileNumber_);
}

void DiscImg::EmptySlots() {
  for (Slot& slot : slots_) {
    slot.Block = -1;
    slot.Dirty = false;
    slot.Recent = false;
  }
}

void DiscImg::LoadImage(const std::string& fileName, std::int16_t disctype, std::size_t bytes) {
  // The file is read before anything is given up: one that can't be read leaves the store as it is.
  std::vector<std::uint8_t> file;
  if (HostFileExists(fileName)) file = ReadHostFile(fileName, 0, bytes);
  disc_.ImageChanged = false;
  disctype_ = disctype;
  image_.assign(bytes, 0);
  if (disctype == kAdf) {
    LoadAdf(file);
  } else {
    LoadAdl(file);
  }
}

void DiscImg::OpenFile(const std::string& fileName, std::int16_t disctype, std::int32_t tracks,
                       std::int32_t heads, std::int32_t sectors) {
  if (fileNumber_ >= 0 || device_->IsOpen()) CloseFile();
  if (disctype == kAdf || disctype == kAdl) {
    LoadImage(fileName, disctype,
              static_cast<std::size_t>(tracks) * static_cast<std::size_t>(heads) *
                  static_cast<std::size_t>(sectors) * format::kSectorSize);
  } else if (disctype == kDat) {
    int file = ::open(fileName.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    const bool mayRead = file < 0 && (errno == EACCES || errno == EROFS || errno == EPERM);
    writeError_ = mayRead ? errno : 0;
    if (mayRead) file = ::open(fileName.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) ThrowHostError(fileName, errno);
    fileNumber_ = file;
  }
  suspended_ = false;
  fileName_ = fileName;
  disctype_ = disctype;
  mTracks = tracks;
  heads_ = heads;
  sectors_ = sectors;
  if (InMemory()) return;
  image_.clear();
  EmptySlots();
  if (disctype == kDat) return;
  for (Slot& slot : slots_) slot.Data.resize(kCFBlockSize);
  cardFaults_ = 0;
  device_->Open(DeviceOf(fileName));
  // The probe sees the card from its start, whatever partition is wanted.
  mTracks = 0;
  ProbeCard();
  mTracks = tracks;
}

// Whether the store can take and give bytes of a block. A card always can: without its device it
// gives what stands in the slots.
bool DiscImg::ReadyForBlocks() {
  if (suspended_) OpenFile(std::string(fileName_), disctype_, mTracks, heads_, sectors_);
  return disctype_ == kCF || fileNumber_ >= 0;
}

void DiscImg::WriteSlot(Slot& slot) {
  if (disctype_ == kDat) {
    // The whole of Data goes out. After a card has been open that is 2048 bytes at each 1024-byte
    // place, and so it stays; what hangs over into the next block is what that block holds now.
    if (slot.Data.size() > kBlockSize) RefreshOverhang(slot);
    WriteFileAt(fileNumber_, fileName_, std::int64_t{slot.Block} * kBlockSize, slot.Data);
  } else {
    WriteCardSlot(slot);
  }
}

void DiscImg::RefreshOverhang(Slot& slot) {
  const auto overhang = std::span(slot.Data).subspan(kBlockSize);
  const Slot& other = slots_[&slot == &slots_[0] ? 1 : 0];
  if (other.Block == slot.Block + 1) {
    std::copy_n(other.Data.begin(), kBlockSize, overhang.begin());
    return;
  }
  const auto next = (std::int64_t{slot.Block} + 1) * kBlockSize;
  const auto done = ReadFileAt(fileNumber_, fileName_, next, overhang);
  std::fill(overhang.begin() + static_cast<std::ptrdiff_t>(done), overhang.end(), std::uint8_t{0});
}

DiscImg::Slot& DiscImg::LocateBlock(std::int64_t offset) {
  const auto block = static_cast<std::int32_t>(offset / kBlockSize);
  for (Slot& slot : slots_) {
    if (slot.Block == block) return slot;
  }
  // First in, first out: a hit doesn't refresh Recent, so this is no least-recently-used cache.
  std::size_t victim = slots_[0].Recent ? 1 : 0;
  if (slots_[0].Block == -1) {
    victim = 0;
  } else if (slots_[1].Block == -1) {
    victim = 1;
  }
  Slot& slot = slots_[victim];
  if (slot.Block != -1 && slot.Dirty) WriteSlot(slot);
  slot.Block = -1;
  slot.Dirty = false;
  if (disctype_ == kDat) {
    const auto done =
        ReadFileAt(fileNumber_, fileName_, std::int64_t{block} * kBlockSize, slot.Data);
    std::fill(slot.Data.begin() + static_cast<std::ptrdiff_t>(done), slot.Data.end(),
              std::uint8_t{0});
    slot.Block = block;
  } else {
    slot.Block = block;
    LoadCardSlot(slot);
  }
  slot.Recent = true;
  slots_[1 - victim].Recent = false;
  return slot;
}

std::uint8_t DiscImg::Fetch(std::int64_t offset) {
  if (offset < 0) return 0;
  if (InMemory()) {
    const auto index = static_cast<std::size_t>(offset);
    return index < image_.size() ? image_[index] : std::uint8_t{0};
  }
  if (!ReadyForBlocks()) return 0;
  if (disctype_ == kCF && offset >= kPartitionBytes) return 0;
  const auto in = static_cast<std::size_t>(offset % kBlockSize);
  const Slot& slot = LocateBlock(offset);
  return disctype_ == kDat ? slot.Data[in] : slot.Data[in * 2];
}

void DiscImg::Store(std::int64_t offset, std::uint8_t value) {
  if (offset < 0) return;
  if (InMemory()) {
    const auto index = static_cast<std::size_t>(offset);
    if (index < image_.size()) image_[index] = value;
    return;
  }
  if (!ReadyForBlocks()) return;
  if (disctype_ == kDat && writeError_ != 0) ThrowHostError(fileName_, writeError_);
  if (disctype_ == kCF) {
    StoreBytes(offset, std::span(&value, 1));
    return;
  }
  Slot& slot = LocateBlock(offset);
  slot.Data[static_cast<std::size_t>(offset % kBlockSize)] = value;
  slot.Dirty = true;
}

std::size_t DiscImg::TogetherAt(std::int64_t offset, std::size_t want) const {
  if (offset < 0) {
    return static_cast<std::size_t>(
        std::min<std::int64_t>(-offset, static_cast<std::int64_t>(want)));
  }
  const auto at = static_cast<std::size_t>(offset);
  if (!InMemory()) return std::min<std::size_t>(want, kBlockSize - at % kBlockSize);
  return at < image_.size() ? std::min(want, image_.size() - at) : want;
}

bool DiscImg::Holds(std::int64_t offset) {
  if (offset < 0) return false;
  if (InMemory()) return static_cast<std::size_t>(offset) < image_.size();
  return ReadyForBlocks() && (disctype_ != kCF || offset < kPartitionBytes);
}

bool DiscImg::FetchFileRun(std::int64_t offset, std::span<std::uint8_t> bytes) {
  if (disctype_ != kDat || offset < 0 || bytes.size() < kSmallestRun || !ReadyForBlocks()) {
    return false;
  }
  const auto done = ReadFileAt(fileNumber_, fileName_, offset, bytes);
  std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(done), bytes.end(), std::uint8_t{0});
  const std::int64_t end = offset + static_cast<std::int64_t>(bytes.size());
  for (const Slot& slot : slots_) {
    if (slot.Block == -1) continue;
    const std::int64_t block = std::int64_t{slot.Block} * kBlockSize;
    const std::int64_t from = std::max(block, offset);
    const std::int64_t to = std::min(block + kBlockSize, end);
    if (from < to)
      std::copy_n(slot.Data.begin() + (from - block), to - from, bytes.begin() + (from - offset));
  }
  return true;
}

void DiscImg::FetchBytes(std::int64_t offset, std::span<std::uint8_t> bytes) {
  if (FetchFileRun(offset, bytes)) return;
  while (!bytes.empty()) {
    if (const std::size_t run = FetchCardRun(offset, bytes); run > 0) {
      offset += static_cast<std::int64_t>(run);
      bytes = bytes.subspan(run);
      continue;
    }
    const auto part = bytes.first(TogetherAt(offset, bytes.size()));
    if (!Holds(offset)) {
      std::fill(part.begin(), part.end(), std::uint8_t{0});
    } else if (InMemory()) {
      std::copy_n(image_.begin() + offset, part.size(), part.begin());
    } else {
      const Slot& slot = LocateBlock(offset);
      const auto in = static_cast<std::size_t>(offset % kBlockSize);
      if (disctype_ == kDat) {
        std::copy_n(slot.Data.data() + in, part.size(), part.data());
      } else {
        TakeEven(slot.Data.data() + 2 * in, part.size(), part.data());
      }
    }
    offset += static_cast<std::int64_t>(part.size());
    bytes = bytes.subspan(part.size());
  }
}

std::size_t DiscImg::StoreFileRun(std::int64_t offset, std::span<const std::uint8_t> bytes) {
  const bool wholeBlocks = offset >= 0 && offset % kBlockSize == 0;
  if (disctype_ != kDat || !wholeBlocks || bytes.size() < kSmallestRun) return 0;
  if (!ReadyForBlocks() || writeError_ != 0 || slots_[0].Data.size() != kBlockSize) return 0;
  const auto run = bytes.first(bytes.size() - bytes.size() % kBlockSize);
  WriteFileAt(fileNumber_, fileName_, offset, run);
  const auto first = static_cast<std::int32_t>(offset / kBlockSize);
  const auto blocks = static_cast<std::int32_t>(run.size() / kBlockSize);
  for (Slot& slot : slots_) {
    if (slot.Block < first || slot.Block - first >= blocks) continue;
    const auto in = static_cast<std::size_t>(slot.Block - first) * kBlockSize;
    std::copy_n(run.begin() + static_cast<std::ptrdiff_t>(in), kBlockSize, slot.Data.begin());
    slot.Dirty = false;
  }
  return run.size();
}

void DiscImg::StoreBytes(std::int64_t offset, std::span<const std::uint8_t> bytes) {
  if (disctype_ == kCF) bytes = InsidePartition(offset, bytes);
  while (!bytes.empty()) {
    if (const std::size_t run = StoreFileRun(offset, bytes); run > 0) {
      offset += static_cast<std::int64_t>(run);
      bytes = bytes.subspan(run);
      continue;
    }
    const auto part = bytes.first(TogetherAt(offset, bytes.size()));
    if (Holds(offset) && InMemory()) {
      std::copy(part.begin(), part.end(), image_.begin() + offset);
    } else if (Holds(offset)) {
      if (disctype_ == kDat && writeError_ != 0) ThrowHostError(fileName_, writeError_);
      Slot& slot = LocateBlock(offset);
      const auto in = static_cast<std::size_t>(offset % kBlockSize);
      if (disctype_ == kDat) {
        std::copy(part.begin(), part.end(), slot.Data.data() + in);
      } else {
        PutEven(part.data(), part.size(), slot.Data.data() + 2 * in);
      }
      slot.Dirty = true;
      if (disctype_ == kCF) {
        MarkStored(slot, static_cast<std::size_t>(offset % kBlockSize), part.size());
      }
    }
    offset += static_cast<std::int64_t>(part.size());
    bytes = bytes.subspan(part.size());
  }
}

bool DiscImg::IsOpenFile(const std::string& path) const {
  if (disctype_ != kDat || (fileNumber_ < 0 && !suspended_)) return false;
  struct stat own {};
  struct stat other {};
  const bool known =
      fileNumber_ >= 0 ? ::fstat(fileNumber_, &own) == 0 : ::stat(fileName_.c_str(), &own) == 0;
  return known && ::stat(path.c_str(), &other) == 0 && own.st_dev == other.st_dev &&
         own.st_ino == other.st_ino;
}

std::int64_t DiscImg::EndOfData() {
  if (InMemory()) return static_cast<std::int64_t>(image_.size());
  if (disctype_ == kCF) return kPartitionBytes;
  if (!ReadyForBlocks()) return INT64_MAX;
  struct stat info {};
  if (::fstat(fileNumber_, &info) != 0) ThrowHostError(fileName_, errno);
  std::int64_t end = info.st_size;
  for (const Slot& slot : slots_) {
    if (slot.Dirty) end = std::max(end, (std::int64_t{slot.Block} + 1) * kBlockSize);
  }
  return end;
}

void DiscImg::WriteBack() {
  for (Slot& slot : slots_) {
    if (!slot.Dirty) continue;
    WriteSlot(slot);
    slot.Dirty = false;
  }
}

void DiscImg::CloseFile() {
  if (disctype_ == kAdf) {
    StoreAdf();
  } else if (disctype_ == kAdl) {
    StoreAdl();
  } else if (disctype_ == kDat && fileNumber_ >= 0) {
    WriteBack();
    EmptySlots();
    const int file = fileNumber_;
    fileNumber_ = -1;
    suspended_ = true;
    if (::close(file) != 0) ThrowHostError(fileName_, errno);
  } else if (disctype_ == kCF && device_->IsOpen()) {
    CloseCard();
  }
}

void DiscImg::Abandon() {
  if (!InMemory()) CloseFile();
  suspended_ = false;
}

void DiscImg::Flush() {
  CloseFile();
  OpenFile(std::string(fileName_), disctype_, mTracks, heads_, sectors_);
}

}  // namespace sectorbox
