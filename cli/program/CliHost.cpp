#include "cli/program/CliHost.h"

#include <cstdio>

#include "cli/program/TerminalText.h"
#include "disc/host/HostProcess.h"
#include "disc/host/HostSignals.h"

namespace sectorbox::cli {

CliHost::CliHost(const CommandLine& line)
    : pad_(line.Switch("pad", false)),
      interleave_(line.Switch("interleave", true)),
      deleteLocked_(line.Switch("delete-locked", true)),
      overwriteLocked_(line.Switch("overwrite-locked", true)),
      deleteNonEmpty_(line.Switch("delete-non-empty", true)),
      terminal_(ErrorsGoToTerminal()) {}

void CliHost::ShowMessage(const std::string& text) {
  MessageShown = true;
  Note(text);
}

bool CliHost::AskYesNo(const std::string&, const std::string&) {
  return true;
}

std::string CliHost::AskOpenFileName(const FileQuestion&) {
  return FileAnswer;
}

std::string CliHost::AskSaveFileName(const FileQuestion&) {
  return FileAnswer;
}

void CliHost::SetStatus(const std::string&, bool) {}

void CliHost::Note(const std::string& line) {
  PrintErrorLine(line);
}

void CliHost::NoteLeftOut(const std::string& line) {
  LeftOut = true;
  Note(line);
}

void CliHost::SetBusyPointer(bool) {}

void CliHost::RefreshCaption() {}

void CliHost::RebuildTree() {}

void CliHost::SetTreeReady() {}

void CliHost::DirectoriesMoved(const std::map<std::int32_t, std::int32_t>&) {}

void CliHost::EnableDiscEntries() {}

void CliHost::StoreRoot(const std::string&) {}

void CliHost::PumpEvents() {
  if (!TakeInterrupt()) return;
  CloseProgress();
  throw Failure("Aborted");
}

void CliHost::OpenProgress(const std::string&) {
  if (ProgressRunning != nullptr) *ProgressRunning = true;
}

void CliHost::ShowProgress(const std::string& line, double percent) {
  if (terminal_)
    std::fprintf(stderr, "\r%s (%d%%)\033[K", ShownOnErrors(line).c_str(),
                 static_cast<int>(percent));
}

void CliHost::CloseProgress() {
  if (terminal_) std::fputs("\r\033[K", stderr);
}

}  // namespace sectorbox::cli
