#include "shell/panes/FileListModel.h"

#include <algorithm>
#include <numeric>

#include "disc/format/Text.h"
#include "shell/icons/Icons.h"
#include "shell/panes/CellTips.h"
#include "toolkit/Text.h"

namespace sectorbox {
namespace {

// Gives the rows in the order of a column's texts, each row as its place in rows. Rows with equal
// texts keep their order.
std::vector<std::size_t> SortedOrder(const std::vector<ListRow>& rows, int column,
                                     Qt::SortOrder order) {
  std::vector<std::size_t> places(rows.size());
  std::iota(places.begin(), places.end(), std::size_t{0});
  std::vector<std::string> keys;
  keys.reserve(rows.size());
  for (const auto& row : rows) {
    keys.push_back(UpperCase(row.Columns[static_cast<std::size_t>(column)]));
  }
  std::stable_sort(places.begin(), places.end(), [&](std::size_t a, std::size_t b) {
    return order == Qt::AscendingOrder ? keys[a] < keys[b] : keys[b] < keys[a];
  });
  return places;
}

}  // namespace

FileListModel::FileListModel(QObject* parent)
    : QAbstractTableModel(parent),
      leaf_(LoadIcon("leaf")),
      closed_(LoadIcon("closed")),
      book_(LoadIcon("book")) {}

void FileListModel::SetRows(std::vector<ListRow> rows) {
  beginResetModel();
  Sort(rows);
  rows_ = std::move(rows);
  endResetModel();
}

void FileListModel::Sort(std::vector<ListRow>& rows) const {
  std::vector<ListRow> sorted;
  sorted.reserve(rows.size());
  for (const auto place : SortedOrder(rows, column_, order_)) {
    sorted.push_back(std::move(rows[place]));
  }
  rows = std::move(sorted);
}

void FileListModel::SetRow(int row, const ListRow& changed) {
  rows_[static_cast<std::size_t>(row)] = changed;
  Q_EMIT dataChanged(index(row, 0), index(row, kColumns - 1));
}

void FileListModel::SortBy(int column, Qt::SortOrder order) {
  column_ = column;
  order_ = order;
  Q_EMIT layoutAboutToBeChanged();
  const auto places = SortedOrder(rows_, column_, order_);
  std::vector<int> newPlace(places.size());
  for (std::size_t i = 0; i < places.size(); ++i) newPlace[places[i]] = static_cast<int>(i);
  Sort(rows_);
  const QModelIndexList before = persistentIndexList();
  QModelIndexList after;
  for (const auto& held : before) {
    after.append(index(newPlace[static_cast<std::size_t>(held.row())], held.column()));
  }
  changePersistentIndexList(before, after);
  Q_EMIT layoutChanged();
}

void FileListModel::SetLargeIcons(bool large) {
  large_ = large;
  if (!rows_.empty()) Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, 0));
}

int FileListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int FileListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

QVariant FileListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const ListRow& row = rows_[static_cast<std::size_t>(index.row())];
  if (role == Qt::DisplayRole || role == Qt::EditRole) {
    return FromBbc(row.Columns[static_cast<std::size_t>(index.column())]);
  }
  if (role == Qt::DecorationRole && index.column() == kColName) {
    if (large_) return book_;
    return row.IsDirectory() ? closed_ : leaf_;
  }
  if (role == Qt::ToolTipRole) return TipOfCell(row, index.column());
  if (role == Qt::AccessibleTextRole && index.column() == kColName) return SpokenRow(index.row());
  return {};
}

// "ALPHA, Attr LWR, Seq (01), ...", without the columns that are empty.
QString FileListModel::SpokenRow(int row) const {
  QString spoken = index(row, kColName).data().toString();
  for (int column = kColAttr; column < kColumns && speaksColumns_; ++column) {
    const QString text = index(row, column).data().toString();
    if (text.isEmpty()) continue;
    spoken += QStringLiteral(", ") +
              headerData(column, Qt::Horizontal, Qt::DisplayRole).toString() + QStringLiteral(" ") +
              text;
  }
  return spoken;
}

QVariant FileListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) return {};
  if (role == Qt::TextAlignmentRole) return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
  if (role != Qt::DisplayRole) return {};
  return QString::fromLatin1(kColumnHeadings[static_cast<std::size_t>(section)]);
}

Qt::ItemFlags FileListModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::ItemIsDropEnabled;
  Qt::ItemFlags flags =
      Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren;
  if (index.column() == kColName) flags |= Qt::ItemIsEditable;
  return flags;
}

}  // namespace sectorbox
