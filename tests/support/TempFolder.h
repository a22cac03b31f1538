#pragma once

#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace sectorbox::testing {

// A folder of the test's own. The destructor removes it with all that is in it.
class TempFolder {
 public:
  TempFolder() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "sectorbox-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = pattern;
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::string& Path() const { return path_; }
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

inline std::vector<std::uint8_t> ReadAll(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  std::vector<std::uint8_t> bytes;
  std::array<char, 65536> part;
  do {
    file.read(part.data(), part.size());
    bytes.insert(bytes.end(), part.data(), part.data() + file.gcount());
  } while (file);
  return bytes;
}

inline std::string ReadText(const std::string& path) {
  const auto bytes = ReadAll(path);
  return {bytes.begin(), bytes.end()};
}

inline void WriteAll(const std::string& path, const std::vector<std::uint8_t>& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  if (!file) throw std::runtime_error("cannot write " + path);
}

inline void WriteText(const std::string& path, const std::string& text) {
  WriteAll(path, {text.begin(), text.end()});
}

}  // namespace sectorbox::testing
