#pragma once

#include <string>

#include "disc/host/HostFile.h"

namespace sectorbox {

// The host file that a view is written to. It gathers the text before it writes, since the Wordwise
// formatter gives it single characters. Without Close the old file stays, as for any OutputFile.
class TextFile {
 public:
  explicit TextFile(const std::string& path) : file_(CreateOutputFile(path)) {}

  void Write(const std::string& text) {
    pending_ += text;
    if (pending_.size() >= kEnough) Flush();
  }
  void Close() {
    Flush();
    file_.Close();
  }

 private:
  static constexpr std::size_t kEnough = 65536;

  void Flush() {
    file_.Write(pending_);
    pending_.clear();
  }

  OutputFile file_;
  std::string pending_;
};

}  // namespace sectorbox
