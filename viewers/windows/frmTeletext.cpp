#include "viewers/windows/frmTeletext.h"

#include <QVBoxLayout>

#include "toolkit/Text.h"
#include "toolkit/WindowPlace.h"
#include "viewers/picture/Teletext.h"

namespace sectorbox {
namespace {

constexpr int kWidth = 520;
constexpr int kExtraHeight = 110;  // how much higher the window is than the rows of the page

}  // namespace

frmTeletext::frmTeletext(QWidget* parent, Disc& disc, const CurrentRow& row,
                         const TeletextFont& font)
    : QDialog(parent), disc_(disc), row_(row), font_(font) {
  setObjectName(QStringLiteral("frmTeletext"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(kPictureMargin, kPictureMargin, kPictureMargin, kPictureMargin);
  Picture1_ = new PictureBox(this);
  layout->addWidget(Picture1_, 0, Qt::AlignLeft | Qt::AlignTop);
  new PictureMenu(*this, *layout, disc_, *Picture1_, DefaultName);
  RestorePlace(*this, kTeletextPlace);
  Show_File();
  // Once more, now that the window has its size: all of it has to be within reach.
  RestorePlace(*this, kTeletextPlace);
  Timer1_.setObjectName(QStringLiteral("Timer1"));
  Timer1_.setParent(this);
  connect(&Timer1_, &QTimer::timeout, this, [this] { Timer1_Timer(); });
  Timer1_.start(kFlashMilliseconds);
}

void frmTeletext::Show_File() {
  if (Tag != 0) return;
  const ListRow* row = row_.CurrentItem();
  if (row == nullptr) {
    close();
    return;
  }
  setWindowTitle(QString::fromLatin1(kTeletextCaption) + FromBbc(row->Name()));
  DefaultName = row->Name();
  // The page of a directory is empty.
  const std::uint32_t length = row->IsDirectory() ? 0 : row->Length();
  const auto codes = ReadTeletextPage(disc_, row->StartSector(), length);
  const int height = static_cast<int>(codes.size()) / kTeletextColumns * TeletextFont::kCellHeight;
  Picture1_->Show(DrawTeletext(codes, font_, FlashPhase));
  // A page without rows has a picture of some black rows. The box is as high as its border alone.
  Picture1_->setFixedHeight(PictureBox::HeightFor(height));
  setFixedSize(kWidth, height + kExtraHeight);
}

void frmTeletext::Timer1_Timer() {
  FlashPhase = static_cast<std::int16_t>(1 - FlashPhase);
  Show_File();
}

void frmTeletext::done(int result) {
  Timer1_.stop();
  SavePlace(*this, kTeletextPlace);
  QDialog::done(result);
}

}  // namespace sectorbox
