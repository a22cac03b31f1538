#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace sectorbox {

// The place where a medium keeps its journal (BlockJournal.h): one string of bytes that survives
// the end of the program.
class JournalPlace {
 public:
  virtual ~JournalPlace() = default;

  // All bytes that are kept there; none if there is no journal. HostError if the host fails.
  [[nodiscard]] virtual std::vector<std::uint8_t> Read() = 0;
  // Replaces what is there. Returns when the bytes are safe, also against a power cut. HostError if
  // the host fails; what is there then may be a part of the bytes.
  virtual void Write(std::span<const std::uint8_t> bytes) = 0;
  // Afterwards there is no journal. Nothing happens if there was none. HostError if the host fails.
  virtual void Remove() = 0;
};

// A journal in the user's state folder, in a file with a name of its own. It is for mediums that
// have no folder beside them.
class StateJournal final : public JournalPlace {
 public:
  // kind begins the file's name. Journals of one kind are for mediums that look alike.
  explicit StateJournal(std::string kind) : kind_(std::move(kind)) {}

  // The files of all journals of a kind that are there.
  [[nodiscard]] static std::vector<std::string> FilesOf(const std::string& kind);

  // Gives only what Write has written.
  [[nodiscard]] std::vector<std::uint8_t> Read() override;
  void Write(std::span<const std::uint8_t> bytes) override;
  void Remove() override;

 private:
  std::string kind_;
  std::string path_;  // empty if there is no journal
};

// A journal in a host file of its own.
class JournalFile final : public JournalPlace {
 public:
  explicit JournalFile(std::string path) : path_(std::move(path)) {}

  [[nodiscard]] std::vector<std::uint8_t> Read() override;
  void Write(std::span<const std::uint8_t> bytes) override;
  void Remove() override;

 private:
  std::string path_;
};

}  // namespace sectorbox
