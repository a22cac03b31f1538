#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QMenuBar>
#include <QPrinter>
#include <QPrinterInfo>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>

#include "disc/host/HostFile.h"
#include "tests/viewers/windows/ViewWindowFixture.h"

namespace sectorbox::testing {
namespace {

TEST_F(ViewWindowTest, EachEntryOpensItsView) {
  StartWithFiles();
  const std::vector<std::tuple<const char*, const char*, std::string, std::string>> cases = {
      {"Alpha", "mnuFileViewText", "View File - Alpha", "one\r\nTwo two\r\nthree\r\n"},
      {"Code", "mnuFileViewHex", "View File - Code", "000000 : 60 "},
      {"Basic", "mnuFileViewBasic", "View File - Basic", "   10PRINT\"A\"\r\n"},
      {"Code", "mnuFileViewDis", "Disassemble File - Code", "1900  60          RTS"},
      {"Word", "mnuFileViewWordwise", "View File - Word", "abc\r\n"},
      {"Dir", "mnuFileViewCat", "*CAT", "Dir   "},
      {"Dir", "mnuFileViewEx", "*EX", "Dir   "},
      {"Dir", "mnuFileViewCatAll", "*CATALL", std::string(40, '*') + "\r\nDir\r\n"},
      {"Dir", "mnuFileViewExAll", "*EXALL", std::string(40, '*') + "\r\nDir\r\n"},
      {"Dir", "mnuDirectoryCat", "*CAT", "$    "},
      {"Dir", "mnuDirectoryEx", "*EX", "$    "},
      {"Dir", "mnuDirectoryCatAll", "*CATALL", std::string(40, '*') + "\r\n$\r\n"},
      {"Dir", "mnuDirectoryExAll", "*EXALL", std::string(40, '*') + "\r\n$\r\n"},
      {"Dir", "mnuDiscMap", "Free Disc Space Map", "Address : Length\r\n"},
  };
  for (const auto& [row, entry, caption, begin] : cases) {
    // The one box is the second group of deferred commands; it isn't modal.
    QTimer boxes;
    QObject::connect(&boxes, &QTimer::timeout, [] {
      for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* box = qobject_cast<QMessageBox*>(widget)) box->accept();
      }
    });
    boxes.start(5);
    frmView& view = ViewRow(QLatin1String(row), entry);
    EXPECT_TRUE(view.isVisible()) << entry;
    EXPECT_EQ(view.windowTitle().toStdString(), caption) << entry;
    EXPECT_EQ(Shown(view).substr(0, begin.size()), begin) << entry;
    EXPECT_TRUE(view.Finished) << entry;
    EXPECT_EQ(TextOf(view).textCursor().position(), 0) << entry;
    view.close();
    Settle();
    EXPECT_TRUE(Views().empty()) << entry;
  }
}

TEST_F(ViewWindowTest, MenusHaveTheirCaptionsAndShortcuts) {
  StartWithFiles();
  frmView& view = ViewRow("Alpha", "mnuFileViewText");
  const std::vector<std::tuple<const char*, const char*, const char*>> entries = {
      {"mnuFile", "&File", ""},
      {"mnuFileSave", "&Save File...", ""},
      {"mnuFilePrint", "&Print File", ""},
      {"mnuFileClose", "&Close", ""},
      {"mnuEdit", "&Edit", ""},
      {"mnuEditFind", "&Find...", "Ctrl+F"},
      {"mnuEditNext", "Find &Next", "F3"},
      {"mnuEditCopy", "&Copy", "Ctrl+C"},
      {"mnuEditSelectAll", "Select &All", "Ctrl+A"}};
  for (const auto& [name, caption, shortcut] : entries) {
    const auto* action = view.findChild<QAction*>(QLatin1String(name));
    ASSERT_NE(action, nullptr) << name;
    EXPECT_EQ(action->text().toStdString(), caption);
    EXPECT_EQ(action->shortcut().toString().toStdString(), shortcut);
  }
  EXPECT_TRUE(view.findChild<QAction*>("mnuEditSep")->isSeparator());
}

TEST_F(ViewWindowTest, AFreshWindowIsCalledViewFileAndBeginsToFindAtItsTop) {
  StartWithFiles();
  ViewShared shared;
  const frmView view(*disc_, shared);
  EXPECT_EQ(view.windowTitle(), QStringLiteral("View File"));
  EXPECT_EQ(view.FindPos, 0);
  EXPECT_FALSE(view.Finished);
}

