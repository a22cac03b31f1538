// Files that are dropped on the card dialogs are listed as raw cards from then on.

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QLabel>
#include <QPushButton>
#include <filesystem>

#include "tests/support/WindowFixture.h"
#include "toolkit/FileLists.h"
#include "toolkit/Text.h"

namespace sectorbox::testing {
namespace {

std::vector<std::string> Rows(QWidget& dialog) {
  const auto& list = In<QComboBox>(dialog, "cmbCFCard");
  std::vector<std::string> rows;
  rows.reserve(static_cast<std::size_t>(list.count()));
  for (int i = 0; i < list.count(); ++i) rows.push_back(list.itemText(i).toStdString());
  return rows;
}

using Lines = std::vector<std::string>;

// Drags the files over the dialog and drops them there. False, without a drop, if the dialog shows
// during the drag that it doesn't take them.
bool Drop(QWidget& dialog, const QMimeData& data) {
  const QPoint place = dialog.rect().center();
  QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  enter.ignore();
  QApplication::sendEvent(&dialog, &enter);
  if (!enter.isAccepted()) return false;
  QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&dialog, &drop);
  return drop.isAccepted();
}

bool DropFiles(QWidget& dialog, const std::vector<std::string>& paths) {
  return Drop(dialog, *FileListData(paths));
}

class CardDrop : public WindowTest {
 protected:
  CardDrop() {
    player_.PassOverProgress = true;
    useHostCards_ = true;
  }
  // A raw card with an empty disc of 4096 sectors.
  std::string MakeCard(const std::string& name) {
    const ImageBuilder disc(4096);
    std::vector<std::uint8_t> bytes(2 * disc.Bytes().size(), 0xE5);
    for (std::size_t i = 0; i < disc.Bytes().size(); ++i) bytes[2 * i] = disc.Bytes()[i];
    WriteAll(folder_ / name, bytes);
    return folder_ / name;
  }
  // Shows frmCF, plays at it, and cancels it.
  void AtTheDialog(const std::function<void(QWidget&)>& play) {
    player_.Expect([play](QWidget& dialog) {
      play(dialog);
      In<QPushButton>(dialog, "mnuCancel").click();
    });
    Choose("mnuCFCardOpen");
  }
  static QString Setting() { return SettingsStore().GetString("CardFiles"); }
};

TEST_F(CardDrop, ADroppedFileIsListedAtOnceAndAtEveryLaterStart) {
  const std::string card = MakeCard("card.img");
  Start();
  AtTheDialog([&](QWidget& dialog) {
    EXPECT_EQ(Rows(dialog), Lines());
    EXPECT_TRUE(DropFiles(dialog, {card}));
    EXPECT_EQ(Rows(dialog), Lines({"C: - Partition 0"}));
    EXPECT_TRUE(In<QComboBox>(dialog, "cmbCFCard").isEnabled());
    EXPECT_EQ(In<QLabel>(dialog, "lblCFCard").text(), QStringLiteral("Please Select CF Card"));
  });
  StartAgain();
  AtTheDialog([](QWidget& dialog) { EXPECT_EQ(Rows(dialog), Lines({"C: - Partition 0"})); });
}

TEST_F(CardDrop, TheFormatDialogTakesFilesToo) {
  const std::string card = MakeCard("card.img");
  Start();
  player_.Expect([&](QWidget& dialog) {
    EXPECT_EQ(dialog.objectName(), QStringLiteral("frmFormatCF"));
    EXPECT_TRUE(DropFiles(dialog, {card}));
    In<QComboBox>(dialog, "cmbCFCard").setCurrentIndex(0);
    In<QCheckBox>(dialog, "chkQuick").setChecked(true);
    In<QPushButton>(dialog, "btnOK").click();
  });
  Choose("mnuCFFormat");
  EXPECT_EQ(window_->windowTitle(), QStringLiteral("Sectorbox - C:,0"));
}

TEST_F(CardDrop, SeveralFilesGetLettersInTheirOrder) {
  const Lines cards = {MakeCard("two"), MakeCard("one")};
  Start();
  AtTheDialog([&](QWidget& dialog) {
    EXPECT_TRUE(DropFiles(dialog, cards));
    EXPECT_EQ(Rows(dialog), Lines({"C: - Partition 0", "D: - Partition 0"}));
  });
  EXPECT_EQ(host_->Drives.PathOf('C'), cards[0]);
  EXPECT_EQ(host_->Drives.PathOf('D'), cards[1]);
}

TEST_F(CardDrop, WhatIsNoFileListIsNotTaken) {
  Start();
  AtTheDialog([&](QWidget& dialog) {
    QMimeData text;
    text.setText(QStringLiteral("/etc/passwd"));
    EXPECT_FALSE(Drop(dialog, text));
    QMimeData address;
    address.setUrls({QUrl(QStringLiteral("http://localhost/card.img"))});
    EXPECT_FALSE(Drop(dialog, address));
  });
  EXPECT_EQ(Setting(), QString());
}

TEST_F(CardDrop, AFolderIsRefusedAndSaidAndTheFilesBesideItAreTaken) {
  const std::string card = MakeCard("card.img");
  std::filesystem::create_directory(folder_ / "folder");
  Start();
  AtTheDialog([&](QWidget& dialog) {
    DropFiles(dialog, {folder_ / "folder", "/dev/null", folder_ / "absent", card});
    EXPECT_EQ(Rows(dialog), Lines({"C: - Partition 0"}));
    EXPECT_EQ(Panel(2).toStdString(), (folder_ / "folder") + ": not a file that could hold a card");
  });
  EXPECT_EQ(Setting(), FromHost(card));
}

TEST_F(CardDrop, AFileThatIsListedAlreadyStaysOneRowAndTheChosenRowStaysChosen) {
  const std::string card = MakeCard("card.img");
  std::filesystem::create_symlink(card, folder_ / "link");
  Start();
  AtTheDialog([&](QWidget& dialog) {
    DropFiles(dialog, {card, card});
    In<QComboBox>(dialog, "cmbCFCard").setCurrentIndex(0);
    for (const std::string& path : {card, folder_ / "./card.img", folder_ / "link"}) {
      EXPECT_TRUE(DropFiles(dialog, {path}));
      EXPECT_EQ(Rows(dialog), Lines({"C: - Partition 0"}));
      EXPECT_EQ(In<QComboBox>(dialog, "cmbCFCard").currentIndex(), 0);
    }
  });
  EXPECT_EQ(Setting(), FromHost(card));
}

TEST_F(CardDrop, AnyNameIsKeptByteForByteAndOpensItsFile) {
  // Commas, one that looks like a partition, quotes, escapes, a line end, Latin-1, UTF-8, Cyrillic.
  const Lines names = {"my, card",
                       "card,1",
                       "100%25 \"card\";a=b",
                       "two\nlines",
                       "caf\xE9.img",
                       "caf\xC3\xA9",
                       "\xD0\xBA\xD0\xB0\xD1\x80\xD1\x82\xD0\xB0",
                       "back\\slash",
                       " blanks "};
  Lines paths;
  for (const std::string& name : names) paths.push_back(MakeCard(name));
  Start();
  AtTheDialog([&](QWidget& dialog) {
    for (const std::string& path : paths) EXPECT_TRUE(DropFiles(dialog, {path}));
    EXPECT_EQ(Rows(dialog).size(), paths.size());
  });
  StartAgain();
  for (std::size_t i = 0; i < paths.size(); ++i) {
    player_.Expect([i](QWidget& dialog) {
      In<QComboBox>(dialog, "cmbCFCard").setCurrentIndex(static_cast<int>(i));
      In<QPushButton>(dialog, "mnuOK").click();
    });
    Choose("mnuCFCardOpen");
    EXPECT_TRUE(disc_->TheDisc.IsOpenMedium(paths[i])) << names[i];
  }
}

TEST_F(CardDrop, AFileThatHasGoneAddsNoRowAndIsSaidByItsPath) {
  const std::string card = MakeCard("card.img");
  Start();
  AtTheDialog([&](QWidget& dialog) { DropFiles(dialog, {card}); });
  std::filesystem::remove(card);
  AtTheDialog([&](QWidget& dialog) { EXPECT_EQ(Rows(dialog), Lines()); });
  EXPECT_EQ(Panel(2).toStdString(), card + ": can't be opened: No such file or directory");
}

TEST_F(CardDrop, NothingButAbortWorksWhileAFormatRuns) {
  const std::string card = MakeCard("card.img");
  const std::string other = MakeCard("other.img");
  const auto before = ReadAll(other);
  Start();
  QTimer during;
  int looks = 0;
  player_.Expect([&](QWidget& dialog) {
    DropFiles(dialog, {card});
    QObject::connect(&during, &QTimer::timeout, &dialog, [&] {
      if (!In<QPushButton>(dialog, "btnAbort").isEnabled()) return;
      ++looks;
      EXPECT_FALSE(DropFiles(dialog, {other}));
      const auto held = FileListData({other});
      QDropEvent drop(QPointF(), Qt::CopyAction, held.get(), Qt::LeftButton, Qt::NoModifier);
      QApplication::sendEvent(&dialog, &drop);
      for (const char* name :
           {"cmbCFCard", "chkNonADFS", "cmbCapacity", "chkQuick", "btnOK", "btnCancel"}) {
        EXPECT_FALSE(In<QWidget>(dialog, name).isEnabled()) << name;
      }
      In<QCheckBox>(dialog, "chkNonADFS").click();
    });
    during.start(0);
    In<QComboBox>(dialog, "cmbCFCard").setCurrentIndex(0);
    In<QPushButton>(dialog, "btnOK").click();
  });
  Choose("mnuCFFormat");
  EXPECT_GT(looks, 0);
  EXPECT_EQ(Setting(), FromHost(card));
  EXPECT_EQ(window_->windowTitle(), QStringLiteral("Sectorbox - C:,0"));
  std::vector<std::uint8_t> expected(4096 * 512);
  const ImageBuilder empty(4096);
  for (std::size_t i = 0; i < empty.Bytes().size(); ++i) expected[2 * i] = empty.Bytes()[i];
  EXPECT_EQ(ReadAll(card), expected);
  EXPECT_EQ(ReadAll(other), before);
}

}  // namespace
}  // namespace sectorbox::testing
