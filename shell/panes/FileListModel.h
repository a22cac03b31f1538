#pragma once

#include <QAbstractTableModel>
#include <QIcon>
#include <vector>

#include "disc/catalogue/Catalogue.h"

namespace sectorbox {

// The rows of the current directory, in the order in which they are shown. Sorting compares the
// text of a column, so the columns of fixed-width hexadecimal sort by value.
class FileListModel : public QAbstractTableModel {
 public:
  explicit FileListModel(QObject* parent);

  const std::vector<ListRow>& Rows() const { return rows_; }
  // Replaces all rows, keeping the chosen sort column and order.
  void SetRows(std::vector<ListRow> rows);
  // Puts another row in a row's place. It stays there until the list is filled or sorted again.
  void SetRow(int row, const ListRow& changed);
  void SortBy(int column, Qt::SortOrder order);
  int SortColumn() const { return column_; }
  Qt::SortOrder SortOrder() const { return order_; }

  // "book" in the view of large icons, "leaf" or "closed" in the others.
  void SetLargeIcons(bool large);
  // Whether a screen reader speaks all columns of a row, or its name only.
  void SetSpeaksColumns(bool speaks) { speaksColumns_ = speaks; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  Qt::DropActions supportedDragActions() const override { return Qt::CopyAction; }

 private:
  void Sort(std::vector<ListRow>& rows) const;
  [[nodiscard]] QString SpokenRow(int row) const;

  std::vector<ListRow> rows_;
  int column_ = 0;
  Qt::SortOrder order_ = Qt::AscendingOrder;
  bool large_ = false;
  bool speaksColumns_ = true;
  QIcon leaf_;
  QIcon closed_;
  QIcon book_;
};

}  // namespace sectorbox
