#include "shell/panes/NameEditor.h"

#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPersistentModelIndex>
#include <QTimer>

namespace sectorbox {

QWidget* NameEditor::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                  const QModelIndex&) const {
  auto* editor = new QLineEdit(parent);
  editor->setObjectName(QStringLiteral("txtName"));
  editor->setAccessibleName(QStringLiteral("Name"));
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

bool NameEditor::eventFilter(QObject* watched, QEvent* event) {
  auto* editor = qobject_cast<QLineEdit*>(watched);
  if (editor == nullptr || event->type() != QEvent::MouseMove) {
    return QStyledItemDelegate::eventFilter(watched, event);
  }
  const auto& move = static_cast<QMouseEvent&>(*event);
  const int slack = QApplication::startDragDistance();
  const QRect near = editor->rect().adjusted(-slack, -slack, slack, slack);
  if ((move.buttons() & Qt::LeftButton) == 0 || near.contains(move.position().toPoint())) {
    return QStyledItemDelegate::eventFilter(watched, event);
  }
  Q_EMIT closeEditor(editor, QAbstractItemDelegate::RevertModelCache);
  Q_EMIT DraggedOut();
  return true;
}

}  // namespace sectorbox
