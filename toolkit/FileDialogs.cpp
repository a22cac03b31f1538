#include "toolkit/FileDialogs.h"

#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QListView>
#include <QLocale>
#include <QScreen>
#include <QTreeView>
#include <algorithm>

#include "toolkit/Text.h"

namespace sectorbox {
namespace {

// The columns of Qt's dialog.
constexpr int kNameColumn = 0;
constexpr int kSizeColumn = 1;
constexpr int kDateColumn = 3;

constexpr int kNameCharacters = 24;
constexpr int kCellRoom = 24;     // an icon or margins
constexpr int kAroundFiles = 60;  // frames, margins and a scroll bar
constexpr int kDialogHeight = 460;

// Cuts the patterns off "ADFS Disc (*.adl;*.adf)": Qt wants them in its own form.
QString WithoutPatterns(const QString& label) {
  const auto bracket = label.lastIndexOf(u'(');
  return (bracket < 0 ? label : label.left(bracket)).trimmed();
}

QString QtPatterns(const QString& patterns) {
  QStringList all;
  for (const QString& pattern : patterns.split(u';', Qt::SkipEmptyParts)) {
    const QString one = pattern.trimmed();
    all.append(one == QLatin1String("*.*") ? QStringLiteral("*") : one);
  }
  return all.join(u' ');
}

// Makes the dialog wide enough for the columns of names, sizes and dates, as far as the screen
// goes.
void MakeRoomForFiles(QFileDialog& dialog) {
  dialog.setViewMode(QFileDialog::Detail);
  auto* files = dialog.findChild<QTreeView*>(QStringLiteral("treeView"));
  const auto* places = dialog.findChild<QListView*>(QStringLiteral("sidebar"));
  if (files == nullptr || places == nullptr) return;
  QHeaderView& header = *files->header();
  const QFontMetrics metrics = files->fontMetrics();
  const auto widen = [&](int column, const QString& text) {
    const int wanted = metrics.horizontalAdvance(text) + kCellRoom;
    if (header.sectionSize(column) < wanted) header.resizeSection(column, wanted);
  };
  const QDateTime date(QDate(2026, 12, 28), QTime(22, 58, 58));
  widen(kNameColumn, QString(kNameCharacters, u'n'));
  widen(kSizeColumn, QStringLiteral("1023.99 KiB"));
  widen(kDateColumn, QLocale().toString(date, QLocale::ShortFormat));
  const int wide = header.length() + places->sizeHint().width() / 2 + kAroundFiles;
  const QSize screen = dialog.screen()->availableGeometry().size();
  // On a small screen the names give way, down to half of their room.
  const int names = header.sectionSize(kNameColumn);
  const int tooWide = std::clamp(wide - screen.width(), 0, names / 2);
  header.resizeSection(kNameColumn, names - tooWide);
  dialog.resize(dialog.size().expandedTo({wide, kDialogHeight}).boundedTo(screen));
}

std::string Ask(QWidget* parent, const FileQuestion& question, QFileDialog::AcceptMode mode) {
  QFileDialog dialog(parent, FromHost(question.Title));
  dialog.setObjectName(QStringLiteral("dlgCommonDialog"));
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  dialog.setAcceptMode(mode);
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setNameFilters(FiltersOf(question.Filter));
  if (!question.FileName.empty()) {
    const QString name = FromHost(question.FileName);
    // With a folder that doesn't exist, the dialog would begin at a place of its own choice.
    const QFileInfo info(name);
    dialog.selectFile(info.isAbsolute() && !info.dir().exists() ? info.fileName() : name);
  }
  MakeRoomForFiles(dialog);
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
  return ToHost(dialog.selectedFiles().constFirst());
}

}  // namespace

QStringList FiltersOf(const std::string& filter) {
  const QStringList parts = FromHost(filter).split(u'|');
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    filters.append(WithoutPatterns(parts[i]) + QStringLiteral(" (") + QtPatterns(parts[i + 1]) +
                   QStringLiteral(")"));
  }
  return filters;
}

std::string AskOpenFile(QWidget* parent, const FileQuestion& question) {
  return Ask(parent, question, QFileDialog::AcceptOpen);
}

std::string AskSaveFile(QWidget* parent, const FileQuestion& question) {
  return Ask(parent, question, QFileDialog::AcceptSave);
}

std::string AskFolder(QWidget* parent, const QString& caption, const QString& prompt) {
  QFileDialog dialog(parent, caption, QDir::homePath());
  dialog.setObjectName(QStringLiteral("objBD"));
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setLabelText(QFileDialog::FileName, prompt);
  MakeRoomForFiles(dialog);
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
  return ToHost(dialog.selectedFiles().constFirst());
}

}  // namespace sectorbox
