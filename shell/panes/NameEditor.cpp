#include "shell/panes/NameEditor.h"

#include <QLineEdit>
#include <QPersistentModelIndex>
#include <QTimer>

namespace sectorbox {

QWidget* NameEditor::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                  const QModelIndex&) const {
  auto* editor = new QLineEdit(parent);
  editor->setObjectName(QStringLiteral("txtName"));
  return editor;
}

// The signal comes from the event loop and not from here: the view is still in the middle of
// closing the editor, and the disc may answer with a box that runs events.
void NameEditor::setModelData(QWidget* editor, QAbstractItemModel*,
                              const QModelIndex& index) const {
  const QString text = qobject_cast<QLineEdit*>(editor)->text();
  if (text == index.data(Qt::EditRole).toString()) return;
  QTimer::singleShot(0, this, [this, held = QPersistentModelIndex(index), text] {
    if (held.isValid()) Q_EMIT Edited(held, text);
  });
}

}  // namespace sectorbox
