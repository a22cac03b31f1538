#pragma once

#include <QString>
#include <QStringList>
#include <string>

#include "disc/ask/DiscHost.h"

class QWidget;

// File and folder dialogs. All give a host path, empty when the user cancelled.
namespace sectorbox {

// "A (*.x;*.y)|*.x;*.y|B (*.*)|*.*" as the filters of a dialog: "A (*.x *.y)", "B (*)". Matching
// is without regard to case, so that NEW.ADL is listed too.
QStringList FiltersOf(const std::string& filter);

// The open dialog takes names that don't exist: who asked tells the user so in its own words.
std::string AskOpenFile(QWidget* parent, const FileQuestion& question);
// The save dialog gives the name as it was typed, without adding a suffix, and doesn't ask before
// an existing file is replaced.
std::string AskSaveFile(QWidget* parent, const FileQuestion& question);
// An existing folder. The prompt stands beside the chosen folder's name.
std::string AskFolder(QWidget* parent, const QString& caption, const QString& prompt);

}  // namespace sectorbox
