#include "viewers/windows/frmPicture.h"

#include <QLayout>
#include <QMenuBar>
#include <QPainter>
#include <QPrinter>
#include <QStyle>
#include <QStyleOptionFrame>
#include <algorithm>
#include <utility>

#include "disc/exchange/HostExchange.h"
#include "disc/store/OpenDisc.h"
#include "toolkit/FileDialogs.h"
#include "toolkit/Printing.h"
#include "viewers/picture/PictureFile.h"

namespace sectorbox {
namespace {

constexpr int kBorder = 2;
constexpr int kPixelsPerInch = 96;

// The image uses the picture's own pixels and no copy, so the picture must outlive it.
QImage ImageOf(const Picture& picture) {
  const qsizetype bytesPerLine = qsizetype{picture.Width} * qsizetype{sizeof(Colour)};
  return {reinterpret_cast<const uchar*>(picture.Pixels.data()), picture.Width, picture.Height,
          bytesPerLine, QImage::Format_RGB32};
}

}  // namespace

PictureBox::PictureBox(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("Picture1"));
  setAccessibleName(QStringLiteral("Picture"));
}

void PictureBox::Show(Picture picture) {
  picture_ = std::move(picture);
  setFixedSize(picture_.Width + 2 * kBorder, HeightFor(picture_.Height));
  update();
}

int PictureBox::HeightFor(int rows) {
  return rows + 2 * kBorder;
}

void PictureBox::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QStyleOptionFrame frame;
  frame.initFrom(this);
  frame.state |= QStyle::State_Sunken;
  frame.lineWidth = 1;
  style()->drawPrimitive(QStyle::PE_Frame, &frame, &painter, this);
  // From here on the painter counts pixels of the whole screen. If the scale isn't a whole number,
  // the box may begin inside a pixel. The scale comes from the painter's own transform, since the
  // painter's device doesn't know it when the box is rendered elsewhere.
  const QTransform toScreen = painter.deviceTransform();
  painter.setWorldTransform(toScreen.inverted());
  const int square = std::max(1, static_cast<int>(toScreen.m11()));
  const QSize size(picture_.Width * square, picture_.Height * square);
  const QPointF middle = toScreen.map(QRectF(rect()).center());
  const QPoint corner = (middle - QPointF(size.width(), size.height()) / 2).toPoint();
  painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
  painter.drawImage(QRect(corner, size), ImageOf(picture_));
}

PictureMenu::PictureMenu(QWidget& window, QLayout& layout, const Disc& disc, const PictureBox& box,
                         const std::string& defaultName)
    : QObject(&window),
      window_(window),
      disc_(disc),
      box_(box),
      defaultName_(defaultName),
      bar_(new QMenuBar(&window)) {
  layout.setMenuBar(bar_);
  QMenu* file = Bar(QStringLiteral("mnuFile"), QStringLiteral("&File"));
  const auto add = [this, file](const char* name, const char* caption, auto handler) {
    QAction* action = file->addAction(QString::fromLatin1(caption));
    action->setObjectName(QString::fromLatin1(name));
    connect(action, &QAction::triggered, this, handler);
  };
  add("mnuFileSave", "&Save File...", [this] { mnuFileSave_Click(); });
  add("mnuFilePrint", "&Print File", [this] { mnuFilePrint_Click(); });
  add("mnuFileClose", "&Close", [this] { window_.close(); });
}

QMenu* PictureMenu::Bar(const QString& name, const QString& caption) const {
  QMenu* menu = bar_->addMenu(caption);
  menu->setObjectName(name);
  return menu;
}

void PictureMenu::mnuFileSave_Click() {
  const std::string path =
      AskSaveFile(&window_, {"Save File As", "Save File (*.BMP)|*.bmp|All Files (*.*)|*.*",
                             AdfsToHostName(defaultName_) + ".bmp"});
  if (path.empty()) return;
  RefuseOpenDisc(disc_, path);
  SaveBmp(box_.Shown(), path);
}

void PictureMenu::mnuFilePrint_Click() {
  QPrinter printer;
  Q_EMIT AboutToPrint(printer);
  if (!PrinterOrTellTheUser(window_, printer)) return;
  if (!PrintPicture(box_.Shown(), printer)) TellThatThereIsNoPrinter(window_);
}

bool PrintPicture(const Picture& picture, QPrinter& printer) {
  printer.setResolution(kPixelsPerInch);
  printer.setFullPage(false);
  QPainter page;
  if (!page.begin(&printer)) return false;
  page.drawImage(QPoint(0, 0), ImageOf(picture));
  return page.end();
}

}  // namespace sectorbox
