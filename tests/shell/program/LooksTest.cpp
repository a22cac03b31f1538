#include <QComboBox>
#include <QDateTime>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenuBar>
#include <QScreen>
#include <QStyleOptionButton>
#include <QToolBar>
#include <QToolButton>
#include <QTreeView>
#include <cmath>

#include "tests/shell/program/EveryWindow.h"

// What can be read in large fonts, in dark palettes, and at the default size.
namespace sectorbox::testing {
namespace {

using LooksTest = EveryWindowTest;

std::string Where(const QWidget& window, const QWidget& control, const QString& text) {
  return (window.objectName() + QStringLiteral(" ") + control.objectName() + QStringLiteral(" \"") +
          text + QStringLiteral("\""))
      .toStdString();
}

QString WithoutMnemonic(QString text) {
  return text.remove(u'&');
}

// The status bar's panels shorten their texts on purpose.
bool IsPanel(const QWidget& label) {
  return label.objectName().startsWith(QLatin1String("sbStatusBar"));
}

void ExpectRoomForLabels(QWidget& window) {
  for (const QLabel* label : window.findChildren<QLabel*>()) {
    if (!label->isVisible() || label->text().isEmpty() || IsPanel(*label)) continue;
    if (label->wordWrap()) continue;
    const QSize text = label->fontMetrics().size(0, WithoutMnemonic(label->text()));
    EXPECT_GE(label->width(), text.width()) << Where(window, *label, label->text());
    EXPECT_GE(label->height(), text.height()) << Where(window, *label, label->text());
  }
}

void ExpectRoomForButtons(QWidget& window) {
  for (const QAbstractButton* button : window.findChildren<QAbstractButton*>()) {
    if (!button->isVisible() || button->text().isEmpty()) continue;
    if (qobject_cast<const QToolButton*>(button) != nullptr) continue;
    const int text = button->fontMetrics().horizontalAdvance(WithoutMnemonic(button->text()));
    QRect contents = button->rect().adjusted(3, 0, -3, 0);
    if (!qobject_cast<const QPushButton*>(button)) contents = QRect({}, button->sizeHint());
    EXPECT_GE(contents.width(), text) << Where(window, *button, button->text());
    EXPECT_GE(button->width(), contents.width()) << Where(window, *button, button->text());
    EXPECT_GE(button->height(), button->fontMetrics().height())
        << Where(window, *button, button->text());
    EXPECT_TRUE(button->parentWidget()->rect().contains(button->geometry()))
        << Where(window, *button, button->text());
  }
}

void ExpectRoomForTheRest(QWidget& window) {
  for (const QLineEdit* line : window.findChildren<QLineEdit*>()) {
    if (!line->isVisible()) continue;
    EXPECT_GE(line->height(), line->fontMetrics().height() + 2) << Where(window, *line, {});
  }
  for (const QComboBox* box : window.findChildren<QComboBox*>()) {
    if (!box->isVisible()) continue;
    EXPECT_GE(box->height(), box->fontMetrics().height() + 2) << Where(window, *box, {});
  }
  for (const QGroupBox* group : window.findChildren<QGroupBox*>()) {
    EXPECT_GE(group->width(), group->fontMetrics().horizontalAdvance(group->title()))
        << Where(window, *group, group->title());
  }
}

// Each menu shows its caption, or an arrow leads to it.
void ExpectRoomForMenus(QWidget& window) {
  for (QMenuBar* bar : window.findChildren<QMenuBar*>()) {
    if (!bar->isVisible()) continue;
    bool allFit = true;
    for (QAction* menu : bar->actions()) {
      const QRect place = bar->actionGeometry(menu);
      const int text = bar->fontMetrics().horizontalAdvance(WithoutMnemonic(menu->text()));
      if (!bar->rect().contains(place)) allFit = false;
      EXPECT_TRUE(place.isEmpty() || place.width() >= text) << Where(window, *bar, menu->text());
      if (place.isEmpty()) allFit = false;
    }
    const auto* arrow = bar->findChild<QToolButton*>(QStringLiteral("qt_menubar_ext_button"));
    EXPECT_TRUE(allFit || (arrow != nullptr && arrow->isVisible()))
        << window.objectName().toStdString();
  }
}

void ExpectNothingClipped(QWidget& window) {
  ExpectRoomForLabels(window);
  ExpectRoomForButtons(window);
  ExpectRoomForTheRest(window);
  ExpectRoomForMenus(window);
}

TEST_F(LooksTest, NoCaptionIsClippedInTheNormalFont) {
  LookAtEvery(ExpectNothingClipped);
}

TEST_F(LooksTest, NoCaptionIsClippedAt15Points) {
  SetPointSize(15);
  LookAtEvery(ExpectNothingClipped);
}

TEST_F(LooksTest, TheHeadingsOfTheListAreWholeAt15Points) {
  SetPointSize(15);
  StartWith(image_);
  QHeaderView& header = *window_->ThePanes().List().Header();
  for (int column = 0; column < kColumns; ++column) {
    const QString heading = window_->ThePanes()
                                .List()
                                .Model()
                                .headerData(column, Qt::Horizontal, Qt::DisplayRole)
                                .toString();
    const int mark = column == header.sortIndicatorSection() ? 18 : 6;
    EXPECT_GE(header.sectionSize(column), header.fontMetrics().horizontalAdvance(heading) + mark)
        << heading.toStdString();
  }
}

// --- Dark palettes -----------------------------------------------------------------------------

double Luminance(const QColor& colour) {
  const auto linear = [](double c) {
    return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
         0.0722 * linear(colour.blueF());
}

double Contrast(const QColor& one, const QColor& other) {
  const double a = Luminance(one) + 0.05;
  const double b = Luminance(other) + 0.05;
  return std::max(a, b) / std::min(a, b);
}

// How much of what is drawn stands out from the background, from 0 to 1.
double ReadablePart(const QImage& picture, const QColor& background) {
  int drawn = 0;
  int readable = 0;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      const QColor pixel = picture.pixelColor(x, y);
      if (pixel.alpha() < 250) continue;
      ++drawn;
      if (Contrast(pixel, background) >= 2) ++readable;
    }
  }
  return drawn == 0 ? 0 : double(readable) / drawn;
}

constexpr std::array<const char*, 4> kLooks = {"View Details", "View Large Icons", "View List",
                                               "View Small Icons"};

TEST_F(LooksTest, EveryWindowCanBeLookedAtInADarkPalette) {
  SetDarkPalette();
  LookAtEvery(ExpectNothingClipped);
}

TEST_F(LooksTest, TheIconsOfTheViewButtonsStandOutFromADarkWindow) {
  SetDarkPalette();
  StartWith(image_);
  const QColor window = QApplication::palette().color(QPalette::Window);
  for (const char* key : kLooks) {
    const QImage icon = Find<QAction>(key).icon().pixmap(64, 64).toImage();
    EXPECT_GT(ReadablePart(icon, window), 0.9) << key;
  }
}

TEST_F(LooksTest, TheLinesOfTheViewButtonsStandOutFromALightWindow) {
  StartWith(image_);
  for (const char* key : {"View Large Icons", "View List", "View Small Icons"}) {
    const QImage icon = Find<QAction>(key).icon().pixmap(64, 64).toImage();
    EXPECT_GT(ReadablePart(icon, QColor(239, 239, 239)), 0.9) << key;
  }
}

TEST_F(LooksTest, TheButtonOfTheViewModeThatIsOnIsPressedIn) {
  StartWith(image_);
  const auto on = [this] {
    QStringList keys;
    for (const char* key : kLooks) {
      EXPECT_TRUE(Find<QAction>(key).isCheckable());
      if (Find<QAction>(key).isChecked()) keys.append(QString::fromLatin1(key));
    }
    return keys;
  };
  EXPECT_EQ(on(), List({"View Details"}));
  for (const char* key : kLooks) {
    Find<QAction>(key).trigger();
    EXPECT_EQ(on(), List({key}));
    Find<QAction>(key).trigger();
    EXPECT_EQ(on(), List({key})) << "the mode that is on can't be turned off";
  }
}

TEST_F(LooksTest, TheArrowOfTheMenusThatDoNotFitStandsOutFromADarkWindow) {
  SetDarkPalette();
  SetPointSize(15);
  StartWith(image_);
  auto* arrow =
      window_->menuBar()->findChild<QToolButton*>(QStringLiteral("qt_menubar_ext_button"));
  ASSERT_NE(arrow, nullptr);
  ASSERT_TRUE(arrow->isVisible());
  EXPECT_GE(arrow->width(), 12);
  const QColor window = QApplication::palette().color(QPalette::Window);
  EXPECT_GT(ReadablePart(arrow->icon().pixmap(32, 32).toImage(), window), 0.9);
}

TEST_F(LooksTest, TheArrowFollowsAPaletteThatChangesWhileTheProgramRuns) {
  StartWith(image_);
  SetDarkPalette();
  Settle();
  auto* arrow =
      window_->menuBar()->findChild<QToolButton*>(QStringLiteral("qt_menubar_ext_button"));
  const QColor window = QApplication::palette().color(QPalette::Window);
  EXPECT_GT(ReadablePart(arrow->icon().pixmap(32, 32).toImage(), window), 0.9);
}

// --- File dialogs ------------------------------------------------------------------------------

class FileDialogLooks : public LooksTest, public ::testing::WithParamInterface<int> {};

TEST_P(FileDialogLooks, ShowTheNameTheSizeAndTheDateOfAFile) {
  if (GetParam() > 0) SetPointSize(GetParam());
  StartWith(image_, "NewDisc.adl");
  for (const char* entry : {"mnuDiscOpen", "mnuDiscNew80DSD", "mnuFileExport"}) {
    player_.Expect([&](QWidget& dialog) {
      Settle();
      auto& files = In<QTreeView>(dialog, "treeView");
      EXPECT_TRUE(files.isVisible()) << entry;
      const QHeaderView& header = *files.header();
      const QString date = QLocale().toString(QDateTime::currentDateTime(), QLocale::ShortFormat);
      const QString texts[] = {QStringLiteral("NewDisc.adl"), QStringLiteral("640.00 KiB"),
                               QString(), date};
      for (const int column : {0, 1, 3}) {
        const int room = std::min(header.sectionSize(column),
                                  files.viewport()->width() - header.sectionPosition(column));
        EXPECT_GE(room, files.fontMetrics().horizontalAdvance(texts[column]) + 4)
            << entry << " " << column;
      }
      EXPECT_TRUE(dialog.screen()->availableGeometry().contains(dialog.rect())) << entry;
      dynamic_cast<QDialog&>(dialog).reject();
    });
    ClickRow(QStringLiteral("ALPHA"));
    Choose(entry);
  }
}

INSTANTIATE_TEST_SUITE_P(PointSizes, FileDialogLooks, ::testing::Values(0, 12));

// --- The default size --------------------------------------------------------------------------

class DefaultSize : public LooksTest, public ::testing::WithParamInterface<const char*> {
 protected:
  ~DefaultSize() override { QLocale::setDefault(QLocale::c()); }
  // Panel n shows its whole text.
  void ExpectWhole(int n) {
    auto& panel = Find<QLabel>(("sbStatusBar" + std::to_string(n)).c_str());
    EXPECT_TRUE(panel.isVisible()) << n;
    EXPECT_GE(panel.width(), panel.sizeHint().width())
        << GetParam() << ": \"" << panel.text().toStdString() << "\"";
  }
};

TEST_P(DefaultSize, TheFreeSpaceAndTheDateAreWholeAtTheFirstStart) {
  QLocale::setDefault(QLocale(QString::fromLatin1(GetParam())));
  Start();
  ASSERT_EQ(window_->size(), QSize(433, 433));
  EXPECT_EQ(Panel(1), QStringLiteral(" 653568 Bytes Free,  1792 Bytes Used"));
  for (int n = 1; n <= 4; ++n) ExpectWhole(n);
}

TEST_P(DefaultSize, ALongPathLeavesTheFreeSpaceAndTheDateWhole) {
  QLocale::setDefault(QLocale(QString::fromLatin1(GetParam())));
  StartWith(image_);
  ClickRow(QStringLiteral("ALPHA"));
  window_->SetPanel2(QStringLiteral("$.GAMES.ARCADE.SHOOTERS.ELITE"));
  Settle();
  for (const int n : {1, 3, 4}) ExpectWhole(n);
}

INSTANTIATE_TEST_SUITE_P(Locales, DefaultSize,
                         ::testing::Values("C", "en_GB", "en_US", "de_DE", "fr_FR", "sv_SE",
                                           "hu_HU", "ko_KR", "fi_FI"),
                         [](const auto& locale) { return std::string(locale.param); });

}  // namespace
}  // namespace sectorbox::testing
