#include "shell/panes/FileList.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>
#include <algorithm>
#include <utility>

#include "shell/panes/PaneFocus.h"
#include "toolkit/Twips.h"

namespace sectorbox {
namespace {

constexpr int kSmallIcon = 16;
constexpr int kLargeIcon = 32;
constexpr int kCellMargin = 4;
constexpr int kDropFrame = 2;
constexpr int kSortMark = 12;
constexpr double kLeastColumn = 240;     // twips
constexpr double kWidestColumn = 30000;  // twips

// The cells are as wide as the longest name in capitals, so that the icons stand in columns.
QSize GridOf(ListLook look, const QFontMetrics& metrics) {
  const int name = metrics.horizontalAdvance(QStringLiteral("MMMMMMMMMM"));
  const int line = metrics.height() + 6;
  if (look == ListLook::kLargeIcons) return {name + 8, kLargeIcon + line + 10};
  if (look == ListLook::kSmallIcons) return {kSmallIcon + name + 12, std::max(kSmallIcon, line)};
  return {};
}

// Paints a whole row in the report mode, and Qt's own item in the other modes.
class RowPainter : public NameEditor {
 public:
  explicit RowPainter(FileList* list) : NameEditor(list), list_(*list) {}

  void paint(QPainter* painter, const QStyleOptionViewItem& given,
             const QModelIndex& index) const override {
    QStyleOptionViewItem option = given;
    option.state &= ~QStyle::State_HasFocus;  // the frame comes below, around all cells
    const bool report = list_.Mode() == ListLook::kReport;
    if (report) option.rect = list_.CellRect(given.rect, kColName);
    NameEditor::paint(painter, option, index);
    if (report) {
      for (int column = kColAttr; column < kColumns; ++column)
        PaintCell(painter, given, index, column);
    }
    if ((given.state & QStyle::State_HasFocus) == 0) return;
    PaintFocusFrame(*painter, given.rect, given.palette,
                    (given.state & QStyle::State_Selected) != 0);
  }

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    const QSize plain = NameEditor::sizeHint(option, index);
    if (list_.Mode() != ListLook::kReport) return plain;
    return {list_.Header()->length(), plain.height() + 2};
  }

  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& given,
                            const QModelIndex& index) const override {
    QStyleOptionViewItem option = given;
    if (list_.Mode() == ListLook::kReport) option.rect = list_.CellRect(given.rect, kColName);
    NameEditor::updateEditorGeometry(editor, option, index);
  }

 private:
  void PaintCell(QPainter* painter, const QStyleOptionViewItem& given, const QModelIndex& index,
                 int column) const {
    QRect cell = list_.CellRect(given.rect, column);
    const bool selected = (given.state & QStyle::State_Selected) != 0;
    const bool active = (given.state & QStyle::State_Active) != 0;
    const auto group = active ? QPalette::Active : QPalette::Inactive;
    if (selected) painter->fillRect(cell, given.palette.brush(group, QPalette::Highlight));
    painter->setPen(
        given.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text));
    cell.adjust(kCellMargin, 0, -1, 0);
    const QString text = index.siblingAtColumn(column).data().toString();
    painter->drawText(cell, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                      given.fontMetrics.elidedText(text, Qt::ElideRight, cell.width()));
  }

  FileList& list_;
};

}  // namespace

FileList::FileList(QWidget* parent)
    : QListView(parent), model_(new FileListModel(this)), header_(nullptr) {
  setObjectName(QStringLiteral("lvwDB"));
  setAccessibleName(QStringLiteral("Files"));
  setModel(model_);
  MakeHeader();
  auto* painter = new RowPainter(this);
  connect(painter, &NameEditor::Edited, this,
          [this](const QModelIndex& index, const QString& name) {
            Q_EMIT NameEdited(index.row(), name);
          });
  connect(painter, &NameEditor::DraggedOut, this, [this] { startDrag(Qt::CopyAction); });
  connect(&slowClick_, &SlowClick::Clicked, this,
          [this](const QModelIndex& index) { Q_EMIT NameEditWanted(index.row()); });
  setItemDelegate(painter);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);  // slowClick_ knows when
  setDragEnabled(true);
  setAcceptDrops(true);
  setDropIndicatorShown(false);
  setUniformItemSizes(false);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  SetMode(ListLook::kReport);
}

void FileList::MakeHeader() {
  header_ = new QHeaderView(Qt::Horizontal, this);
  header_->setObjectName(QStringLiteral("lvwDBHeader"));
  header_->setModel(model_);
  header_->setSectionsClickable(true);
  header_->setSortIndicatorShown(true);
  header_->setHighlightSections(false);
  header_->setMinimumSectionSize(16);
  connect(header_, &QHeaderView::sectionClicked, this, &FileList::HeadingClicked);
  connect(header_, &QHeaderView::sectionResized, this, [this](int column) {
    if (!sizing_) dragged_[static_cast<std::size_t>(column)] = true;
    scheduleDelayedItemsLayout();
  });
  connect(horizontalScrollBar(), &QScrollBar::valueChanged, header_, &QHeaderView::setOffset);
}

