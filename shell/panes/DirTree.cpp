#include "shell/panes/DirTree.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QIcon>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

#include "disc/format/Format.h"
#include "shell/icons/Icons.h"
#include "shell/panes/PaneFocus.h"
#include "toolkit/Text.h"

namespace sectorbox {
namespace {

// All nodes share two icons: a disc may have thousands of directories.
const QIcon& NodeIcon(bool open) {
  static const QIcon kOpen(LoadIcon("open"));
  static const QIcon kClosed(LoadIcon("closed"));
  return open ? kOpen : kClosed;
}

}  // namespace

DirNode::DirNode(const std::string& text, std::int32_t tag) : Tag(tag) {
  SetText(text);
  QTreeWidgetItem::setIcon(0, NodeIcon(false));
  Qt::ItemFlags all =
      Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
  // The root can't be renamed, because no directory has an entry for it.
  if (tag != format::kRootSector) all |= Qt::ItemIsEditable;
  setFlags(all);
}

std::string DirNode::Text() const {
  return ToBbc(text(0));
}

void DirNode::SetText(const std::string& text) {
  QTreeWidgetItem::setText(0, FromBbc(text));
}

void DirNode::SetOpen(bool open) {
  if (open_ == open) return;
  open_ = open;
  QTreeWidgetItem::setIcon(0, NodeIcon(open));
}

void DirNode::SortChildren() {
  sortChildren(0, Qt::AscendingOrder);
}

bool DirNode::operator<(const QTreeWidgetItem& other) const {
  return text(0).compare(other.text(0), Qt::CaseInsensitive) < 0;
}

DirTree::DirTree(QWidget* parent) : QTreeWidget(parent) {
  setObjectName(QStringLiteral("tvwDB"));
  setAccessibleName(QStringLiteral("Directories"));
  setColumnCount(1);
  header()->hide();
  header()->setStretchLastSection(false);
  header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  setUniformRowHeights(true);
  setIconSize({16, 16});
  setEditTriggers(QAbstractItemView::NoEditTriggers);  // slowClick_ knows when
  setDragEnabled(true);
  setAcceptDrops(true);
  setDropIndicatorShown(false);
  ConnectNames();
  ConnectItems();
}

void DirTree::ConnectNames() {
  auto* editor = new NameEditor(this);
  connect(editor, &NameEditor::Edited, this, [this](const QModelIndex& index, const QString& name) {
    auto* node = static_cast<DirNode*>(itemFromIndex(index));
    if (node != nullptr) Q_EMIT NameEdited(node, name);
  });
  connect(editor, &NameEditor::DraggedOut, this, [this] { startDrag(Qt::CopyAction); });
  connect(&slowClick_, &SlowClick::Clicked, this, [this](const QModelIndex& index) {
    auto* node = static_cast<DirNode*>(itemFromIndex(index));
    if (node != nullptr) Q_EMIT NameEditWanted(node);
  });
  setItemDelegate(editor);
}

void DirTree::ConnectItems() {
  connect(this, &QTreeWidget::itemClicked, this,
          [this](QTreeWidgetItem* item) { Q_EMIT NodeClicked(static_cast<DirNode*>(item)); });
  connect(this, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
    if (item != nullptr && !quiet_) Q_EMIT NodeClicked(static_cast<DirNode*>(item));
  });
  connect(this, &QTreeWidget::itemExpanded, this,
          [this](QTreeWidgetItem* item) { Q_EMIT NodeToggled(static_cast<DirNode*>(item), true); });
  connect(this, &QTreeWidget::itemCollapsed, this, [this](QTreeWidgetItem* item) {
    Q_EMIT NodeToggled(static_cast<DirNode*>(item), false);
  });
}

void DirTree::Select(DirNode* node) {
  const bool before = quiet_;
  quiet_ = true;
  const int left = horizontalScrollBar()->value();
  setCurrentItem(node);
  quiet_ = before;
  horizontalScrollBar()->setValue(left);
  if (node != nullptr && isVisible()) ScrollTo(*node);
}

// Qt scrolls to a node only if it wasn't the current one before. It then scrolls sideways to the
// end of the column, where a short name isn't. This scrolls sideways no further than the name
// needs.
void DirTree::ScrollTo(DirNode& node) {
  QScrollBar& bar = *horizontalScrollBar();
  const int left = bar.value();
  scrollToItem(&node);
  bar.setValue(left);
  const QRect cell = visualItemRect(&node);
  const int end = cell.left() + sizeHintForIndex(indexFromItem(&node)).width();
  const int beyond = std::min(end - viewport()->width(), cell.left());
  if (cell.left() < 0) bar.setValue(bar.value() + cell.left());
  if (beyond > 0) bar.setValue(bar.value() + beyond);
}

