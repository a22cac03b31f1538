#pragma once

class QPrinter;
class QWidget;

namespace sectorbox {

// What a text or picture window asks before it prints. True if the printer prints on something: a
// QPrinter that was made without a default printer in the system prints into a file without a name.
// Otherwise the user is told, in a box over the window, that there is no printer.
[[nodiscard]] bool PrinterOrTellTheUser(QWidget& window, const QPrinter& printer);

// Tells the user, in a box over the window, that there is no printer.
void TellThatThereIsNoPrinter(QWidget& window);

}  // namespace sectorbox
