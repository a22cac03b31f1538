#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/disc/EngineTest.h"

namespace sectorbox::testing {

// An open empty disc of 640K, and folders of the host beside it.
class HostExchangeFixture : public EngineTest {
 protected:
  HostExchangeFixture() { Open(ImageBuilder(2560)); }

  void MakeFolder(const std::string& name) { std::filesystem::create_directory(folder_ / name); }
  std::string Out() { return folder_ / "out"; }
  std::string OutFile(const std::string& name) { return Out() + "/" + name; }
  // The names in the folder that an export has written, with blanks between.
  std::string Listed(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    std::string all;
    for (const auto& name : names) all += (all.empty() ? "" : " ") + name;
    return all;
  }
};

}  // namespace sectorbox::testing
