#include "link/windows/frmRX.h"

#include <QCloseEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "toolkit/Captions.h"
#include "toolkit/WindowPlace.h"

namespace sectorbox {
namespace {

template <typename Widget>
Widget* Named(Widget* widget, const char* name) {
  widget->setObjectName(QString::fromLatin1(name));
  return widget;
}

QLineEdit* CounterField(QWidget* parent, const char* name) {
  auto* field = Named(new QLineEdit(parent), name);
  field->setReadOnly(true);
  field->setFocusPolicy(Qt::NoFocus);
  field->setAlignment(Qt::AlignRight);
  return field;
}

}  // namespace

frmRX::frmRX(Link& link, const QString& caption, QWidget* parent)
    : QDialog(parent),
      link_(link),
      lblRX_(Named(new QLabel(QStringLiteral("Receiving Sectors 0 to 15"), this), "lblRX")),
      lblTot_(Named(new QLabel(QStringLiteral("Read 0 of 0 Sectors"), this), "lblTot")),
      txtRetry_(CounterField(this, "txtRetry")),
      txtCRC_(CounterField(this, "txtCRC")),
      txtBadSector_(CounterField(this, "txtBadSector")),
      pb_(Named(new QProgressBar(this), "pb")),
      cmdAbort_(Named(new QPushButton(QStringLiteral("Abort"), this), "cmdAbort")),
      cmdOK_(Named(new QPushButton(QStringLiteral("OK"), this), "cmdOK")) {
  setObjectName(QStringLiteral("frmRX"));
  setWindowTitle(caption);
  setAttribute(Qt::WA_DeleteOnClose);
  Arrange();
  pb_->setAccessibleName(QStringLiteral("Progress"));
  pb_->setRange(0, 100);
  pb_->setValue(0);
  cmdOK_->setEnabled(false);
  cmdAbort_->setAutoDefault(false);
  setFixedWidth(WidthForText(*this, QStringLiteral("Receiving Sectors 2097136 to 2097151")));
  RestorePlace(*this, kRXPlace);
  connect(cmdAbort_, &QPushButton::clicked, this, [this] { Abort(); });
  connect(cmdOK_, &QPushButton::clicked, this, [this] { Unload(); });
}

void frmRX::Arrange() {
  auto* counters = new QFormLayout;
  const auto add = [&](const char* caption, const char* name, QLineEdit* field) {
    auto* label = Named(new QLabel(QString::fromLatin1(caption), this), name);
    label->setBuddy(field);
    counters->addRow(label, field);
  };
  add("Retries", "Label1", txtRetry_);
  add("Bad CRC's", "Label2", txtCRC_);
  add("Bad Sectors", "Label3", txtBadSector_);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(cmdAbort_);
  buttons->addWidget(cmdOK_);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(lblRX_);
  layout->addWidget(lblTot_);
  layout->addWidget(pb_);
  layout->addLayout(counters);
  layout->addLayout(buttons);
}

void frmRX::ShowChunk(const QString& text) {
  lblRX_->setText(text);
}

void frmRX::ShowTotal(const QString& text) {
  lblTot_->setText(text);
}

void frmRX::ShowCounters(const TransferCounters& counters) {
  txtRetry_->setText(QString::number(counters.Retries));
  txtCRC_->setText(QString::number(counters.BadCRCs));
  txtBadSector_->setText(QString::number(counters.BadSectors));
}

void frmRX::ShowPercent(float percent) {
  pb_->setValue(static_cast<int>(percent));
}

void frmRX::Finish() {
  over_ = true;
  cmdOK_->setEnabled(true);
  cmdOK_->setFocus();
}

void frmRX::Unload() {
  over_ = true;
  close();
}

void frmRX::Abort() {
  link_.AbortRequested = true;
  Unload();
}

void frmRX::reject() {
  close();
}

void frmRX::closeEvent(QCloseEvent* event) {
  if (!over_) link_.AbortRequested = true;
  over_ = true;
  SavePlace(*this, kRXPlace);
  event->accept();
}

}  // namespace sectorbox