void FileList::SetMode(ListLook mode) {
  mode_ = mode;
  const bool large = mode == ListLook::kLargeIcons;
  model_->SetLargeIcons(large);
  model_->SetSpeaksColumns(mode == ListLook::kReport);
  setViewMode(large ? QListView::IconMode : QListView::ListMode);
  setMovement(QListView::Static);
  setResizeMode(QListView::Adjust);
  setFlow(mode == ListLook::kReport || mode == ListLook::kList ? QListView::TopToBottom
                                                               : QListView::LeftToRight);
  setWrapping(mode != ListLook::kReport);
  setIconSize(large ? QSize(kLargeIcon, kLargeIcon) : QSize(kSmallIcon, kSmallIcon));
  setGridSize(GridOf(mode, fontMetrics()));
  // Qt's IconMode turns these off. This turns them on again.
  setDragEnabled(true);
  setAcceptDrops(true);
  viewport()->setAcceptDrops(true);
  setSelectionRectVisible(true);
  header_->setVisible(mode == ListLook::kReport);
  PlaceHeader();
  scheduleDelayedItemsLayout();
}

void FileList::PlaceHeader() {
  const int height = mode_ == ListLook::kReport ? header_->sizeHint().height() : 0;
  setViewportMargins(0, height, 0, 0);
  const QRect area = viewport()->geometry();
  header_->setGeometry(area.left(), area.top() - height, area.width(), height);
}

void FileList::updateGeometries() {
  PlaceHeader();
  QListView::updateGeometries();
}

void FileList::SetColumnWidth(int column, double twips) {
  if (!dragged_[static_cast<std::size_t>(column)]) ResizeColumn(column, twips);
}

void FileList::SetDraggedWidth(int column, double twips) {
  ResizeColumn(column, std::clamp(twips, kLeastColumn, kWidestColumn));
  dragged_[static_cast<std::size_t>(column)] = true;
}

std::optional<double> FileList::DraggedWidth(int column) const {
  if (!dragged_[static_cast<std::size_t>(column)]) return std::nullopt;
  return TwipsFromPixels(header_->sectionSize(column));
}

void FileList::ResizeColumn(int column, double twips) {
  sizing_ = true;
  header_->resizeSection(column, PixelsFromTwips(twips));
  sizing_ = false;
}

void FileList::FitColumns() {
  sizing_ = true;
  for (int column = 0; column < kColumns; ++column) {
    if (dragged_[static_cast<std::size_t>(column)]) continue;
    const QString heading = model_->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    int widest = 0;
    for (int row = 0; row < model_->rowCount(); ++row) {
      const QString text = model_->index(row, column).data().toString();
      widest = std::max(widest, fontMetrics().horizontalAdvance(text));
    }
    if (column == kColName) widest += kSmallIcon + 2 * kCellMargin;
    int captionWidth = header_->fontMetrics().horizontalAdvance(heading);
    if (column == model_->SortColumn()) captionWidth += kSortMark;
    widest = std::max(widest, captionWidth) + 2 * kCellMargin;
    if (widest > header_->sectionSize(column)) header_->resizeSection(column, widest);
  }
  sizing_ = false;
}

QRect FileList::CellRect(const QRect& rowRect, int column) const {
  return {rowRect.left() + header_->sectionPosition(column), rowRect.top(),
          header_->sectionSize(column), rowRect.height()};
}

bool FileList::IsSelected(int row) const {
  return selectionModel()->isRowSelected(row, {}) ||
         selectionModel()->isSelected(model_->index(row, kColName));
}

void FileList::SetSelected(int row, bool selected) {
  selectionModel()->select(model_->index(row, kColName),
                           selected ? QItemSelectionModel::Select : QItemSelectionModel::Deselect);
}

void FileList::EditName(int row) {
  slowClick_.Forget();
  if (IsEditing()) return;
  const QModelIndex index = model_->index(row, kColName);
  scrollTo(index);
  edit(index);
  // The list was painted without the focus before the editor took it.
  viewport()->update();
}

void FileList::startDrag(Qt::DropActions) {
  pressed_ = QPersistentModelIndex();
  slowClick_.Forget();
  Q_EMIT DragWanted();
}

// The pane takes files at every point: a drop goes to the directory that is shown.
void FileList::dragEnterEvent(QDragEnterEvent* event) {
  if (!event->mimeData()->hasUrls()) return;
  SetDragged(true);
  event->setDropAction(Qt::CopyAction);
  event->accept();
}

void FileList::dragMoveEvent(QDragMoveEvent* event) {
  if (!event->mimeData()->hasUrls()) return;
  event->setDropAction(Qt::CopyAction);
  event->accept();
}

void FileList::dragLeaveEvent(QDragLeaveEvent* event) {
  SetDragged(false);
  QListView::dragLeaveEvent(event);
}

void FileList::SetDragged(bool dragged) {
  draggedOver_ = dragged;
  viewport()->update();
}

void FileList::dropEvent(QDropEvent* event) {
  SetDragged(false);
  event->setDropAction(Qt::CopyAction);
  event->accept();
  Q_EMIT Dropped(*event->mimeData());
}

