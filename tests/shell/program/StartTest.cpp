#include <QApplication>
#include <QMenu>
#include <filesystem>

#include "shell/program/MenuTable.h"
#include "shell/program/Program.h"
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
      EXPECT_TRUE(found[0]->text().isEmpty()) << entry.Name;
    } else {
      EXPECT_EQ(found[0]->text(), QString::fromLatin1(entry.Caption));
    }
    EXPECT_TRUE(found[0]->shortcut().isEmpty()) << entry.Name;
    if (entry.Kind == kMenu) {
      EXPECT_NE(window_->findChild<QMenu*>(QString::fromLatin1(entry.Name)), nullptr);
    }
  }
}

TEST_F(StartTest, OnlyTheViewEntriesStartDisabled) {
  Start();
  for (const MenuEntry& entry : MenuTable()) {
    EXPECT_EQ(window_->Action(entry.Name)->isEnabled(), !entry.StartsDisabled) << entry.Name;
  }
}

TEST_F(StartTest, TheStatusShowsWaitingTextsReadyForNoneAndTheCaptionFollows) {
  Start();
  window_->SetStatus(QStringLiteral("Compacting Disc"), true);
  EXPECT_EQ(Panel(1), QStringLiteral("Compacting Disc, please wait..."));
  host_->SetBusyPointer(true);
  disc_->ImageChanged = true;
  window_->SetPanel2(QStringLiteral("$.ROW"));
  window_->SetStatus({}, true);
  EXPECT_EQ(Panel(1), QStringLiteral("Ready"));
  EXPECT_EQ(Panel(2), QStringLiteral("$"));
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  EXPECT_EQ(window_->windowTitle(), QStringLiteral("Sectorbox - NewDisc.adl*"));
  disc_->ImageChanged = false;
}

TEST_F(StartTest, APathInQuotesIsOpened) {
  ImageBuilder image(2560);
  image.AddFile(2, {"HELLO", {1, 2, 3}});
  StartWith(image);
  EXPECT_EQ(Names(), QStringList{QStringLiteral("HELLO")});
  EXPECT_EQ(disc_->ImageName, folder_ / "test.adl");
  EXPECT_EQ(SettingsStore().GetString("Root"), FromHost(folder_ / "test.adl"));
}

TEST_F(StartTest, AFolderWithTheNameOfTheScratchDiscDoesNotKeepTheNamedImageFromOpening) {
  std::filesystem::create_symlink("NewDisc.adl", folder_ / "NewDisc.adl");  // it can't be read
  ImageBuilder image(2560);
  image.AddFile(2, {"HELLO", {1, 2, 3}});
  const auto former = std::filesystem::current_path();
  std::filesystem::current_path(folder_.Path());
  StartWith(image);
  std::filesystem::current_path(former);
  EXPECT_EQ(Names(), QStringList{QStringLiteral("HELLO")});
}

TEST_F(StartTest, APathWithoutQuotesLosesItsEndsAndTheScratchDiscStaysWithoutAMessage) {
  ImageBuilder image(2560);
  image.WriteInterleavedTo(folder_ / "test.adl");
  Start(folder_ / "test.adl");
  EXPECT_EQ(disc_->ImageName, "NewDisc.adl");
}

TEST_F(StartTest, AnArgumentOfQuotesAloneOrOfOneCharacterOpensNothing) {
  for (const char* line : {"\"\"", "\"", "x"}) {
    StartAgain(line);
    EXPECT_EQ(disc_->ImageName, "NewDisc.adl");
  }
}

TEST_F(StartTest, WhatEarlierDragsLeftIsRemovedAndTheLogStays) {
  std::filesystem::create_directories(folder_ / "adfs_temp/temp_0/DIR");
  WriteText(folder_ / "adfs_temp/temp_0/DIR/FILE", "x");
  WriteText(folder_ / "drag.log", "x\n");
  Start();
  EXPECT_FALSE(std::filesystem::exists(folder_ / "adfs_temp"));
  EXPECT_TRUE(std::filesystem::exists(folder_ / "drag.log"));
}