TEST_F(ViewWindowTest, ATagThatIsNoNumberOfAViewShowsNothing) {
  StartWithFiles();
  ViewShared shared;
  for (const char* tag : {"", "13", "99", "-1", "Text"}) {
    auto* view = new frmView(*disc_, shared);
    view->Tag = QLatin1String(tag);
    view->Show_File({});
    EXPECT_EQ(Shown(*view), "") << tag;
    EXPECT_EQ(view->windowTitle(), QStringLiteral("View File")) << tag;
    EXPECT_TRUE(view->Finished) << tag;
    view->close();
    Settle();
  }
}

TEST_F(ViewWindowTest, TheTextAreaIsInCourierNewNeverWrapsAndHasBothScrollBars) {
  StartWithFiles();
  const TextArea& area = TextOf(ViewRow("Alpha", "mnuFileViewText"));
  EXPECT_EQ(area.font().family(), QStringLiteral("Courier New"));
  EXPECT_EQ(area.font().pointSizeF(), 9.75);
  EXPECT_EQ(area.lineWrapMode(), QPlainTextEdit::NoWrap);
  EXPECT_EQ(area.horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
  EXPECT_EQ(area.verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
}

TEST_F(ViewWindowTest, ViewAsWritesTheTextToAFileAndShowsNothing) {
  StartWithFiles();
  Choose("mnuOptionsViewAs");
  const std::string path = folder_ / "out.txt";
  player_.ExpectFileDialog(path, [](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Save File As"));
  });
  ClickRow("Alpha");
  Choose("mnuFileViewText");
  Settle();
  EXPECT_TRUE(Views().empty());
  const auto bytes = ReadHostFile(path);
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "one\r\nTwo two\r\nthree\r\n");
}

TEST_F(ViewWindowTest, AListingGoesToAFileAsItGoesToTheWindow) {
  StartWithFiles();
  Choose("mnuOptionsViewAs");
  const std::string path = folder_ / "list.txt";
  player_.ExpectFileDialog(path);
  ClickRow("Basic");
  Choose("mnuFileViewBasic");
  Settle();
  const auto bytes = ReadHostFile(path);
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "   10PRINT\"A\"\r\n");
}

TEST_F(ViewWindowTest, ACancelledViewAsRunsNothing) {
  StartWithFiles();
  Choose("mnuOptionsViewAs");
  player_.ExpectFileDialog("");
  ClickRow("Alpha");
  Choose("mnuFileViewText");
  EXPECT_FALSE(View().isVisible());
  EXPECT_EQ(View().DefaultName, "");
}

TEST_F(ViewWindowTest, AFileThatCannotBeMadeIsToldAndNothingRuns) {
  StartWithFiles();
  Choose("mnuOptionsViewAs");
  player_.ExpectFileDialog(folder_ / "missing/out.txt");
  player_.Expect([](QWidget& dialog) {
    auto* box = qobject_cast<QMessageBox*>(&dialog);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->icon(), QMessageBox::Warning);
    EXPECT_TRUE(box->text().contains(QStringLiteral("out.txt")));
    box->accept();
  });
  ClickRow("Alpha");
  Choose("mnuFileViewText");
  EXPECT_EQ(View().DefaultName, "");
}

TEST_F(ViewWindowTest, SaveAddsOneLineEnd) {
  StartWithFiles();
  frmView& view = ViewRow("Alpha", "mnuFileViewText");
  const std::string path = folder_ / "saved.txt";
  player_.ExpectFileDialog(path);
  ChooseIn(view, "mnuFileSave");
  const auto bytes = ReadHostFile(path);
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "one\r\nTwo two\r\nthree\r\n\r\n");
}

TEST_F(ViewWindowTest, SaveOffersTheNameOfTheFileAsTheHostWouldHaveIt) {
  ImageBuilder image(2560);
  image.AddFile(2, {"Alpha", BytesOf("a")});
  image.AddFile(2, {"READ/ME", BytesOf("b")});
  StartWith(image);
  const std::vector<std::pair<const char*, const char*>> offers = {{"Alpha", "Alpha.txt"},
                                                                   {"READ/ME", "READ.ME.txt"}};
  for (const auto& [row, offer] : offers) {
    frmView& view = ViewRow(QLatin1String(row), "mnuFileViewText");
    player_.ExpectFileDialog("", [offer](QWidget& dialog) {
      EXPECT_EQ(dialog.findChild<QLineEdit*>("fileNameEdit")->text(), QLatin1String(offer));
    });
    ChooseIn(view, "mnuFileSave");
    view.close();
    Settle();
  }
}

