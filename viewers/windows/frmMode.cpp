#include "viewers/windows/frmMode.h"

#include <QApplication>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QMenu>
#include <QVBoxLayout>
#include <algorithm>

#include "toolkit/Text.h"
#include "toolkit/WindowPlace.h"
#include "viewers/picture/Colours.h"

namespace sectorbox {
namespace {

constexpr int kFlashingMode = 2;
constexpr QSize kWindowSize{680, 662};
constexpr int kModeWidth = 58;   // of a button with "Mode 0"
constexpr int kModeMargins = 6;  // the least, on both sides together

// These entries have no action: the user changes the palette with its buttons.
constexpr std::array<const char*, 8> kColourEntries = {"Black", "Red",     "Green", "Yellow",
                                                       "Blue",  "Magenta", "Cyan",  "White"};

}  // namespace

frmMode::frmMode(Disc& disc, const CurrentRow& row) : disc_(disc), row_(row) {
  setObjectName(QStringLiteral("frmMode"));
  setAttribute(Qt::WA_DeleteOnClose);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(kPictureMargin, kPictureMargin, kPictureMargin, kPictureMargin);
  Picture1_ = new PictureBox(this);
  Picture1_->Show(Picture(kScreenWidth, kScreenHeight, kBlack));
  layout->addWidget(Picture1_, 0, Qt::AlignLeft | Qt::AlignTop);
  layout->addStretch();
  layout->addLayout(MakeControls());
  layout->addStretch();
  MakeMenus(*layout);
  Timer1_.setObjectName(QStringLiteral("Timer1"));
  Timer1_.setParent(this);
  Timer1_.setInterval(kFlashMilliseconds);
  connect(&Timer1_, &QTimer::timeout, this, [this] { Timer1_Timer(); });
  // In a large font the buttons need more room than the picture.
  setFixedSize(kWindowSize.expandedTo(layout->totalMinimumSize()));
  RestorePlace(*this, kModePlace);
}

QLayout* frmMode::MakeControls() {
  QWidget* frame = MakePaletteFrame();
  QLayout* modes = MakeModeButtons();
  // The frame has a title above its buttons. These buttons get the same room above them, so that
  // all buttons stand on one line.
  const QMargins inFrame = frame->contentsMargins();
  modes->setContentsMargins(0, inFrame.top(), 0, inFrame.bottom());
  auto* controls = new QHBoxLayout;
  controls->addLayout(modes);
  controls->addStretch();
  controls->addWidget(frame);
  return controls;
}

QWidget* frmMode::MakePaletteFrame() {
  auto* frame = new QGroupBox(QStringLiteral("Colour Palette"), this);
  frame->setObjectName(QStringLiteral("Frame1"));
  auto* buttons = new QHBoxLayout(frame);
  for (std::size_t i = 0; i < cmdPalet_.size(); ++i) {
    cmdPalet_[i] = new ColourButton(frame, QStringLiteral("cmdPalet%1").arg(i));
    cmdPalet_[i]->SetSpokenName(QStringLiteral("Colour %1").arg(i));
    connect(cmdPalet_[i], &QPushButton::clicked, this,
            [this, i] { cmdPalet_Click(static_cast<int>(i)); });
    buttons->addWidget(cmdPalet_[i]);
  }
  auto* reset = new QPushButton(QStringLiteral("Reset"), frame);
  reset->setObjectName(QStringLiteral("cmdReset"));
  connect(reset, &QPushButton::clicked, this, [this] { cmdReset_Click(); });
  buttons->addWidget(reset);
  return frame;
}

QLayout* frmMode::MakeModeButtons() {
  auto* modes = new QHBoxLayout;
  modes->setSpacing(4);
  for (const ScreenMode& mode : kScreenModes) {
    auto* button = new QPushButton(QStringLiteral("Mode %1").arg(mode.Mode), this);
    button->setObjectName(QStringLiteral("cmdMode%1").arg(mode.Mode));
    const int text = button->fontMetrics().horizontalAdvance(button->text());
    button->setMinimumWidth(text + kModeMargins);
    button->setMaximumWidth(std::max(kModeWidth, text + 2 * kModeMargins));
    connect(button, &QPushButton::clicked, this, [this, number = mode.Mode] {
      Tag = number;
      Show_File();
    });
    modes->addWidget(button);
  }
  return modes;
}

void frmMode::MakeMenus(QLayout& layout) {
  const auto* menu = new PictureMenu(*this, layout, disc_, *Picture1_, DefaultName);
  QMenu* colours = menu->Bar(QStringLiteral("mnuColour"), QStringLiteral("Colours"));
  for (const char* name : kColourEntries) {
    const QString caption = QString::fromLatin1(name);
    colours->addAction(caption)->setObjectName(QStringLiteral("mnuColour") + caption);
  }
}

void frmMode::Show_File() {
  Picture1_->Show(Picture(kScreenWidth, kScreenHeight, kBlack));
  Timer1_.stop();
  if (Tag == kFlashingMode) {
    FlashOn = false;
    Timer1_.start();
  }
  Render();
}

void frmMode::Render() {
  const ScreenMode* mode = FindScreenMode(Tag);
  if (mode == nullptr) return;
  const ListRow* row = row_.CurrentItem();
  if (row == nullptr) {
    close();
    return;
  }
  setWindowTitle(QString::fromLatin1(mode->Caption) + FromBbc(row->Name()));
  DefaultName = row->Name();
  const CurrentColours colours = FindCurrentColours(*mode, palette_, FlashOn);
  SetPaletteButtons(*mode, colours);
  // The screen of a directory is empty.
  const std::uint32_t length = row->IsDirectory() ? 0 : row->Length();
  const auto bytes = ReadScreen(disc_, *mode, row->StartSector(), length);
  Picture1_->Show(DrawScreen(*mode, bytes, colours));
}

void frmMode::SetPaletteButtons(const ScreenMode& mode, const CurrentColours& colours) {
  for (std::size_t i = 0; i < cmdPalet_.size(); ++i) {
    const bool used = i < static_cast<std::size_t>(mode.BaseColours);
    cmdPalet_[i]->setEnabled(used);
    if (used) {
      cmdPalet_[i]->SetBackColour(colours[i]);
    } else {
      cmdPalet_[i]->ClearBackColour();
    }
  }
}

void frmMode::cmdPalet_Click(int index) {
  frmPalette dialog(this);
  dialog.exec();
  const ScreenMode* mode = FindScreenMode(Tag);
  if (!dialog.SelectedColour || mode == nullptr) return;
  palette_.Set(*mode, index, *dialog.SelectedColour);
  Show_File();
}

void frmMode::cmdReset_Click() {
  if (const ScreenMode* mode = FindScreenMode(Tag)) palette_.Reset(*mode);
  Show_File();
}

// This draws directly, since Show_File would begin the flashing anew.
void frmMode::Timer1_Timer() {
  FlashOn = !FlashOn;
  // If there is no row, Render closes the window. That would also close a dialog that still waits
  // for the user.
  if (row_.CurrentItem() == nullptr && QApplication::activeModalWidget() != nullptr) return;
  Render();
}

void frmMode::closeEvent(QCloseEvent* event) {
  Timer1_.stop();
  SavePlace(*this, kModePlace);
  QWidget::closeEvent(event);
}

}  // namespace sectorbox
