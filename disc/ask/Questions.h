#pragma once

#include <string>

namespace sectorbox {

// What a file dialog shows. Filters have the form "Text (*.x)|*.x|Text (*.*)|*.*".
struct FileQuestion {
  std::string Title;
  std::string Filter;
  std::string FileName;
};

// Boxes and questions to the user. The engine asks from inside an operation; the disc is then in a
// state between two whole steps, and the operation goes on from there when the call returns.
class Questions {
 public:
  virtual ~Questions() = default;

  // A plain box with OK. The operation that shows it ends right after.
  virtual void ShowMessage(const std::string& text) = 0;
  // A box with Yes and No; true for Yes. A front end without a user answers as the command wants
  // it.
  [[nodiscard]] virtual bool AskYesNo(const std::string& text, const std::string& title) = 0;
  // File dialogs. An empty text means that the user cancelled. The open dialog doesn't test that
  // the file exists, and the save dialog doesn't ask before an existing file is replaced.
  [[nodiscard]] virtual std::string AskOpenFileName(const FileQuestion& question) = 0;
  [[nodiscard]] virtual std::string AskSaveFileName(const FileQuestion& question) = 0;
};

}  // namespace sectorbox