TEST_F(ViewWindowTest, EveryByteOfATextComesBackFromTheWindow) {
  ImageBuilder image(2560);
  std::string all;
  for (int c = 0; c < 256; ++c) {
    if (c != 10 && c != 13) all += static_cast<char>(c);
  }
  image.AddFile(2, {"Bytes", BytesOf(all)});
  StartWith(image);
  EXPECT_EQ(Shown(ViewRow("Bytes", "mnuFileViewText")), all);
}

TEST_F(ViewWindowTest, PrintSendsTheWholeText) {
  StartWithFiles();
  frmView& view = ViewRow("Alpha", "mnuFileViewText");
  QPrinter printer;
  printer.setOutputFormat(QPrinter::PdfFormat);
  printer.setOutputFileName(QString::fromStdString(folder_ / "print.pdf"));
  view.PrintTo(printer);
  EXPECT_GT(HostFileLength(folder_ / "print.pdf"), 1000U);
}

TEST_F(ViewWindowTest, WithoutAPrinterPrintingIsTold) {
  if (!QPrinterInfo::defaultPrinter().isNull()) GTEST_SKIP() << "this machine has a printer";
  StartWithFiles();
  frmView& view = ViewRow("Alpha", "mnuFileViewText");
  player_.ExpectBox(QStringLiteral("No printer is set up."), QStringLiteral("Sectorbox"));
  ChooseIn(view, "mnuFilePrint");
}

TEST_F(ViewWindowTest, AFileOfOneLongLineKeepsItsLayoutAndShortLinesDoNot) {
  StartWithFiles();
  frmView& view = ViewRow("Long", "mnuFileViewText");
  EXPECT_TRUE(TextOf(view).document()->firstBlock().layout()->cacheEnabled());
  EXPECT_EQ(Shown(view), std::string(200000, 'x'));
  EXPECT_EQ(TextOf(view).Find(QStringLiteral("XX"), 199998), 199998);
  EXPECT_EQ(TextOf(view).SelectedText(), QStringLiteral("xx"));
  TextOf(view).AppendText("y\r\nshort", {});
  EXPECT_EQ(Shown(view), std::string(200000, 'x') + "y\r\nshort");
  EXPECT_TRUE(TextOf(view).document()->firstBlock().layout()->cacheEnabled());
  EXPECT_FALSE(TextOf(view).document()->lastBlock().layout()->cacheEnabled());
}

TEST_F(ViewWindowTest, CopyAndSelectAll) {
  StartWithFiles();
  frmView& view = ViewRow("Alpha", "mnuFileViewText");
  ChooseIn(view, "mnuEditSelectAll");
  EXPECT_EQ(TextOf(view).SelStart(), 0);
  ChooseIn(view, "mnuEditCopy");
  EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("one\nTwo two\nthree\n"));
}

TEST_F(ViewWindowTest, StylesReachTheTextAreaAndStayOnForLaterViews) {
  ImageBuilder image(2560);
  image.AddFile(2, {"Alpha", BytesOf("plain")});
  image.AddFile(2, {"Word",
                    BytesOf("a\x02US\x07\x02"
                            "DS\x07"
                            "b\r"),
                    0xFFFFFFFF, 0xFFFFFFFF});
  StartWith(image);
  const auto formatAt = [](frmView& view, int position) {
    QTextCursor cursor(TextOf(view).document());
    cursor.setPosition(position);
    return cursor.charFormat();
  };
  frmView& word = ViewRow("Word", "mnuFileViewWordwise");
  EXPECT_FALSE(formatAt(word, 1).fontUnderline());
  EXPECT_TRUE(formatAt(word, 2).fontUnderline());
  EXPECT_EQ(formatAt(word, 2).fontWeight(), QFont::Bold);
  frmView& text = ViewRow("Alpha", "mnuFileViewText");
  EXPECT_TRUE(formatAt(text, 3).fontUnderline());
}

TEST_F(ViewWindowTest, ClosingAWindowInTheMiddleOfAHexDumpStopsIt) {
  StartWithFiles();
  ClickRow("Long");
  QTimer::singleShot(0, [this] { View().close(); });
  Choose("mnuFileViewHex");
  Settle();
  EXPECT_TRUE(Views().empty());
}

TEST_F(ViewWindowTest, ClosingAWindowDuringExIsSwallowed) {
  StartWithFiles();
  QTimer::singleShot(0, [this] { View().close(); });
  Choose("mnuDirectoryEx");
  Settle();
  ASSERT_EQ(Views().size(), 1U);
  EXPECT_TRUE(View().isVisible());
  EXPECT_NE(Shown(View()).find("Word "), std::string::npos);
  View().close();
  Settle();
  EXPECT_TRUE(Views().empty());
}

