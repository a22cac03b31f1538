#pragma once

#include <QStyledItemDelegate>

namespace sectorbox {

// In-place editing of a name. The editor never writes the edited text into the pane. It emits
// Edited with the text. The listener then renames the entry on the disc and shows the name that the
// disc has now. If the user leaves the text as it was, or ends the edit with Escape, nothing is
// emitted.
//
// A press on the editor that moves out of it ends the edit as Escape does, and emits DraggedOut: it
// drags what the name stands for. A move inside the editor selects text.
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
  void DraggedOut();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace sectorbox
