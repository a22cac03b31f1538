#pragma once

#include <QStyledItemDelegate>

namespace sectorbox {

// In-place editing of a name. The editor never writes the edited text into the pane: it tells the
// text by Edited, and the listener asks the disc and then shows what the disc made of it. An edit
// that leaves the text as it was, or that ends with Escape, tells nothing.
class NameEditor : public QStyledItemDelegate {
  Q_OBJECT

 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model,
                    const QModelIndex& index) const override;

 Q_SIGNALS:
  void Edited(const QModelIndex& index, const QString& text) const;
};

}  // namespace sectorbox
