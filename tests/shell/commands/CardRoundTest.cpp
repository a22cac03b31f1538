// A raw card file with two partitions, from the format to the restore, through the window.

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>

#include "shell/panes/PaneDrops.h"
#include "tests/support/CardAccount.h"
#include "tests/support/WindowFixture.h"
#include "toolkit/FileLists.h"

namespace sectorbox::testing {
namespace {

class CardRound : public WindowTest {
 protected:
  CardRound() {
    player_.PassOverProgress = true;
    useHostCards_ = true;
  }
  // Chooses the partition whose row ends with a text. The box that lists what isn't ADFS is ticked.
  static void ChoosePartition(QWidget& dialog, int partition) {
    In<QCheckBox>(dialog, "chkNonADFS").setChecked(true);
    auto& rows = In<QComboBox>(dialog, "cmbCFCard");
    ASSERT_EQ(rows.count(), 2);
    ASSERT_TRUE(rows.itemText(partition).endsWith(QString::number(partition)));
    rows.setCurrentIndex(partition);
  }
  void ExpectChoice(int partition) {
    player_.Expect([partition](QWidget& dialog) {
      ChoosePartition(dialog, partition);
      In<QPushButton>(dialog, "mnuOK").click();
    });
  }
  void Format(int partition, bool quick) {
    player_.Expect([=](QWidget& dialog) {
      ChoosePartition(dialog, partition);
      In<QComboBox>(dialog, "cmbCapacity").setCurrentText(QStringLiteral("1MB"));
      In<QCheckBox>(dialog, "chkQuick").setChecked(quick);
      In<QPushButton>(dialog, "btnOK").click();
    });
    Choose("mnuCFFormat");
  }
  void Copy(const char* entry, int partition, const std::string& file) {
    ExpectChoice(partition);
    player_.ExpectFileDialog(file);
    Choose(entry);
  }
  void Open(int partition) {
    ExpectChoice(partition);
    Choose("mnuCFCardOpen");
  }
  void DropOnTheList(const std::string& path) {
    window_->ThePanes().List().Dropped(*FileListData({path}));
    Settle();
  }
  std::vector<std::uint8_t> BytesOfRow(const QString& name) {
    SelectRows({name});
    return ReadAll(ExportForListDrag(window_->ThePanes()).at(0));
  }
  // What has been stored reaches the card when another disc is opened.
  void CloseCard() { disc_->TheDisc.CloseFile(); }
};

TEST_F(CardRound, EveryByteOfACardIsAccountedForFromTheFormatToTheRestore) {
  CardAccount account(CardAccount::kPartitionStart + 5000);
  account.Fill(0, 5000);
  account.Fill(CardAccount::kPartitionStart - 100, 5100);
  // The second partition's map and root are zero before the quick format.
  account.Put(1, 0, std::vector<std::uint8_t>(7 * 256));
  const std::string card = folder_ / "card";
  account.WriteTo(card);
  SettingsStore().PutString("CardFiles", QString::fromStdString(card));
  Start();

  Format(0, false);
  Format(1, true);
  CloseCard();
  account.FormatFully(0, 4096);
  account.FormatQuickly(1, 4096);
  ASSERT_EQ(account.WhatDiffers(card), "");

  const std::vector<std::uint8_t> alpha(1000, 0xA1);
  const std::vector<std::uint8_t> beta(3 * 256, 0xB2);
  WriteAll(folder_ / "ALPHA", alpha);
  WriteAll(folder_ / "BETA", beta);
  Open(0);
  DropOnTheList(folder_ / "ALPHA");
  Open(1);
  DropOnTheList(folder_ / "BETA");
  CloseCard();
  const auto first = DiscWithAddedFile(4096, "ALPHA", alpha);
  account.Put(0, 0, first);
  const auto second = DiscWithAddedFile(4096, "BETA", beta);
  account.Put(1, 0, std::span(second).first(10 * 256));
  ASSERT_EQ(account.WhatDiffers(card), "");

  Copy("mnuCFCardBackup", 0, folder_ / "0.dat");
  Copy("mnuCFCardFullBackup", 1, folder_ / "1.dat");
  const std::vector<std::uint8_t> used(first.begin(), first.begin() + 11 * 256);
  EXPECT_EQ(ReadAll(folder_ / "0.dat"), used);
  EXPECT_EQ(ReadAll(folder_ / "1.dat"), account.DiscBytes(1, 5000));
  ASSERT_EQ(account.WhatDiffers(card), "");

  const CardAccount before = account;
  Copy("mnuCFCardRestore", 1, folder_ / "0.dat");
  account.Put(1, 0, used);
  ASSERT_EQ(account.WhatDiffers(card), "");
  EXPECT_EQ(Names(), QStringList({QStringLiteral("ALPHA")}));
  EXPECT_EQ(BytesOfRow(QStringLiteral("ALPHA")), alpha);

  Copy("mnuCFCardRestore", 1, folder_ / "1.dat");
  ASSERT_EQ(before.WhatDiffers(card), "");
  EXPECT_EQ(BytesOfRow(QStringLiteral("BETA")), beta);
  Open(0);
  EXPECT_EQ(BytesOfRow(QStringLiteral("ALPHA")), alpha);
  CloseCard();
  EXPECT_EQ(before.WhatDiffers(card), "");
}

TEST_F(CardRound, TheCardIsNotTakenAsItsOwnBackup) {
  CardAccount account(5000);
  account.Fill(0, 5000);
  const std::string card = folder_ / "card";
  account.WriteTo(card);
  SettingsStore().PutString("CardFiles", QString::fromStdString(card));
  Start();
  for (const char* entry : {"mnuCFCardFullBackup", "mnuCFCardRestore"}) {
    player_.Expect([](QWidget& dialog) {
      In<QCheckBox>(dialog, "chkNonADFS").setChecked(true);
      In<QComboBox>(dialog, "cmbCFCard").setCurrentIndex(0);
      In<QPushButton>(dialog, "mnuOK").click();
    });
    player_.ExpectFileDialog(card);
    player_.ExpectBox(QString::fromStdString(card + ": this is the card itself"));
    Choose(entry);
  }
  EXPECT_EQ(account.WhatDiffers(card), "");
}

}  // namespace
}  // namespace sectorbox::testing
