#include "shell/panes/PaneLayout.h"

#include <QMouseEvent>

#include "toolkit/Twips.h"

namespace sectorbox {
namespace {

// All in twips.
constexpr double kLeastPane = 3000;   // what the layout leaves to each side
constexpr double kDragMargin = 500;   // how near to an edge the bar can be dragged
constexpr double kPaneTop = 420;      // below the toolbar
constexpr double kListGap = 40;       // between the tree and the list
constexpr double kListMargins = 140;  // the gap and what stays free at the right
constexpr double kStripWidth = 90;
constexpr double kBarShortfall = 20;

}  // namespace

SplitterStrip::SplitterStrip(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("imgSplitter"));
  setCursor(Qt::SplitHCursor);
}

void SplitterStrip::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) Q_EMIT Pressed();
}

void SplitterStrip::mouseMoveEvent(QMouseEvent* event) {
  Q_EMIT Moved(event->position().x() * kTwipsPerPixel);
}

void SplitterStrip::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) Q_EMIT Released();
}

PaneLayout::PaneLayout(QWidget* parent)
    : QWidget(parent),
      tbToolBar_(new QToolBar(this)),
      tvwDB_(new DirTree(this)),
      lvwDB_(new FileList(this)),
      picSplitter_(new QFrame(this)),
      imgSplitter_(new SplitterStrip(this)),
      splitterLeft_(kLeastPane) {
  tbToolBar_->setObjectName(QStringLiteral("tbToolBar"));
  tbToolBar_->setIconSize({18, 18});
  picSplitter_->setObjectName(QStringLiteral("picSplitter"));
  picSplitter_->setAutoFillBackground(true);
  picSplitter_->setBackgroundRole(QPalette::Dark);
  picSplitter_->hide();
  connect(imgSplitter_, &SplitterStrip::Pressed, this, &PaneLayout::StartMoving);
  connect(imgSplitter_, &SplitterStrip::Moved, this, &PaneLayout::MoveTo);
  connect(imgSplitter_, &SplitterStrip::Released, this, &PaneLayout::StopMoving);
  setTabOrder(tvwDB_, lvwDB_);
}

double PaneLayout::WindowWidth() const {
  return TwipsFromPixels(window()->width());
}

void PaneLayout::resizeEvent(QResizeEvent*) {
  Form_Resize();
}

void PaneLayout::Form_Resize() {
  double x = splitterLeft_;
  SizeControls(x);
}

void PaneLayout::SizeControls(double& x) {
  if (x < kLeastPane) x = kLeastPane;
  if (x > WindowWidth() - kLeastPane) x = WindowWidth() - kLeastPane;
  splitterLeft_ = x;
  const int top = PixelsFromTwips(kPaneTop);
  const int height = std::max(0, this->height() - top);
  const int treeWidth = std::max(0, PixelsFromTwips(x));
  tbToolBar_->setGeometry(0, 0, width(), top);
  tvwDB_->setGeometry(0, top, treeWidth, height);
  lvwDB_->setGeometry(PixelsFromTwips(x + kListGap), top,
                      std::max(0, PixelsFromTwips(WindowWidth() - (x + kListMargins))), height);
  imgSplitter_->setGeometry(PixelsFromTwips(x), top, PixelsFromTwips(kStripWidth), height);
  imgSplitter_->raise();
}

std::optional<double> PaneLayout::DraggedSplitter() const {
  return splitterDragged_ ? std::optional(splitterLeft_) : std::nullopt;
}

void PaneLayout::SetDraggedSplitter(double x) {
  SizeControls(x);
  splitterDragged_ = true;
}

void PaneLayout::StartMoving() {
  barLeft_ = splitterLeft_;
  picSplitter_->setGeometry(imgSplitter_->x(), imgSplitter_->y(), imgSplitter_->width() / 2,
                            imgSplitter_->height() - PixelsFromTwips(kBarShortfall));
  picSplitter_->raise();
  picSplitter_->show();
  SplitterMoving = true;
}

// The user can drag the bar nearer to the edges than the layout allows. When the user releases it
// there, the border goes back to the layout's limit.
void PaneLayout::MoveTo(double pointerX) {
  if (!SplitterMoving) return;
  const double wanted = splitterLeft_ + pointerX;
  if (wanted < kDragMargin) {
    barLeft_ = kDragMargin;
  } else if (wanted <= WindowWidth() - kDragMargin) {
    barLeft_ = wanted;
  } else {
    barLeft_ = WindowWidth() - kDragMargin;
  }
  picSplitter_->move(PixelsFromTwips(barLeft_), picSplitter_->y());
}

void PaneLayout::StopMoving() {
  if (!SplitterMoving) return;
  SetDraggedSplitter(barLeft_);
  picSplitter_->hide();
  SplitterMoving = false;
}

}  // namespace sectorbox
