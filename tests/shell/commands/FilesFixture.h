#pragma once

#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "disc/catalogue/Adfs.h"
#include "tests/support/WindowFixture.h"

namespace sectorbox::testing {

inline void Push(QWidget& dialog, const char* button) {
  dialog.findChild<QPushButton*>(QString::fromLatin1(button))->click();
}

inline void Type(QWidget& dialog, const char* field, const QString& text) {
  dialog.findChild<QLineEdit*>(QString::fromLatin1(field))->setText(text);
}

class FileCommandsTest : public WindowTest {
 protected:
  FileCommandsTest() {
    image_.AddFile(2, {"ALPHA", {1, 2, 3}, 0xFFFF1900, 0x8023, "WR"});
    image_.AddFile(2, {"BETA", std::vector<std::uint8_t>(600, 5), 0, 0, "LWR"});
    dir_ = image_.AddDirectory(2, "DIR");
    image_.AddFile(dir_, {"INSIDE", {1}});
    image_.AddFile(2, {"GAMMA", {4}, 1, 2, "R"});
  }
  ListRow RowOf(const char* name) {
    return window_->ThePanes().List().Model().Rows()[static_cast<std::size_t>(
        Row(QString::fromLatin1(name)))];
  }
  bool OnDisc(const char* name, std::int32_t sector = 2) {
    return FindEntry(*disc_, sector, name) != -1;
  }
  void Select(std::initializer_list<const char*> names) {
    QStringList list;
    for (const char* name : names) list.append(QString::fromLatin1(name));
    SelectRows(list);
  }
  // Types a new name into the editor that is open in the list.
  void Rename(const QString& name, Qt::Key end = Qt::Key_Return) {
    auto* editor = Find("lvwDB").findChild<QLineEdit*>(QStringLiteral("txtName"));
    ASSERT_NE(editor, nullptr);
    editor->setText(name);
    QTest::keyClick(editor, end);
    Settle();
  }

  ImageBuilder image_{2560};
  std::int32_t dir_ = 0;
};

}  // namespace sectorbox::testing
