#include "disc/host/HostPath.h"

#include <cerrno>
#include <filesystem>

#include "disc/host/HostError.h"

namespace sectorbox {
namespace {

namespace fs = std::filesystem;

// The path without separators at its end; a root stays a root.
fs::path WithoutLastSeparator(const fs::path& path) {
  if (!path.has_relative_path()) return path.root_path();
  return path.has_filename() ? path : path.parent_path();
}

}  // namespace

std::string JoinHostPath(const std::string& folder, const std::string& name) {
  return (fs::path(folder) / fs::path(name).relative_path()).string();
}

std::string HostBaseName(const std::string& path) {
  return WithoutLastSeparator(path).filename().string();
}

std::string HostFolderOf(const std::string& path) {
  const fs::path folder = fs::path(path).parent_path();
  return folder.empty() ? "." : folder.string();
}

std::string GetTempFolder() {
  std::error_code failed;
  const fs::path folder = fs::temp_directory_path(failed);
  if (failed) return {};
  return (folder / "").string();  // an empty name at the end leaves a separator there
}

std::string AbsoluteHostPath(const std::string& path) {
  if (path.empty()) ThrowHostError(path, ENOENT);
  std::error_code error;
  const fs::path full = fs::absolute(path, error);
  if (error) ThrowHostError(path, error);
  return full.string();
}

std::string ResolveHostPath(const std::string& path) {
  const fs::path full = WithoutLastSeparator(AbsoluteHostPath(path));
  if (full.filename() != "." && full.filename() != "..") return full.string();
  std::error_code error;
  const fs::path real = fs::canonical(full, error);
  if (error) ThrowHostError(path, error);
  return real.string();
}

std::string RealHostPath(const std::string& path) {
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  return error ? path : real.string();
}

std::optional<FileIdentity> IdentityOfPath(const std::string& path) {
  try {
    return RequireIdentity(path);
  } catch (const HostError&) {
    return std::nullopt;
  }
}

bool NameSameFile(const std::string& one, const std::string& other) {
  const auto identity = IdentityOfPath(one);
  return identity && identity == IdentityOfPath(other);
}

}  // namespace sectorbox