// The right button opens the menu for the current row. It selects nothing.
void FileList::mousePressEvent(QMouseEvent* event) {
  const QModelIndex index = indexAt(event->position().toPoint());
  const bool plain = event->button() == Qt::LeftButton && event->modifiers() == Qt::NoModifier;
  const bool onName = index.isValid() && IsOnName(index, event->position().toPoint());
  slowClick_.Press(plain && onName && IsSelectedAlone(index) ? index : QModelIndex());
  if (event->button() == Qt::RightButton) {
    event->accept();
    Q_EMIT MenuWanted(event->globalPosition().toPoint());
    return;
  }
  pressed_ = plain ? index : QModelIndex();
  quiet_ = true;
  QListView::mousePressEvent(event);
  quiet_ = false;
  if (event->button() == Qt::LeftButton && index.isValid()) Q_EMIT RowClicked(index.row());
}

bool FileList::IsOnName(const QModelIndex& row, const QPoint& at) const {
  const QRect rect = visualRect(row);
  return (mode_ == ListLook::kReport ? CellRect(rect, kColName) : rect).contains(at);
}

bool FileList::IsSelectedAlone(const QModelIndex& row) const {
  const QModelIndexList selected = selectedIndexes();
  return selected.size() == 1 && selected.front() == row;
}

// A press on one of several selected rows leaves all of them selected, since it may begin a drag of
// them. If it ends as a click, that row alone stays selected.
void FileList::mouseReleaseEvent(QMouseEvent* event) {
  // Without this, Qt clears the selection when the right button is released beside all rows.
  if (event->button() == Qt::RightButton) {
    event->accept();
    return;
  }
  QListView::mouseReleaseEvent(event);
  const QModelIndex under = indexAt(event->position().toPoint());
  const QModelIndex pressed = std::exchange(pressed_, QPersistentModelIndex());
  const bool isClick = pressed.isValid() && pressed == under;
  if (isClick && event->modifiers() == Qt::NoModifier && !IsSelectedAlone(pressed)) {
    selectionModel()->select(pressed, QItemSelectionModel::ClearAndSelect);
  }
  slowClick_.Release(under);
}

void FileList::mouseDoubleClickEvent(QMouseEvent* event) {
  slowClick_.Forget();
  quiet_ = true;
  QListView::mouseDoubleClickEvent(event);
  quiet_ = false;
  const QModelIndex index = indexAt(event->position().toPoint());
  if (event->button() == Qt::LeftButton && index.isValid()) Q_EMIT RowDoubleClicked(index.row());
}

// This is for the menu key of the keyboard. The mouse comes to mousePressEvent.
void FileList::contextMenuEvent(QContextMenuEvent* event) {
  event->accept();
  if (event->reason() != QContextMenuEvent::Mouse) WantMenu();
}

void FileList::WantMenu() {
  const QRect row = visualRect(currentIndex()).intersected(viewport()->rect());
  Q_EMIT MenuWanted(viewport()->mapToGlobal(row.isEmpty() ? QPoint() : row.bottomLeft()));
}

// A view that gets the focus without a current row makes its first row current. The user hasn't
// chosen that row, so nothing is emitted.
void FileList::focusInEvent(QFocusEvent* event) {
  quiet_ = true;
  QListView::focusInEvent(event);
  quiet_ = false;
}

void FileList::initViewItemOption(QStyleOptionViewItem* option) const {
  QListView::initViewItemOption(option);
  PaintByFocus(*this, *option);
}

void FileList::paintEvent(QPaintEvent* event) {
  QListView::paintEvent(event);
  QPainter painter(viewport());
  const QRect area = viewport()->rect();
  if (model_->rowCount() == 0) {
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(area, Qt::AlignCenter | Qt::TextWordWrap, QStringLiteral("Drop files here"));
  }
  if (!draggedOver_) return;
  painter.setPen(QPen(palette().color(QPalette::Active, QPalette::Highlight), kDropFrame));
  painter.drawRect(area.adjusted(1, 1, -1, -1));
}

int FileList::ColumnAt(int x) const {
  return mode_ == ListLook::kReport ? header_->logicalIndexAt(x) : kColName;
}

// Qt would show the tip of the row's first column everywhere.
bool FileList::viewportEvent(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QListView::viewportEvent(event);
  const auto& help = static_cast<QHelpEvent&>(*event);
  const QModelIndex row = indexAt(help.pos());
  const int column = ColumnAt(help.pos().x());
  const QString tip = row.isValid() && column >= 0
                          ? row.siblingAtColumn(column).data(Qt::ToolTipRole).toString()
                          : QString();
  if (tip.isEmpty()) {
    QToolTip::hideText();
    event->ignore();
  } else {
    const QRect cell = CellRect(visualRect(row), column);
    QToolTip::showText(help.globalPos(), tip, viewport(), cell);
  }
  return true;
}

// When the user moves with the keys, the row becomes current, as after a click.
void FileList::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QListView::currentChanged(current, previous);
  if (!quiet_ && current.isValid()) Q_EMIT RowClicked(current.row());
}

}  // namespace sectorbox
