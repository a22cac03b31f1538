#pragma once

#include <QString>

class QWidget;

// Message boxes. All are modal; they return when the user has answered.
namespace sectorbox {

enum class BoxIcon { kNone, kInformation, kExclamation, kCritical };

// A box with OK.
void ShowBox(QWidget* parent, const QString& text,
             const QString& title = QStringLiteral("Sectorbox"), BoxIcon icon = BoxIcon::kNone);
// A box with Yes and No; true for Yes. The user has to choose: neither Escape nor the window's
// frame closes it.
[[nodiscard]] bool AskYesNoBox(QWidget* parent, const QString& text, const QString& title);

}  // namespace sectorbox