TEST_F(StartTest, ALinkAmongTheLeftoversIsRemovedAndNotFollowed) {
  std::filesystem::create_directories(folder_ / "adfs_temp");
  std::filesystem::create_directories(folder_ / "mine");
  WriteText(folder_ / "mine/FILE", "x");
  std::filesystem::create_directory_symlink(folder_ / "mine", folder_ / "adfs_temp/link");
  Start();
  EXPECT_FALSE(std::filesystem::exists(folder_ / "adfs_temp"));
  EXPECT_TRUE(std::filesystem::exists(folder_ / "mine/FILE"));
}

// The hooks of a start in a test: a clock that a pump of 10 ms moves on.
class FakeHooks : public StartHooks {
 public:
  explicit FakeHooks(std::vector<int>& ends) : ends_(ends) {}

  double Seconds() override { return now_; }
  void Pump() override {
    now_ += 0.01;
    ++Pumps;
  }
  void EndProgram(int status) override { ends_.push_back(status); }

  int Pumps = 0;

 private:
  std::vector<int>& ends_;
  double now_ = 100.0;
};

// Looks for the splash at each pump.
class WatchingHooks : public FakeHooks {
 public:
  using FakeHooks::FakeHooks;

  void Pump() override {
    for (QWidget* top : QApplication::topLevelWidgets()) {
      if (top->objectName() == QLatin1String("frmSplash")) SplashSeen = top->isVisible();
      EXPECT_NE(top->objectName(), QStringLiteral("frmMain"));
    }
    FakeHooks::Pump();
  }
  void Created(frmMain& window) override { EXPECT_FALSE(window.isVisible()); }

  bool SplashSeen = false;
};

TEST_F(StartTest, TheSplashStandsForFourSecondsAndIsGoneBeforeTheWindowShows) {
  WatchingHooks hooks(ends_);
  host_ = std::make_unique<WindowHost>();
  disc_ = std::make_unique<Disc>(*host_);
  window_ = StartProgram(*disc_, *host_, hooks, "");
  ASSERT_NE(window_, nullptr);
  EXPECT_TRUE(hooks.SplashSeen);
  EXPECT_GE(hooks.Pumps, 399);
  EXPECT_LE(hooks.Pumps, 401);
  EXPECT_TRUE(window_->isVisible());
  for (QWidget* top : QApplication::topLevelWidgets()) {
    EXPECT_NE(top->objectName(), QStringLiteral("frmSplash"));
  }
  window_.reset();  // before its hooks
}

class BadSettingTest : public StartTest,
                       public ::testing::WithParamInterface<std::pair<const char*, const char*>> {};

TEST_P(BadSettingTest, EndsTheProgramWithAMessageAndKeepsTheSetting) {
  const auto [key, text] = GetParam();
  SettingsStore().PutString(key, QString::fromLatin1(text));
  FakeHooks hooks(ends_);
  player_.Expect([key = key](QWidget& dialog) {
    auto& box = dynamic_cast<QMessageBox&>(dialog);
    EXPECT_TRUE(box.text().contains(QLatin1String(key))) << box.text().toStdString();
    box.accept();
  });
  host_ = std::make_unique<WindowHost>();
  disc_ = std::make_unique<Disc>(*host_);
  window_ = StartProgram(*disc_, *host_, hooks, "");
  EXPECT_EQ(window_, nullptr);
  EXPECT_EQ(ends_, std::vector<int>{1});
  EXPECT_EQ(SettingsStore().GetString(key), QString::fromLatin1(text));
}

INSTANTIATE_TEST_SUITE_P(
    Start, BadSettingTest,
    ::testing::Values(std::pair{"MainLeft", "abc"}, std::pair{"MainHeight", "nan"},
                      std::pair{"ComPort", "32768"}, std::pair{"BaudRate", "38400"},
                      std::pair{"PadDiscImages", "maybe"}, std::pair{"CheckBeforeWrite", ""}),
    [](const auto& test) { return std::string(test.param.first); });

}  // namespace
}  // namespace sectorbox::testing
