#pragma once

#include <QAbstractItemView>
#include <QPersistentModelIndex>
#include <QTimer>

namespace sectorbox {

// Tells the second, slow click on a name, which edits the name in place, from all other clicks:
// from the first one, which selects, from a double click, and from the press of a drag. A key, or
// the focus that leaves the pane, comes in between and ends the wait.
class SlowClick : public QObject {
  Q_OBJECT

 public:
  // pane outlives this object.
  explicit SlowClick(QAbstractItemView& pane);

  // The left button is down on that name, which was selected alone before. An invalid index is a
  // press on anything else.
  void Press(const QModelIndex& name);
  // The button is up again, over that index. If no second press follows soon, Clicked comes.
  void Release(const QModelIndex& under);
  // What was pressed is no click.
  void Forget();

 Q_SIGNALS:
  void Clicked(const QModelIndex& name);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QAbstractItemView& pane_;
  QPersistentModelIndex name_;
  QTimer wait_;
  bool focusCame_ = false;  // the press that is under way has given the pane the focus
};

}  // namespace sectorbox
