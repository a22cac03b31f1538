#pragma once

#include <QString>
#include <QStringList>
#include <string>

#include "disc/ask/DiscHost.h"

class QWidget;

// File and folder dialogs. All give a host path, empty when the user cancelled.
namespace sectorbox {

// Turns "A (*.x;*.y)|*.x;*.y|B (*.*)|*.*" into the filters of a dialog: "A (*.x *.y)", "B (*)". The
// patterns match both cases, so that the dialog lists NEW.ADL too.
[[nodiscard]] QStringList FiltersOf(const std::string& filter);

// The open dialog takes names that don't exist. The caller tells the user in its own words.
[[nodiscard]] std::string AskOpenFile(QWidget* parent, const FileQuestion& question);
// The save dialog gives the name as it was typed, without adding a suffix, and doesn't ask before
// an existing file is replaced.
[[nodiscard]] std::string AskSaveFile(QWidget* parent, const FileQuestion& question);
// Asks for an existing folder. The prompt stands beside the chosen folder's name.
[[nodiscard]] std::string AskFolder(QWidget* parent, const QString& caption, const QString& prompt);

}  // namespace sectorbox