void DirTree::EditName(DirNode& node) {
  slowClick_.Forget();
  if (IsEditing() || (node.flags() & Qt::ItemIsEditable) == 0) return;
  editItem(&node, 0);
  // The tree was painted without the focus before the editor took it.
  viewport()->update();
}

void DirTree::SetDropHighlight(DirNode* node) {
  if (highlight_ == node) return;
  highlight_ = node;
  viewport()->update();
}

void DirTree::startDrag(Qt::DropActions) {
  slowClick_.Forget();
  Q_EMIT DragWanted();
}

void DirTree::dragEnterEvent(QDragEnterEvent* event) {
  if (!event->mimeData()->hasUrls()) return;
  event->setDropAction(Qt::CopyAction);
  event->accept();
}

void DirTree::dragMoveEvent(QDragMoveEvent* event) {
  SetDropHighlight(static_cast<DirNode*>(itemAt(event->position().toPoint())));
  if (!event->mimeData()->hasUrls()) return;
  event->setDropAction(Qt::CopyAction);
  event->accept();
}

void DirTree::dragLeaveEvent(QDragLeaveEvent* event) {
  QTreeWidget::dragLeaveEvent(event);
  SetDropHighlight(nullptr);
}

void DirTree::dropEvent(QDropEvent* event) {
  event->setDropAction(Qt::CopyAction);
  event->accept();
  Q_EMIT Dropped(*event->mimeData());
  SetDropHighlight(nullptr);
}

// The right button opens the menu for the current directory. It selects nothing. The left button
// changes the current directory only when the user releases it. So a drag that begins on another
// node still takes the current directory.
void DirTree::mousePressEvent(QMouseEvent* event) {
  const QTreeWidgetItem* item = itemAt(event->position().toPoint());
  const bool plain = event->button() == Qt::LeftButton && event->modifiers() == Qt::NoModifier;
  const bool onName = item != nullptr && visualItemRect(item).contains(event->position().toPoint());
  const bool second = plain && onName && item == currentItem() && item->isSelected();
  slowClick_.Press(second ? currentIndex() : QModelIndex());
  if (event->button() == Qt::RightButton) {
    event->accept();
    Q_EMIT MenuWanted(event->globalPosition().toPoint());
    return;
  }
  // A press on the empty part of the pane leaves the current node marked.
  if (item == nullptr) {
    event->accept();
    return;
  }
  quiet_ = true;
  QTreeWidget::mousePressEvent(event);
  quiet_ = false;
}

void DirTree::mouseMoveEvent(QMouseEvent* event) {
  quiet_ = true;
  QTreeWidget::mouseMoveEvent(event);
  quiet_ = false;
}

void DirTree::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::RightButton) {
    event->accept();
    return;
  }
  QTreeWidget::mouseReleaseEvent(event);
  slowClick_.Release(indexAt(event->position().toPoint()));
}

void DirTree::mouseDoubleClickEvent(QMouseEvent* event) {
  slowClick_.Forget();
  QTreeWidget::mouseDoubleClickEvent(event);
}

// This is for the menu key of the keyboard. The mouse comes to mousePressEvent.
void DirTree::contextMenuEvent(QContextMenuEvent* event) {
  event->accept();
  if (event->reason() != QContextMenuEvent::Mouse) WantMenu();
}

void DirTree::WantMenu() {
  const QRect node = visualItemRect(currentItem()).intersected(viewport()->rect());
  Q_EMIT MenuWanted(viewport()->mapToGlobal(node.isEmpty() ? QPoint() : node.bottomLeft()));
}

// The column is as wide as its widest row, so that the user can scroll to the end of every row. It
// is at least as wide as the pane, so that the mark of a selected row reaches over the whole pane.
void DirTree::resizeEvent(QResizeEvent* event) {
  header()->setMinimumSectionSize(viewport()->width());
  QTreeWidget::resizeEvent(event);
}

void DirTree::drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                      const QModelIndex& index) const {
  QTreeWidget::drawRow(painter, option, index);
  if (hasFocus() && index == currentIndex()) {
    PaintFocusFrame(*painter, visualRect(index), option.palette, currentItem()->isSelected());
  }
  if (highlight_ == nullptr || indexFromItem(highlight_) != index) return;
  painter->setPen(QPen(palette().color(QPalette::Highlight), 2));
  painter->drawRect(visualRect(index).adjusted(1, 1, -1, -1));
}

void DirTree::initViewItemOption(QStyleOptionViewItem* option) const {
  QTreeWidget::initViewItemOption(option);
  PaintByFocus(*this, *option);
}

}  // namespace sectorbox
