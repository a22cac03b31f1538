#include <QApplication>
#include <QCheckBox>
#include <filesystem>

#include "disc/change/FreeMap.h"
#include "disc/change/Mutation.h"
#include "tests/shell/commands/FilesFixture.h"
#include "toolkit/Text.h"

// The attributes and addresses of files, with their dialogs.
namespace sectorbox::testing {
namespace {

using FilePropertiesTest = FileCommandsTest;

// --- Attributes --------------------------------------------------------------------------------

TEST_F(FilePropertiesTest, TheAttributeDialogOpensWithTheCurrentRowsState) {
  StartWith(image_);
  Select({"BETA"});
  player_.Expect([](QWidget& dialog) {
    EXPECT_EQ(dialog.objectName(), QStringLiteral("frmAttr"));
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Set File Attributes"));
    for (const char* box : {"chkRead", "chkWrite", "chkLocked"}) {
      EXPECT_TRUE(dialog.findChild<QCheckBox*>(QString::fromLatin1(box))->isChecked()) << box;
    }
    Push(dialog, "cmdCancel");
  });
  Choose("mnuFileAttributes");
  EXPECT_EQ(RowOf("BETA").Attr(), "LWR");
  EXPECT_FALSE(disc_->ImageChanged);
}

TEST_F(FilePropertiesTest, EverySelectedRowGetsTheDialogsAttributesDirectoriesIncluded) {
  StartWith(image_);
  Select({"ALPHA", "DIR", "GAMMA"});
  player_.Expect([](QWidget& dialog) {
    dialog.findChild<QCheckBox*>(QStringLiteral("chkWrite"))->setChecked(true);
    dialog.findChild<QCheckBox*>(QStringLiteral("chkLocked"))->setChecked(true);
    Push(dialog, "cmdOK");
  });
  Choose("mnuFileAttributes");
  EXPECT_EQ(RowOf("ALPHA").Attr(), "LWR");
  EXPECT_EQ(RowOf("DIR").Attr(), "DLWR");
  EXPECT_EQ(RowOf("GAMMA").Attr(), "LWR");
  EXPECT_EQ(RowOf("BETA").Attr(), "LWR");
  EXPECT_TRUE(disc_->ImageChanged);
  EXPECT_EQ(window_->windowTitle().right(1), QStringLiteral("*"));
}

TEST_F(FilePropertiesTest, TheCloseBoxLeavesAcceptedAsTheLastUseLeftIt) {
  StartWith(image_);
  Select({"ALPHA"});
  player_.Expect([](QWidget& dialog) { dialog.close(); });
  Choose("mnuFileAttributes");
  EXPECT_EQ(RowOf("ALPHA").Attr(), "WR");
  player_.Expect([](QWidget& dialog) { Push(dialog, "cmdOK"); });
  Choose("mnuFileAttributes");
  const std::string seq = RowOf("ALPHA").Columns[kColSeq];
  // Accepted still stands from the OK, so closing applies once more.
  player_.Expect([](QWidget& dialog) { dialog.close(); });
  Choose("mnuFileAttributes");
  EXPECT_NE(RowOf("ALPHA").Columns[kColSeq], seq);
}

TEST_F(FilePropertiesTest, CancelTakesTheAcceptanceOfAnEarlierOKAway) {
  StartWith(image_);
  Select({"ALPHA"});
  player_.Expect([](QWidget& dialog) { Push(dialog, "cmdOK"); });
  Choose("mnuFileAttributes");
  player_.Expect([](QWidget& dialog) { Push(dialog, "cmdCancel"); });
  Choose("mnuFileAttributes");
  const std::string seq = RowOf("ALPHA").Columns[kColSeq];
  player_.Expect([](QWidget& dialog) { dialog.close(); });
  Choose("mnuFileAttributes");
  EXPECT_EQ(RowOf("ALPHA").Columns[kColSeq], seq);
}

TEST_F(FilePropertiesTest, ABoxInItsThirdStateCountsForLockedAlone) {
  StartWith(image_);
  Select({"ALPHA"});
  player_.Expect([](QWidget& dialog) {
    for (const char* name : {"chkRead", "chkWrite", "chkLocked"}) {
      auto* box = dialog.findChild<QCheckBox*>(QString::fromLatin1(name));
      box->setTristate(true);
      box->setCheckState(Qt::PartiallyChecked);
    }
    Push(dialog, "cmdOK");
  });
  Choose("mnuFileAttributes");
  EXPECT_EQ(RowOf("ALPHA").Attr(), "L");
}

TEST_F(FilePropertiesTest, ARowWhoseEntryIsGoneEndsTheLoopWithoutALookAtTheFreeSpace) {
  StartWith(image_);
  Select({"ALPHA", "BETA", "GAMMA"});
  ASSERT_EQ(DeleteEntry(*disc_, 2, "BETA", false, true), Outcome::kDone);
  window_->SetStatus(QStringLiteral("something else"), false);
  player_.Expect([](QWidget& dialog) {
    dialog.findChild<QCheckBox*>(QStringLiteral("chkLocked"))->setChecked(true);
    Push(dialog, "cmdOK");
  });
  Choose("mnuFileAttributes");
  EXPECT_EQ(RowOf("ALPHA").Attr(), "LR");
  EXPECT_EQ(RowOf("GAMMA").Attr(), "R");
  EXPECT_EQ(Panel(1), QStringLiteral("something else"));
}

// --- Addresses ---------------------------------------------------------------------------------

TEST_F(FilePropertiesTest, AddressesArePaddedAndUpperCased) {
  StartWith(image_);
  Select({"ALPHA"});
  player_.Expect([](QWidget& dialog) {
    EXPECT_EQ(dialog.findChild<QLineEdit*>(QStringLiteral("txtLoad"))->text(),
              QStringLiteral("FFFF1900"));
    EXPECT_EQ(dialog.findChild<QLineEdit*>(QStringLiteral("txtExec"))->text(),
              QStringLiteral("00008023"));
    Type(dialog, "txtLoad", QStringLiteral("0"));
    Type(dialog, "txtExec", QStringLiteral("ffff19ab"));
    Push(dialog, "cmdOK");
  });
  Choose("mnuFileAddresses");
  EXPECT_EQ(RowOf("ALPHA").Columns[kColLoad], "00000000");
  EXPECT_EQ(RowOf("ALPHA").Columns[kColExec], "FFFF19AB");
  EXPECT_EQ(RowOf("ALPHA").Item.Exec(), 0xFFFF19ABu);
}

TEST_F(FilePropertiesTest, OfSeveralSelectedRowsOnlyTheCurrentOneGetsTheAddresses) {
  StartWith(image_);
  Select({"ALPHA", "GAMMA"});
  player_.Expect([](QWidget& dialog) {
    EXPECT_EQ(dialog.findChild<QLineEdit*>(QStringLiteral("txtLoad"))->text(),
              QStringLiteral("00000001"));
    Type(dialog, "txtLoad", QStringLiteral("1234"));
    Push(dialog, "cmdOK");
  });
  Choose("mnuFileAddresses");
  EXPECT_EQ(RowOf("GAMMA").Columns[kColLoad], "00001234");
  EXPECT_EQ(RowOf("GAMMA").Columns[kColSeq], "(02)");
  EXPECT_EQ(RowOf("ALPHA").Columns[kColLoad], "FFFF1900");
}

TEST_F(FilePropertiesTest, TheCloseBoxAppliesTheAddressesOnceMoreAfterAnOK) {
  StartWith(image_);
  Select({"ALPHA"});
  player_.Expect([](QWidget& dialog) { Push(dialog, "cmdOK"); });
  Choose("mnuFileAddresses");
  EXPECT_EQ(RowOf("ALPHA").Columns[kColSeq], "(02)");
  player_.Expect([](QWidget& dialog) {
    Type(dialog, "txtLoad", QStringLiteral("1234"));
    dialog.close();
  });
  Choose("mnuFileAddresses");
  EXPECT_EQ(RowOf("ALPHA").Columns[kColSeq], "(03)");
  EXPECT_EQ(RowOf("ALPHA").Columns[kColLoad], "FFFF1900");
}

TEST_F(FilePropertiesTest, AddressesOfADirectoryAreNotOffered) {
  StartWith(image_);
  Select({"DIR"});
  Choose("mnuFileAddresses");
  EXPECT_FALSE(disc_->ImageChanged);
}

struct BadAddress {
  const char* Name;
  const char* Load;
  const char* Exec;
  const char* Message;
};

class BadAddressTest : public FilePropertiesTest,
                       public ::testing::WithParamInterface<BadAddress> {};

TEST_P(BadAddressTest, IsRefusedTheDialogStaysAndCancelAppliesNothing) {
  const BadAddress& bad = GetParam();
  StartWith(image_);
  Select({"ALPHA"});
  const QString message = QString::fromLatin1(bad.Message);
  bool stayed = false;
  player_.Expect([&](QWidget& dialog) {
    Type(dialog, "txtLoad", QString::fromLatin1(bad.Load));
    Type(dialog, "txtExec", QString::fromLatin1(bad.Exec));
    Push(dialog, "cmdOK");
    stayed = dialog.isVisible();
    EXPECT_EQ(dialog.findChild<QLineEdit*>(QStringLiteral("txtLoad"))->text(),
              QString::fromLatin1(bad.Load));
    Push(dialog, "cmdCancel");
  });
  player_.ExpectBox(message, QStringLiteral("Error"));
  Choose("mnuFileAddresses");
  EXPECT_TRUE(stayed);
  EXPECT_EQ(RowOf("ALPHA").Columns[kColLoad], "FFFF1900");
  EXPECT_FALSE(disc_->ImageChanged);
}

INSTANTIATE_TEST_SUITE_P(
    Addresses, BadAddressTest,
    ::testing::Values(
        BadAddress{"EightDigitsAndABlank", "FFFF1900 ", "0", "Load Address Is Wrong Length"},
        BadAddress{"EmptyExec", "0", "", "Exec Address Is Wrong Length"},
        BadAddress{"LetterG", "G", "0", "Load Address Contains Illegal Characters"},
        BadAddress{"BadExec", "0", "12X4", "Exec Address Contains Illegal Characters"},
        BadAddress{"LongLoadAndBadExec", "123456789", "XX", "Load Address Is Wrong Length"},
        BadAddress{"BadLoadAndLongExec", "XX", "123456789", "Exec Address Is Wrong Length"}),
    [](const auto& test) { return std::string(test.param.Name); });

TEST_F(FilePropertiesTest, ARefusedEntryThatIsClosedByItsBoxWritesNothing) {
  StartWith(image_);
  Select({"ALPHA"});
  player_.Expect([](QWidget& dialog) {
    Type(dialog, "txtLoad", QStringLiteral("XYZ"));
    Push(dialog, "cmdOK");
    dialog.close();
  });
  player_.ExpectBox(QStringLiteral("Load Address Contains Illegal Characters"));
  Choose("mnuFileAddresses");
  EXPECT_EQ(RowOf("ALPHA").Columns[kColLoad], "FFFF1900");
  EXPECT_FALSE(disc_->ImageChanged);
}

}  // namespace
}  // namespace sectorbox::testing
