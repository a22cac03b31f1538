#pragma once

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <string>
#include <vector>

#include "tests/support/WindowFixture.h"
#include "toolkit/Text.h"
#include "viewers/windows/frmView.h"

namespace sectorbox::testing {

inline std::vector<std::uint8_t> BytesOf(const std::string& text) {
  return {text.begin(), text.end()};
}

class ViewWindowTest : public WindowTest {
 protected:
  void StartWithFiles() {
    ImageBuilder image(2560);
    image.AddFile(2, {"Alpha", BytesOf("one\rTwo two\rthree\r"), 0x1900, 0x1900});
    image.AddFile(2, {"Basic", {13, 0, 10, 5, 0xF1, '"', 'A', '"', 13, 0xFF}});
    image.AddFile(2, {"Code", {0x60}, 0x1900, 0x1900});
    image.AddDirectory(2, "Dir");
    image.AddFile(2, {"Long", std::vector<std::uint8_t>(200000, 'x')});
    image.AddFile(2, {"Word",
                      BytesOf("a\x02US\x07"
                              "b\x02UE\x07"
                              "c\r"),
                      0xFFFFFFFF, 0xFFFFFFFF});
    StartWith(image);
  }
  // Deletes windows that have closed. The event loop would do it, but a test runs outside of it.
  void Settle() {
    WindowTest::Settle();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  // All views, hidden ones included, the oldest first.
  static std::vector<frmView*> Views() {
    std::vector<frmView*> views;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      if (auto* view = qobject_cast<frmView*>(widget)) views.push_back(view);
    }
    return views;
  }
  frmView& View() {
    const auto views = Views();
    if (views.empty()) throw std::runtime_error("no view");
    return *views.back();
  }
  frmView& ViewRow(const QString& name, const char* entry) {
    ClickRow(name);
    Choose(entry);
    return View();
  }
  static TextArea& TextOf(frmView& view) { return *view.findChild<TextArea*>("rtbView"); }
  static std::string Shown(frmView& view) { return ToBbc(TextOf(view).WholeText()); }
  static void ChooseIn(frmView& view, const char* entry) {
    auto* action = view.findChild<QAction*>(QLatin1String(entry));
    ASSERT_NE(action, nullptr) << entry;
    action->trigger();
  }
  // Answers the next Find dialog with this text, or with Cancel where it is null.
  void ExpectFind(const char* text) {
    player_.Expect([text](QWidget& dialog) {
      EXPECT_EQ(dialog.objectName(), QStringLiteral("frmFind"));
      EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Find"));
      auto* field = dialog.findChild<QLineEdit*>("txtFind");
      EXPECT_EQ(field->selectedText(), field->text());
      if (text != nullptr) field->setText(QLatin1String(text));
      dialog.findChild<QPushButton*>(text != nullptr ? "cmdOK" : "cmdCancel")->click();
    });
  }
};

}  // namespace sectorbox::testing
