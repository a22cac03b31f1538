#include "shell/dialogs/frmBoot.h"

#include <QVBoxLayout>

#include "disc/change/Mutation.h"
#include "shell/dialogs/DialogButtons.h"
#include "shell/program/frmMain.h"
#include "toolkit/Captions.h"

namespace sectorbox {
namespace {

constexpr std::array<const char*, 4> kNames = {"optOff", "optLoad", "optRun", "optExec"};
constexpr std::array<const char*, 4> kCaptions = {"Off", "Load", "Run", "Exec"};
constexpr std::uint8_t kOptionBits = 3;

}  // namespace

frmBoot::frmBoot(QWidget* parent, Disc& disc) : QDialog(parent), disc_(disc) {
  setObjectName(QStringLiteral("frmBoot"));
  setWindowTitle(QStringLiteral("Set Boot Attributes"));
  auto* layout = new QVBoxLayout(this);
  for (std::size_t i = 0; i < options_.size(); ++i) {
    options_[i] = new QRadioButton(QString::fromLatin1(kCaptions[i]), this);
    options_[i]->setObjectName(QString::fromLatin1(kNames[i]));
    layout->addWidget(options_[i]);
  }
  const std::size_t now = disc_.TheDisc.Fetch(format::kMapBootOption) & kOptionBits;
  options_[now]->setChecked(true);
  options_[now]->setFocus();
  const OKCancel buttons(this);
  connect(buttons.OK, &QPushButton::clicked, this,
          [this] { frmMain::MainWindow->Guarded([this] { cmdOK_Click(); }); });
  connect(buttons.Cancel, &QPushButton::clicked, this, [this] { reject(); });
  layout->addSpacing(6);
  layout->addWidget(buttons.Box);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  MakeRoomForCaption(*this);
}

void frmBoot::cmdOK_Click() {
  for (std::size_t i = 0; i < options_.size(); ++i) {
    if (options_[i]->isChecked()) SetBootOption(disc_, static_cast<std::uint8_t>(i));
  }
  accept();
}

}  // namespace sectorbox
