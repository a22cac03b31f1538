#include "link/windows/frmBootstrap.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <array>

#include "disc/host/HostError.h"
#include "toolkit/Boxes.h"
#include "toolkit/Text.h"

namespace sectorbox {
namespace {

constexpr std::array<const char*, 7> kInstructions = {
    "1. Make sure the serial cable is well connected",
    "2. Type at the BBC :",
    "<BREAK>",
    "*BASIC",
    "*FX 7,4",
    "*FX 8,4",
    "*FX 2,1"};
constexpr int kFirstTyped = 2;  // from this line on the user types the lines at the BBC

}  // namespace

frmBootstrap::frmBootstrap(Link& link, const char* name, const char* caption, QWidget* parent)
    : QDialog(parent),
      link_(link),
      pb_(new QProgressBar(this)),
      cmdGo_(new QPushButton(QStringLiteral("Go"), this)),
      cmdCancel_(new QPushButton(QStringLiteral("Cancel"), this)) {
  setObjectName(QString::fromLatin1(name));
  setWindowTitle(QString::fromLatin1(caption));
  setModal(true);
  pb_->setObjectName(QStringLiteral("pb"));
  pb_->setAccessibleName(QStringLiteral("Progress"));
  pb_->setRange(0, 100);
  pb_->setValue(0);
  cmdGo_->setObjectName(QStringLiteral("cmdGo"));
  cmdCancel_->setObjectName(QStringLiteral("cmdCancel"));
  Arrange();
  link_.AbortRequested = true;
  connect(cmdGo_, &QPushButton::clicked, this, [this] { cmdGo_Click(); });
  connect(cmdCancel_, &QPushButton::clicked, this, [this] { cmdCancel_Click(); });
}

// One label for each line of the instructions, then the progress bar and the buttons.
void frmBootstrap::Arrange() {
  auto* layout = new QVBoxLayout(this);
  for (int i = 0; i < static_cast<int>(kInstructions.size()); ++i) {
    auto* label = new QLabel(QString::fromLatin1(kInstructions[static_cast<std::size_t>(i)]), this);
    label->setObjectName(QStringLiteral("Label%1").arg(i + 1));
    label->setTextFormat(Qt::PlainText);
    if (i >= kFirstTyped) label->setIndent(24);
    layout->addWidget(label);
  }
  layout->addWidget(pb_);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(cmdGo_);
  buttons->addWidget(cmdCancel_);
  layout->addLayout(buttons);
}

void frmBootstrap::cmdGo_Click() {
  sending_ = true;
  cmdGo_->setEnabled(false);
  try {
    SendProgram(link_, [this](double percent) { pb_->setValue(static_cast<int>(percent)); });
  } catch (const HostError& error) {
    ShowBox(this, FromHost(error.what()), QStringLiteral("Sectorbox"), BoxIcon::kExclamation);
  }
  sending_ = false;
  done(QDialog::Accepted);
}

void frmBootstrap::cmdCancel_Click() {
  if (!sending_) done(QDialog::Rejected);
  link_.AbortRequested = true;
}

void frmBootstrap::reject() {
  cmdCancel_Click();
}

void frmBootstrap::closeEvent(QCloseEvent* event) {
  if (sending_) event->ignore();
  cmdCancel_Click();
}

}  // namespace sectorbox
