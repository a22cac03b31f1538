#pragma once

#include <string>

#include "disc/ask/Questions.h"

namespace sectorbox {

// The title of the link's boxes. Only those of the star-command console have another one.
inline constexpr char kLinkTitle[] = "Sectorbox";

enum class ReplaceAnswer { kYes, kNo, kCancel };

// Boxes and questions to the user. Each call returns when the user has answered.
class LinkQuestions {
 public:
  virtual ~LinkQuestions() = default;

  // A plain box with OK. It comes at most once in an operation: the operation's work is done then,
  // or can't be done.
  virtual void ShowMessage(const std::string& text, const std::string& title) = 0;
  // A box with the warning icon, for a failure of the host in the system's words. The operation
  // that shows it has ended: the transfer dialog is closed, and a port that failed is closed too.
  virtual void ShowWarning(const std::string& text) = 0;
  // Asked once for a file that exists. kCancel leads back to the question for the file.
  [[nodiscard]] virtual ReplaceAnswer AskReplace(const std::string& text) = 0;
  // File dialogs, once for each transfer or trace file. An empty text means that the user
  // cancelled; the operation ends then and has changed nothing. Neither dialog tests or replaces
  // a file.
  [[nodiscard]] virtual std::string AskOpenFileName(const FileQuestion& question) = 0;
  [[nodiscard]] virtual std::string AskSaveFileName(const FileQuestion& question) = 0;
};

}  // namespace sectorbox
