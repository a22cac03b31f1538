#include "shell/dialogs/frmBoot.h"

#include <QVBoxLayout>

#include "shell/dialogs/DialogButtons.h"
#include "toolkit/Captions.h"

namespace sectorbox {
namespace {

constexpr std::array<const char*, 4> kNames = {"optOff", "optLoad", "optRun", "optExec"};
constexpr std::array<const char*, 4> kCaptions = {"Off", "Load", "Run", "Exec"};
constexpr std::uint8_t kOptionBits = 3;

}  // namespace

frmBoot::frmBoot(QWidget* parent, std::uint8_t bootByte) : QDialog(parent) {
  setObjectName(QStringLiteral("frmBoot"));
  setWindowTitle(QStringLiteral("Set Boot Attributes"));
  auto* layout = new QVBoxLayout(this);
  for (std::size_t i = 0; i < options_.size(); ++i) {
    options_[i] = new QRadioButton(QString::fromLatin1(kCaptions[i]), this);
    options_[i]->setObjectName(QString::fromLatin1(kNames[i]));
    layout->addWidget(options_[i]);
  }
  const std::size_t now = bootByte & kOptionBits;
  options_[now]->setChecked(true);
  options_[now]->setFocus();
  const OKCancel buttons(this);
  connect(buttons.OK, &QPushButton::clicked, this, [this] { accept(); });
  connect(buttons.Cancel, &QPushButton::clicked, this, [this] { reject(); });
  layout->addSpacing(6);
  layout->addWidget(buttons.Box);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  MakeRoomForCaption(*this);
}

std::uint8_t frmBoot::Option() const {
  std::uint8_t option = 0;
  while (!options_.at(option)->isChecked()) ++option;
  return option;
}

}  // namespace sectorbox
