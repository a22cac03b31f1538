#pragma once

#include <cerrno>
#include <map>
#include <memory>
#include <string>

#include "tests/support/MemoryDevice.h"

namespace sectorbox::testing {

// Several cards in memory, which are opened by their paths. Any other path can't be opened.
class CardShelf {
 public:
  MemoryDevice& Put(const std::string& path, std::uint64_t sectors) {
    return *(cards_[path] = std::make_shared<MemoryDevice>(sectors));
  }
  void Take(const std::string& path) { cards_.erase(path); }
  MemoryDevice& At(const std::string& path) { return *cards_.at(path); }

  // A device that opens the cards of this shelf. The shelf outlives it.
  std::unique_ptr<RawDevice> MakeDevice();

 private:
  friend class ShelfDevice;
  std::map<std::string, std::shared_ptr<MemoryDevice>> cards_;
};

class ShelfDevice final : public RawDevice {
 public:
  explicit ShelfDevice(CardShelf& shelf) : shelf_(shelf) {}

  bool Open(const std::string& path) override {
    Close();
    const auto found = shelf_.cards_.find(path);
    error_ = found == shelf_.cards_.end() ? ENOENT : found->second->Openable ? 0 : EACCES;
    if (error_ != 0) return false;
    card_ = found->second;
    return card_->Open(path);
  }
  bool IsOpen() const override { return card_ != nullptr; }
  std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> buffer) override {
    return card_ == nullptr ? 0 : Count(card_->Read(offset, buffer), buffer.size());
  }
  std::size_t Write(std::uint64_t offset, std::span<const std::uint8_t> buffer) override {
    return card_ == nullptr ? 0 : Count(card_->Write(offset, buffer), buffer.size());
  }
  void Close() override {
    error_ = 0;
    if (card_ != nullptr) card_->Close();
    card_ = nullptr;
  }
  int LastError() const override { return error_; }

 private:
  std::size_t Count(std::size_t done, std::size_t wanted) {
    error_ = done < wanted ? EIO : 0;
    return done;
  }

  CardShelf& shelf_;
  std::shared_ptr<MemoryDevice> card_;
  int error_ = 0;
};

inline std::unique_ptr<RawDevice> CardShelf::MakeDevice() {
  return std::make_unique<ShelfDevice>(*this);
}

}  // namespace sectorbox::testing
