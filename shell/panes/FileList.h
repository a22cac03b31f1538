#pragma once

#include <QListView>
#include <QMimeData>
#include <array>
#include <optional>

#include "shell/panes/FileListModel.h"
#include "shell/panes/NameEditor.h"
#include "shell/panes/SlowClick.h"

class QHeaderView;

namespace sectorbox {

enum class ListLook { kReport, kLargeIcons, kList, kSmallIcons };

// lvwDB: the entries of one directory, in four view modes. All modes use this one list widget, so
// selection, editing and dragging are the same in each. In the report mode it has a heading, and it
// paints all seven columns of each row below the heading.
class FileList : public QListView {
  Q_OBJECT

 public:
  explicit FileList(QWidget* parent);

  FileListModel& Model() { return *model_; }
  QHeaderView* Header() { return header_; }
  ListLook Mode() const { return mode_; }
  void SetMode(ListLook mode);
  // Sets the width of a column in twips, unless the user has dragged the column to another one.
  void SetColumnWidth(int column, double twips);
  // The width that the user has dragged the column to, in twips; nothing if the user hasn't.
  [[nodiscard]] std::optional<double> DraggedWidth(int column) const;
  // Gives the column the width that it had been dragged to when the program last ended.
  void SetDraggedWidth(int column, double twips);
  // Widens the columns whose texts would be cut. A column that the user dragged stays as it is.
  void FitColumns();
  [[nodiscard]] bool IsSelected(int row) const;
  void SetSelected(int row, bool selected);
  // Starts the in-place edit of a row's name. Does nothing while a name is edited.
  void EditName(int row);
  // Emits MenuWanted for the current row, as the menu key of the keyboard does.
  void WantMenu();
  bool IsEditing() const { return state() == EditingState; }

  // The delegate asks this: where the column's cell lies in a row that is painted at rowRect.
  [[nodiscard]] QRect CellRect(const QRect& rowRect, int column) const;

  // The user has done this on the pane.
 Q_SIGNALS:
  void RowClicked(int row);  // with the mouse or by moving with the keys
  void RowDoubleClicked(int row);
  void HeadingClicked(int column);
  void MenuWanted(const QPoint& global);
  void DragWanted();
  void Dropped(const QMimeData& data);
  void NameEditWanted(int row);  // a second, slow click on the name of the selected row
  void NameEdited(int row, const QString& name);

 protected:
  void startDrag(Qt::DropActions actions) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  // An empty list says that files can be dropped on it. While files are dragged over the list, it
  // has a frame.
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  void updateGeometries() override;
  void initViewItemOption(QStyleOptionViewItem* option) const override;

 private:
  [[nodiscard]] bool IsOnName(const QModelIndex& row, const QPoint& at) const;
  [[nodiscard]] bool IsSelectedAlone(const QModelIndex& row) const;
  void MakeHeader();
  void PlaceHeader();
  void ResizeColumn(int column, double twips);
  void SetDragged(bool dragged);
  [[nodiscard]] int ColumnAt(int x) const;

  FileListModel* model_;
  QHeaderView* header_;
  SlowClick slowClick_{*this};
  QPersistentModelIndex pressed_;  // the row that the left button went down on
  ListLook mode_ = ListLook::kReport;
  bool quiet_ = false;        // a change of the current row isn't the user's move with the keys
  bool sizing_ = false;       // the program itself changes column widths
  bool draggedOver_ = false;  // files are over the pane
  std::array<bool, kColumns> dragged_{};
};

}  // namespace sectorbox
