#include "toolkit/Boxes.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QMessageBox>

#include "toolkit/Captions.h"

namespace sectorbox {
namespace {

QMessageBox::Icon IconOf(BoxIcon icon) {
  switch (icon) {
    case BoxIcon::kInformation:
      return QMessageBox::Information;
    case BoxIcon::kExclamation:
      return QMessageBox::Warning;
    case BoxIcon::kCritical:
      return QMessageBox::Critical;
    case BoxIcon::kNone:
      break;
  }
  return QMessageBox::NoIcon;
}

// Only its buttons close it.
class ChoiceBox : public QMessageBox {
 public:
  using QMessageBox::QMessageBox;

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (!event->matches(QKeySequence::Cancel)) QMessageBox::keyPressEvent(event);
  }
  void closeEvent(QCloseEvent* event) override { event->ignore(); }
};

}  // namespace

void ShowBox(QWidget* parent, const QString& text, const QString& title, BoxIcon icon) {
  QMessageBox box(IconOf(icon), title, text, QMessageBox::Ok, parent);
  // The texts may hold names from a disc. Plain text keeps Qt from reading them as markup.
  box.setTextFormat(Qt::PlainText);
  MakeRoomForCaption(box);
  box.exec();
}

bool AskYesNoBox(QWidget* parent, const QString& text, const QString& title) {
  ChoiceBox box(QMessageBox::Question, title, text, QMessageBox::Yes | QMessageBox::No, parent);
  box.setTextFormat(Qt::PlainText);
  box.setDefaultButton(QMessageBox::Yes);
  box.setWindowFlag(Qt::WindowCloseButtonHint, false);
  MakeRoomForCaption(box);
  return box.exec() == QMessageBox::Yes;
}

}  // namespace sectorbox
