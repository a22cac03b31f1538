#pragma once

#include <QMimeData>
#include <QTreeWidget>
#include <cstdint>
#include <string>

#include "shell/panes/NameEditor.h"
#include "shell/panes/SlowClick.h"

namespace sectorbox {

// A node of the tree: its text is the directory's name, its Tag the directory's start sector.
class DirNode : public QTreeWidgetItem {
 public:
  DirNode(const std::string& text, std::int32_t tag);

  std::int32_t Tag = 0;

  [[nodiscard]] std::string Text() const;
  void SetText(const std::string& text);
  void SetOpen(bool open);  // the image: "open" or "closed"
  bool IsOpen() const { return open_; }
  DirNode* Parent() const { return static_cast<DirNode*>(parent()); }
  DirNode* Child(int i) const { return static_cast<DirNode*>(child(i)); }
  void SortChildren();

  bool operator<(const QTreeWidgetItem& other) const override;

 private:
  bool open_ = false;
};

// tvwDB: the tree of directories.
class DirTree : public QTreeWidget {
  Q_OBJECT

 public:
  explicit DirTree(QWidget* parent);

  DirNode* Selected() const { return static_cast<DirNode*>(currentItem()); }
  // Makes the node the selected one, scrolls to it, and emits nothing.
  void Select(DirNode* node);
  // Starts the in-place edit of a node's name. Does nothing while a name is edited, and for the
  // root.
  void EditName(DirNode& node);
  // Emits MenuWanted for the current node, as the menu key of the keyboard does.
  void WantMenu();
  bool IsEditing() const { return state() == EditingState; }
  DirNode* DropHighlight() const { return highlight_; }
  void SetDropHighlight(DirNode* node);

  // The user has done this on the pane.
 Q_SIGNALS:
  void NodeClicked(DirNode* node);  // with the mouse or by moving with the keys
  void NodeToggled(DirNode* node, bool expanded);
  void MenuWanted(const QPoint& global);
  void DragWanted();
  void Dropped(const QMimeData& data);
  void NameEditWanted(DirNode* node);  // a second, slow click on the name of the selected node
  void NameEdited(DirNode* node, const QString& name);

 protected:
  void startDrag(Qt::DropActions actions) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void drawRow(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
  void initViewItemOption(QStyleOptionViewItem* option) const override;

 private:
  void ConnectItems();
  void ConnectNames();
  void ScrollTo(DirNode& node);

  SlowClick slowClick_{*this};
  DirNode* highlight_ = nullptr;
  bool quiet_ = false;  // a change of the current node isn't the user's move with the keys
};

}  // namespace sectorbox
