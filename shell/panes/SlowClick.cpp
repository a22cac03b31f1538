#include "shell/panes/SlowClick.h"

#include <QApplication>
#include <QFocusEvent>
#include <utility>

namespace sectorbox {

SlowClick::SlowClick(QAbstractItemView& pane) : QObject(&pane), pane_(pane) {
  wait_.setSingleShot(true);
  connect(&wait_, &QTimer::timeout, this, [this] {
    const QModelIndex name = std::exchange(name_, {});
    if (name.isValid()) Q_EMIT Clicked(name);
  });
  pane.installEventFilter(this);
}

// A click into a pane that hadn't the focus only gives it the focus.
void SlowClick::Press(const QModelIndex& name) {
  Forget();
  if (!std::exchange(focusCame_, false)) name_ = name;
}

void SlowClick::Release(const QModelIndex& under) {
  if (!name_.isValid() || name_ != under) return Forget();
  wait_.start(QApplication::doubleClickInterval());
}

void SlowClick::Forget() {
  wait_.stop();
  name_ = QPersistentModelIndex();
}

bool SlowClick::eventFilter(QObject* watched, QEvent* event) {
  if (watched != &pane_) return false;
  if (event->type() == QEvent::KeyPress || event->type() == QEvent::FocusOut) Forget();
  if (event->type() == QEvent::FocusIn) {
    focusCame_ = static_cast<QFocusEvent*>(event)->reason() == Qt::MouseFocusReason;
  }
  return false;
}

}  // namespace sectorbox
