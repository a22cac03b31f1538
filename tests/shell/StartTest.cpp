#include <QMenu>

#include "shell/MenuTable.h"
#include "shell/Program.h"
#include "tests/support/WindowFixture.h"
#include "toolkit/Text.h"

namespace sectorbox::testing {
namespace {

using StartTest = WindowTest;

TEST_F(StartTest, AFirstRunTakesPlaceOptionsAndScratchDiscFromTheDefaults) {
  Start();
  EXPECT_EQ(window_->pos(), QPoint(67, 67));
  EXPECT_EQ(window_->size(), QSize(433, 433));
  for (const char* on : {"mnuOptionsDelete", "mnuOptionsOverwrite", "mnuOptionsEmpty",
                         "mnuOptionsInterleave", "mnuXferSerialCom1", "mnuXferSerial19200"}) {
    EXPECT_TRUE(window_->Checked(on)) << on;
  }
  for (const char* off :
       {"mnuOptionsPad", "mnuOptionsPlayWave", "mnuOptionsAutoLoad", "mnuOptionsViewAs",
        "mnuXferCBW", "mnuXferSerialCom2", "mnuXferSerialCom3", "mnuXferSerialCom4",
        "mnuXferSerial9600", "mnuXferSerial4800", "mnuXferSerial2400", "mnuXferSerial1200"}) {
    EXPECT_FALSE(window_->Checked(off)) << off;
  }
  EXPECT_EQ(window_->windowTitle(), QStringLiteral("Sectorbox - NewDisc.adl"));
  EXPECT_EQ(Panel(1), QStringLiteral(" 653568 Bytes Free,  1792 Bytes Used"));
  EXPECT_EQ(Panel(2), QStringLiteral("$"));
  EXPECT_EQ(Nodes(), QStringList{QStringLiteral("$")});
}

TEST_F(StartTest, EveryMenuEntryIsThereOnceUnderItsNameWithItsCaption) {
  Start();
  for (const MenuEntry& entry : MenuTable()) {
    const auto found = window_->findChildren<QAction*>(QString::fromLatin1(entry.Name));
    ASSERT_EQ(found.size(), 1) << entry.Name;
    if (entry.Kind == kSeparator) {
      EXPECT_TRUE(found[0]->isSeparator()) << entry.Name;
    } else {
      EXPECT_EQ(found[0]->text(), QString::fromLatin1(entry.Caption));
    }
    EXPECT_TRUE(found[0]->shortcut().isEmpty()) << entry.Name;
    if (entry.Kind == kMenu) {
      EXPECT_NE(window_->findChild<QMenu*>(QString::fromLatin1(entry.Name)), nullptr);
    }
  }
}

}  // namespace
}  // namespace sectorbox::testing
