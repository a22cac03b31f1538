#pragma once

#include <QStyledItemDelegate>
#include <functional>

namespace sectorbox {

// In-place editing of a name. The edited text never goes into the pane by itself: it is handed to
// Edited, which asks the disc and then shows what the disc made of it. An edit that leaves the text
// as it was, or that ends with Escape, hands over nothing.
class NameEditor : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  std::function<void(const QModelIndex& index, const QString& text)> Edited;

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model,
                    const QModelIndex& index) const override;
};

}  // namespace sectorbox
