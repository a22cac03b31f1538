#include "shell/program/WindowHost.h"

#include <QApplication>

#include "shell/dialogs/frmSave.h"
#include "shell/panes/Panes.h"
#include "shell/program/frmMain.h"
#include "toolkit/Boxes.h"
#include "toolkit/FileDialogs.h"
#include "toolkit/SettingsStore.h"
#include "toolkit/Text.h"

namespace sectorbox {

WindowHost::WindowHost() = default;
WindowHost::~WindowHost() = default;

void WindowHost::Attach(frmMain* window) {
  window_ = window;
}

void WindowHost::ShowMessage(const std::string& text) {
  ShowBox(window_, FromBbc(text));
}

bool WindowHost::AskYesNo(const std::string& text, const std::string& title) {
  return AskYesNoBox(window_, FromBbc(text), FromBbc(title));
}

std::string WindowHost::AskOpenFileName(const FileQuestion& question) {
  return AskOpenFile(window_, question);
}

std::string WindowHost::AskSaveFileName(const FileQuestion& question) {
  return AskSaveFile(window_, question);
}

void WindowHost::SetStatus(const std::string& text, bool busy) {
  if (window_ != nullptr) window_->SetStatus(FromBbc(text), busy);
}

void WindowHost::ShowNoteAgain() {
  if (!note_.empty()) Note(std::string(note_));
}

void WindowHost::Note(const std::string& line) {
  note_ = line;
  if (window_ != nullptr) window_->ShowNote(line);
}

void WindowHost::SetBusyPointer(bool busy) {
  if (busy == busy_) return;
  busy_ = busy;
  if (busy) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QApplication::restoreOverrideCursor();
  }
}

void WindowHost::RefreshCaption() {
  if (window_ != nullptr) window_->RefreshCaption();
}

void WindowHost::RebuildTree() {
  if (window_ != nullptr) window_->ThePanes().RebuildTree();
}

void WindowHost::SetTreeReady() {
  if (window_ != nullptr) window_->ThePanes().SetTreeReady();
}

void WindowHost::DirectoriesMoved(const std::map<std::int32_t, std::int32_t>& moves) {
  if (window_ != nullptr) window_->ThePanes().FollowMoves(moves);
}

void WindowHost::EnableDiscEntries() {
  if (window_ == nullptr) return;
  for (const char* name : {"mnuDiscMap", "mnuDiscSave", "mnuDiscBoot"}) {
    window_->Action(name)->setEnabled(true);
  }
}

void WindowHost::StoreRoot(const std::string& path) {
  SettingsStore().PutString("Root", FromHost(path));
}

void WindowHost::PumpEvents() {
  QApplication::processEvents();
}

void WindowHost::OpenProgress(const std::string& caption) {
  if (window_ == nullptr) return;
  progress_ = std::make_unique<frmSave>(window_, window_->OpenDisc());
  if (!caption.empty()) progress_->setWindowTitle(FromBbc(caption));
  progress_->show();
}

void WindowHost::ShowProgress(const std::string& line, double percent) {
  if (progress_) progress_->Show(FromBbc(line), percent);
}

void WindowHost::CloseProgress() {
  progress_.reset();
}

bool WindowHost::PadDiscImages() const {
  return window_ != nullptr && window_->Checked("mnuOptionsPad");
}

bool WindowHost::InterleavedDisc() const {
  return window_ == nullptr || window_->Checked("mnuOptionsInterleave");
}

bool WindowHost::OverwriteLocked() const {
  return window_ == nullptr || window_->Checked("mnuOptionsOverwrite");
}

}  // namespace sectorbox
