#include "shell/commands/LinkWindowHost.h"

#include <QApplication>
#include <QDateTime>
#include <QLocale>
#include <QMessageBox>
#include <QThread>

#include "disc/store/OpenDisc.h"
#include "link/wire/Protocol.h"
#include "link/wire/Trace.h"
#include "shell/window/MainWindow.h"
#include "toolkit/Boxes.h"
#include "toolkit/FileDialogs.h"
#include "toolkit/Text.h"

namespace sectorbox {
LinkWindowHost::LinkWindowHost(MainWindow& window) : window_(window) {
  clock_.start();
}

// If a modal dialog is open, a box belongs to that dialog. Otherwise the user couldn't press the
// box's button.
QWidget* LinkWindowHost::BoxParent() const {
  QWidget* modal = QApplication::activeModalWidget();
  return modal != nullptr ? modal : static_cast<QWidget*>(&window_);
}

std::int64_t LinkWindowHost::Milliseconds() {
  return clock_.elapsed();
}

void LinkWindowHost::Sleep(std::int32_t milliseconds) {
  QThread::msleep(static_cast<unsigned long>(milliseconds));
}

void LinkWindowHost::PumpEvents() {
  QCoreApplication::processEvents();
}

std::string LinkWindowHost::DateAndTime() {
  const QDateTime now = QDateTime::currentDateTime();
  return ToHost(QLocale().toString(now.date(), QLocale::ShortFormat) +
                now.time().toString(QStringLiteral(" HH:mm:ss")));
}

void LinkWindowHost::ShowMessage(const std::string& text, const std::string& title) {
  // The BBC's error texts come this way. They are bytes of the BBC. Our own words are plain ASCII.
  ShowBox(BoxParent(), FromBbc(text), FromHost(title));
}

void LinkWindowHost::ShowWarning(const std::string& text) {
  ShowBox(BoxParent(), FromHost(text), QString::fromLatin1(kLinkTitle), BoxIcon::kExclamation);
}

ReplaceAnswer LinkWindowHost::AskReplace(const std::string& text) {
  QMessageBox box(QMessageBox::Question, QString::fromLatin1(kLinkTitle), FromHost(text),
                  QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, BoxParent());
  box.setTextFormat(Qt::PlainText);
  switch (box.exec()) {
    case QMessageBox::Yes:
      return ReplaceAnswer::kYes;
    case QMessageBox::No:
      return ReplaceAnswer::kNo;
    default:
      return ReplaceAnswer::kCancel;
  }
}

std::string LinkWindowHost::AskOpenFileName(const FileQuestion& question) {
  return AskOpenFile(BoxParent(), question);
}

std::string LinkWindowHost::AskSaveFileName(const FileQuestion& question) {
  const std::string name = AskSaveFile(BoxParent(), question);
  if (question.Title == kTraceFileTitle) {
    if (!name.empty()) RefuseOpenDisc(window_.OpenDisc(), name);
    return name;
  }
  // A disc is going to be received into this file. If it is the image that is open, its last blocks
  // are written now, and never over what is received.
  Disc& disc = window_.OpenDisc();
  if (!name.empty() && disc.TheDisc.IsOpenMedium(name)) {
    disc.TheDisc.CloseFile();
    disc.ImageChanged = false;
  }
  return name;
}

void LinkWindowHost::ShowStep(const std::string& text) {
  window_.ShowStep(FromBbc(text));
}

void LinkWindowHost::OpenTransfer(const std::string& caption) {
  CloseTransfer();  // closes the dialog of the last transfer, if its OK was never pressed
  transfer_ = new frmRX(*link_, FromHost(caption), &window_);
  transfer_->show();
}

void LinkWindowHost::ShowChunk(const std::string& text) {
  if (transfer_) transfer_->ShowChunk(FromHost(text));
}

void LinkWindowHost::ShowTotal(const std::string& text) {
  if (transfer_) transfer_->ShowTotal(FromHost(text));
}

void LinkWindowHost::ShowCounters(const TransferCounters& counters) {
  if (transfer_) transfer_->ShowCounters(counters);
}

void LinkWindowHost::ShowPercent(float percent) {
  if (transfer_) transfer_->ShowPercent(percent);
}

void LinkWindowHost::FinishTransfer() {
  if (transfer_) transfer_->Finish();
}

void LinkWindowHost::CloseTransfer() {
  if (transfer_) transfer_->Unload();
  transfer_ = nullptr;
}

std::int32_t LinkWindowHost::TickedSpeed() {
  for (const auto speed : wire::kSpeeds) {
    if (window_.Checked(("mnuXferSerial" + std::to_string(speed)).c_str())) return speed;
  }
  return 0;
}

bool LinkWindowHost::CheckBeforeTransfer() {
  return window_.Checked("mnuXferCBW");
}

bool LinkWindowHost::PlayWaveOnSuccess() {
  return window_.Checked("mnuOptionsPlayWave");
}

std::string LinkWindowHost::ProgramFolder() {
  return ToHost(QCoreApplication::applicationDirPath());
}

bool LinkWindowHost::PlayWave(const std::string& path, bool wait) {
  return wave_.Play(path, wait);
}

void LinkWindowHost::OpenTraceWindow() {
  QAction* entry = window_.Action("mnuXferTracewindow");
  entry->setEnabled(false);
  trace_ = new frmTrace(&window_);
  QObject::connect(trace_, &frmTrace::Closed, entry, [this, entry] {
    entry->setEnabled(true);
    trace_ = nullptr;
  });
  trace_->show();
}

void LinkWindowHost::ShowTrace(const std::string& text) {
  if (trace_) trace_->Append(FromHost(text));
}

}  // namespace sectorbox
