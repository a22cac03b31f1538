#pragma once

#include <map>
#include <string>

#include "disc/ask/DiscHost.h"

namespace sectorbox::testing {

// A host that accepts every call and shows nothing. It is for benchmarks and fuzzers, which look at
// time and memory and not at the calls.
class QuietHost final : public DiscHost {
 public:
  bool* ProgressRunning = nullptr;  // set when the progress dialog opens
  bool Pad = false;

  void ShowMessage(const std::string&) override {}
  bool AskYesNo(const std::string&, const std::string&) override { return false; }
  std::string AskOpenFileName(const FileQuestion&) override { return ""; }
  std::string AskSaveFileName(const FileQuestion&) override { return ""; }
  void SetStatus(const std::string&, bool) override {}
  void Note(const std::string&) override {}
  void SetBusyPointer(bool) override {}
  void RefreshCaption() override {}
  void RebuildTree() override {}
  void SetTreeReady() override {}
  void DirectoriesMoved(const std::map<std::int32_t, std::int32_t>&) override {}
  void EnableDiscEntries() override {}
  void StoreRoot(const std::string&) override {}
  void PumpEvents() override {}
  void OpenProgress(const std::string&) override {
    if (ProgressRunning != nullptr) *ProgressRunning = true;
  }
  void ShowProgress(const std::string&, double) override {}
  void CloseProgress() override {}
  bool PadDiscImages() const override { return Pad; }
  bool InterleavedDisc() const override { return true; }
  bool OverwriteLocked() const override { return true; }
};

}  // namespace sectorbox::testing
