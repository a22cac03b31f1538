#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAccessible>
#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTreeView>

#include "tests/shell/program/EveryWindow.h"

// The windows as a screen reader has them.
namespace sectorbox::testing {
namespace {

class AccessTest : public EveryWindowTest {
 protected:
  static QString NameOf(QObject& object) {
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&object);
    return spoken == nullptr ? QString() : spoken->text(QAccessible::Name);
  }
  // Whether a screen reader comes to the widget and has to say what it is.
  static bool NeedsAName(const QWidget& widget) {
    if (!widget.isVisible()) return false;
    // Qt's own dialogs and menu bars name their parts themselves.
    if (widget.objectName().startsWith(QLatin1String("qt_"))) return false;
    if (qobject_cast<const QAbstractSlider*>(&widget) != nullptr) return false;
    if (widget.parentWidget() != nullptr &&
        qobject_cast<const QComboBox*>(widget.parentWidget()) != nullptr) {
      return false;
    }
    return qobject_cast<const QLineEdit*>(&widget) != nullptr ||
           qobject_cast<const QComboBox*>(&widget) != nullptr ||
           qobject_cast<const QPlainTextEdit*>(&widget) != nullptr ||
           qobject_cast<const QProgressBar*>(&widget) != nullptr ||
           qobject_cast<const QTreeView*>(&widget) != nullptr ||
           qobject_cast<const QListView*>(&widget) != nullptr ||
           qobject_cast<const QAbstractButton*>(&widget) != nullptr;
  }
  // A line for each thing that a screen reader finds: its role and name, indented by its depth.
  static void Dump(QAccessibleInterface& spoken, int depth, QStringList& lines) {
    lines.append(QString(2 * depth, u' ') + QString::number(spoken.role()) + QStringLiteral(" ") +
                 spoken.text(QAccessible::Name));
    for (int i = 0; i < spoken.childCount() && depth < 8; ++i) {
      if (QAccessibleInterface* child = spoken.child(i)) Dump(*child, depth + 1, lines);
    }
  }
  static QStringList Dump(QObject& object) {
    QStringList lines;
    if (QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&object)) {
      Dump(*spoken, 0, lines);
    }
    return lines;
  }
};

TEST_F(AccessTest, EveryControlOfEveryWindowHasAName) {
  LookAtEvery([](QWidget& window) {
    if (window.objectName() == QLatin1String("dlgCommonDialog")) return;
    EXPECT_FALSE(NameOf(window).isEmpty() && window.windowTitle().isEmpty())
        << window.objectName().toStdString();
    for (QWidget* widget : window.findChildren<QWidget*>()) {
      if (!NeedsAName(*widget)) continue;
      EXPECT_FALSE(NameOf(*widget).isEmpty())
          << window.objectName().toStdString() << " " << widget->objectName().toStdString() << " "
          << widget->metaObject()->className();
    }
  });
}

TEST_F(AccessTest, ARowOfTheReportSpeaksAllSevenColumns) {
  StartWith(image_);
  const QStringList lines = Dump(Find("lvwDB"));
  const QString alpha = QStringLiteral(
      "ALPHA, Attr LWR, Seq (00), Load FFFF1900, Exec FFFF8023, "
      "Size 000002BC, Sector 000007");
  EXPECT_EQ(lines.filter(alpha).size(), 1) << lines.join(u'\n').toStdString();
  EXPECT_EQ(lines.filter(QStringLiteral("GAMES, Attr D")).size(), 1);
  Find<QAction>("View Large Icons").trigger();
  EXPECT_EQ(Dump(Find("lvwDB")).filter(QStringLiteral("Attr LWR")).size(), 0)
      << "where the columns can't be seen, the name is enough";
}

TEST_F(AccessTest, TheTreeOfTheMainWindowLeadsToPanesRowsAndButtons) {
  StartWith(image_);
  const QString all = Dump(*window_).join(u'\n');
  for (const char* name : {"Directories", "Files", "ALPHA", "GAMES", "Up One Level", "Disc",
                           "View Details", "Bytes Free"}) {
    EXPECT_TRUE(all.contains(QString::fromLatin1(name))) << name << "\n" << all.toStdString();
  }
}

TEST_F(AccessTest, TheEditorOfANameHasAName) {
  StartWith(image_);
  ClickRow(QStringLiteral("ZED"));
  Press(window_->ThePanes().List(), Qt::Key_F2);
  auto* editor = Find("lvwDB").findChild<QLineEdit*>(QStringLiteral("txtName"));
  ASSERT_NE(editor, nullptr);
  EXPECT_EQ(NameOf(*editor), QStringLiteral("Name"));
}

}  // namespace
}  // namespace sectorbox::testing
