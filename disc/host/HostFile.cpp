#include "disc/host/HostFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "disc/host/HostError.h"

namespace sectorbox {
namespace {

namespace fs = std::filesystem;

// The kind of what path names. Nothing, with the reason in error, if the host can't tell.
std::optional<HostFileKind> KindOf(const std::string& path, std::error_code& error) {
  const fs::file_status status = fs::status(path, error);
  if (error) return std::nullopt;
  if (fs::is_directory(status)) return HostFileKind::kFolder;
  return fs::is_regular_file(status) ? HostFileKind::kPlain : HostFileKind::kOther;
}

// The names in a folder; none if it can't be read.
std::vector<std::string> NamesIn(const std::string& folder) {
  try {
    return ListHostFolder(folder);
  } catch (const HostError&) {
    return {};
  }
}

std::optional<HostFileKind> KindOf(const std::string& path) {
  std::error_code ignored;
  return KindOf(path, ignored);
}

}  // namespace

HostFileKind KindOfHostFile(const std::string& path) {
  std::error_code error;
  const auto kind = KindOf(path, error);
  if (!kind) ThrowHostError(path, error);
  return *kind;
}

bool HostFileExists(const std::string& path) {
  const auto kind = KindOf(path);
  return kind && *kind != HostFileKind::kFolder;
}

bool HostFileIsPlain(const std::string& path) {
  return KindOf(path) == HostFileKind::kPlain;
}

bool HostFolderExists(const std::string& path) {
  return KindOf(path) == HostFileKind::kFolder;
}

bool HostPathIsTaken(const std::string& path) {
  std::error_code ignored;
  return fs::exists(fs::symlink_status(path, ignored));
}

std::uint64_t HostFileLength(const std::string& path) {
  std::error_code error;
  const std::uint64_t length = fs::file_size(path, error);
  if (!error) return length;
  if (KindOfHostFile(path) == HostFileKind::kPlain) ThrowHostError(path, error);
  return 0;
}

std::vector<std::uint8_t> ReadHostFile(const std::string& path, std::uint64_t offset,
                                       std::uint64_t limit) {
  const RandomAccessFile file(path, FileAccess::kRead);
  std::vector<std::uint8_t> bytes;
  std::array<std::uint8_t, 65536> part{};
  while (bytes.size() < limit) {
    const auto want = std::min<std::uint64_t>(part.size(), limit - bytes.size());
    const auto done =
        file.ReadAt(offset + bytes.size(), std::span(part).first(static_cast<std::size_t>(want)));
    bytes.insert(bytes.end(), part.begin(), part.begin() + static_cast<std::ptrdiff_t>(done));
    if (done < want) break;
  }
  return bytes;
}

std::vector<std::uint8_t> ReadHostBytes(const std::string& path, std::uint64_t offset,
                                        std::uint64_t count) {
  std::vector<std::uint8_t> bytes = ReadHostFile(path, offset, count);
  if (bytes.size() < count) throw HostError(path, "Unexpected end of file");
  return bytes;
}

void OverwriteHostFile(const std::string& path, std::uint64_t offset,
                       std::span<const std::uint8_t> bytes) {
  RandomAccessFile file(path, FileAccess::kWrite);
  file.WriteAt(offset, bytes);
  file.Close();
}

void DeleteHostFile(const std::string& path) {
  std::error_code error;
  if (fs::remove(path, error)) return;
  if (error) ThrowHostError(path, error);
  ThrowHostError(path, ENOENT);
}

void RemoveHostTree(const std::string& path) {
  // Each file is removed by itself, so that one that can't be removed doesn't keep the others.
  std::error_code ignored;
  if (fs::symlink_status(path, ignored).type() == fs::file_type::directory) {
    for (const std::string& name : NamesIn(path)) RemoveHostTree(JoinHostPath(path, name));
  }
  std::error_code kept;
  fs::remove(path, kept);
}

void RemoveHostLink(const std::string& path) {
  std::error_code ignored;
  if (fs::is_symlink(fs::symlink_status(path, ignored))) fs::remove(path, ignored);
}

void CreateHostFolder(const std::string& path) {
  std::error_code error;
  fs::create_directory(path, error);
  if (error) ThrowHostError(path, error);
}

void CreateHostFolders(const std::string& path) {
  std::error_code error;
  fs::create_directories(path, error);
  if (error) ThrowHostError(path, error);
}

OpenFileNumber& OpenFileNumber::operator=(OpenFileNumber&& other) noexcept {
  if (this == &other) return *this;
  (void)Close();
  number_ = other.Release();
  return *this;
}

int OpenFileNumber::Release() {
  return std::exchange(number_, -1);
}

void OutputFile::Write(const std::string& text) {
  Write(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

void OutputFile::WriteWithHoles(std::span<const std::uint8_t> bytes) {
  constexpr std::size_t kBlock = 4096;
  static constexpr std::array<std::uint8_t, kBlock> kZeros{};
  const auto isZero = [&](std::size_t at) {
    return bytes.size() - at >= kBlock && std::memcmp(&bytes[at], kZeros.data(), kBlock) == 0;
  };
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t start = at;
    const bool hole = isZero(at);
    while (at < bytes.size() && isZero(at) == hole) at += std::min(kBlock, bytes.size() - at);
    if (hole) {
      Skip(at - start);
    } else {
      Write(bytes.subspan(start, at - start));
    }
  }
}

OutputFile CreateOutputFile(const std::string& path, OnMedium onMedium, LinkAtPath link) {
  return OutputFile(path, onMedium, link);
}

}  // namespace sectorbox