TEST_F(ViewWindowTest, ASecondCloseRequestClosesAViewUnderItsGenerator) {
  StartWithFiles();
  QTimer::singleShot(0, [this] {
    View().close();
    View().close();
  });
  Choose("mnuDirectoryEx");
  Settle();
  EXPECT_TRUE(Views().empty());
}

TEST_F(ViewWindowTest, ViewsThatRunAtTheSameTimeDoNotMixTheirTexts) {
  StartWithFiles();
  QTimer::singleShot(0, [this] { Choose("mnuDirectoryExAll"); });
  ClickRow("Long");
  Choose("mnuFileViewHex");
  ASSERT_EQ(Views().size(), 2U);
  for (frmView* view : Views()) {
    const bool hex = view->windowTitle() == QStringLiteral("View File - Long");
    const std::string text = Shown(*view);
    EXPECT_EQ(text.size(), hex ? 12500U * 76 : text.size());
    EXPECT_EQ(text.find("Dir. $") == std::string::npos, hex);
    EXPECT_EQ(text.find("xxxxxxxxxxxxxxxx") != std::string::npos, hex);
  }
}

TEST_F(ViewWindowTest, TheMainWindowMayCloseWhileAViewRuns) {
  StartWithFiles();
  ClickRow("Long");
  QTimer::singleShot(0, [this] { window_->close(); });
  Choose("mnuFileViewHex");
  EXPECT_EQ(ends_, std::vector<int>{0});
}

TEST_F(ViewWindowTest, ClosingTheWindowStopsTheBoxesOfAWordwiseDocument) {
  ImageBuilder image(2560);
  std::string text;
  for (int i = 0; i < 4000; ++i) text += "\x02XX\ra\r";
  image.AddFile(2, {"Word", BytesOf(text), 0xFFFFFFFF, 0xFFFFFFFF});
  StartWith(image);
  ClickRow("Word");
  int boxes = 0;
  QTimer user;
  QObject::connect(&user, &QTimer::timeout, [&] {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      auto* box = qobject_cast<QMessageBox*>(widget);
      if (box == nullptr || !box->isVisible()) continue;
      EXPECT_EQ(box->text(), QStringLiteral("Unrecognised Command XX"));
      if (++boxes < 3) return box->accept();
      View().close();
      return;
    }
  });
  user.start(2);
  Choose("mnuFileViewWordwise");
  Settle();
  EXPECT_EQ(boxes, 3);
  EXPECT_TRUE(Views().empty());
}

TEST_F(ViewWindowTest, TheWindowComesBackWhereItWasAndWordwiseIsWider) {
  SettingsStore().PutString("ViewLeft", QStringLiteral("1500"));
  SettingsStore().PutString("ViewTop", QStringLiteral("750"));
  SettingsStore().PutString("ViewWidth", QStringLiteral("6000"));
  SettingsStore().PutString("ViewHeight", QStringLiteral("4500"));
  StartWithFiles();
  frmView& view = ViewRow("Alpha", "mnuFileViewText");
  EXPECT_EQ(view.size(), QSize(400, 300));
  view.resize(500, 350);
  view.close();
  EXPECT_EQ(SettingsStore().GetString("ViewWidth"), QStringLiteral("7500"));
  EXPECT_EQ(SettingsStore().GetString("ViewHeight"), QStringLiteral("5250"));
}

TEST_F(ViewWindowTest, AMegabyteOfHexNeverHoldsTheWindowUpForLong) {
  ImageBuilder image(8000);
  image.AddFile(2, {"Big", std::vector<std::uint8_t>(1 << 20, 0x5A)});
  StartWith(image, "test.dat");
  ClickRow("Big");
  qint64 longest = 0;
  QElapsedTimer sinceTurn;
  QTimer heart;
  QObject::connect(&heart, &QTimer::timeout,
                   [&] { longest = std::max(longest, sinceTurn.restart()); });
  sinceTurn.start();
  heart.start(0);
  QElapsedTimer whole;
  whole.start();
  Choose("mnuFileViewHex");
  const qint64 running = whole.elapsed();
  QTest::qWait(200);
  RecordProperty("longest_ms", static_cast<int>(longest));
  RecordProperty("whole_ms", static_cast<int>(running));
  std::printf("longest stretch %lld ms, whole %lld ms\n", static_cast<long long>(longest),
              static_cast<long long>(running));
  // A hundred on a machine of its own; tests share theirs, and may run with sanitizers.
  EXPECT_LT(longest, 400);
  EXPECT_EQ(Shown(View()).size(), 65536U * 76);
}

}  // namespace
}  // namespace sectorbox::testing
