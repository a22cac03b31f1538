#include "disc/medium/Companion.h"

#include <algorithm>

#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"

namespace sectorbox {
namespace {

constexpr std::size_t kExtensionLength = 4;

// The bytes of a new companion. Tracks and heads are then filled in.
constexpr CompanionBytes kTemplate = {0, 0, 0, 8, 0, 0, 0,   0, 0,   0, 1,
                                      0, 1, 0, 0, 0, 0, 128, 0, 128, 0, 1};
constexpr std::size_t kTracksHigh = 13;
constexpr std::size_t kTracksLow = 14;
constexpr std::size_t kHeads = 15;

std::optional<CompanionBytes> ReadExisting(const std::string& name) {
  if (!HostFileExists(name)) return std::nullopt;
  CompanionBytes bytes{};
  const auto file = ReadHostFile(name, 0, bytes.size());
  std::copy(file.begin(), file.end(), bytes.begin());
  return bytes;
}

// What may be replaced: an older companion, or a file without bytes.
bool IsCompanion(const std::string& name) {
  if (!HostFileIsPlain(name)) return false;
  const std::uint64_t length = HostFileLength(name);
  return length == 0 || length == kCompanionSize;
}

}  // namespace

std::string CompanionName(const std::string& imagePath) {
  const std::string name = HostBaseName(imagePath);
  // Only an extension of three characters goes. Whatever else the path ends with may be a part of
  // the image's name, or of its folder's.
  const bool hasExtension =
      name.size() >= kExtensionLength && name[name.size() - kExtensionLength] == '.';
  return imagePath.substr(0, imagePath.size() - (hasExtension ? kExtensionLength : 0)) + ".dsc";
}

std::optional<CompanionGeometry> ReadCompanion(const std::string& imagePath) {
  const auto bytes = ReadExisting(CompanionName(imagePath));
  if (!bytes) return std::nullopt;
  return CompanionGeometry{(*bytes)[kTracksHigh] * 256 + (*bytes)[kTracksLow], (*bytes)[kHeads]};
}

void RequireRoomForCompanion(const std::string& imagePath) {
  const std::string name = CompanionName(imagePath);
  if (name == imagePath) return;
  const bool isTaken = HostFileExists(name) || HostFolderExists(name);
  if (!isTaken || IsCompanion(name)) return;
  throw HostError(name, "stands where the companion goes. Move it to another place first");
}

void WriteCompanion(const std::string& imagePath, const CompanionGeometry& geometry) {
  const std::string name = CompanionName(imagePath);
  // An image that is itself called .dsc has no companion: both would be one file.
  if (name == imagePath) return;
  RequireRoomForCompanion(imagePath);
  CompanionBytes bytes = ReadExisting(name).value_or(kTemplate);
  bytes[kTracksHigh] = static_cast<std::uint8_t>(geometry.Tracks / 256);
  bytes[kTracksLow] = static_cast<std::uint8_t>(geometry.Tracks % 256);
  bytes[kHeads] = static_cast<std::uint8_t>(geometry.Heads);
  OutputFile output = CreateOutputFile(name);
  output.Write(bytes);
  output.Close();
}

}  // namespace sectorbox
