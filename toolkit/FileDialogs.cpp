#include "toolkit/FileDialogs.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

#include "toolkit/Text.h"

namespace sectorbox {
namespace {

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
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
  return ToHost(dialog.selectedFiles().constFirst());
}

}  // namespace sectorbox
