#include "toolkit/Printing.h"

#include <QPrinter>

#include "toolkit/Boxes.h"

namespace sectorbox {

bool PrinterOrTellTheUser(QWidget& window, const QPrinter& printer) {
  const bool nowhere =
      printer.outputFormat() == QPrinter::PdfFormat && printer.outputFileName().isEmpty();
  if (nowhere) TellThatThereIsNoPrinter(window);
  return !nowhere;
}

void TellThatThereIsNoPrinter(QWidget& window) {
  ShowBox(&window, QStringLiteral("No printer is set up."), QStringLiteral("Sectorbox"),
          BoxIcon::kExclamation);
}

}  // namespace sectorbox
