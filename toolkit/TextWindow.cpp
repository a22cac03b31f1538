#include "toolkit/TextWindow.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QMenuBar>
#include <QPrinter>
#include <QTextDocument>

#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "toolkit/Boxes.h"
#include "toolkit/FileDialogs.h"
#include "toolkit/Printing.h"
#include "toolkit/Text.h"

namespace sectorbox {

TextWindow::TextWindow(QWidget& window, const char* areaName, double pointSize, TextSearch& search,
                       int findPos)
    : FindPos(findPos), window_(window), area_(new TextArea(&window, pointSize)), search_(search) {
  area_->setObjectName(QLatin1String(areaName));
  area_->setAccessibleName(QStringLiteral("Text"));
}

template <typename Handler>
QAction* TextWindow::AddEntry(QMenu& menu, const char* name, const char* caption, Handler handler) {
  QAction* action = menu.addAction(QLatin1String(caption));
  action->setObjectName(QLatin1String(name));
  QObject::connect(action, &QAction::triggered, &window_, handler);
  return action;
}

TextWindow::TextMenus TextWindow::MakeTextMenus(QMenuBar& bar) {
  TextMenus menus{};
  menus.File = bar.addMenu(QStringLiteral("&File"));
  AddEntry(*menus.File, "mnuFileSave", "&Save File...", [this] { mnuFileSave_Click(); });
  AddEntry(*menus.File, "mnuFilePrint", "&Print File", [this] { mnuFilePrint_Click(); });
  AddEntry(*menus.File, "mnuFileClose", "&Close", [this] { window_.close(); });
  menus.Edit = bar.addMenu(QStringLiteral("&Edit"));
  menus.Find = AddEntry(*menus.Edit, "mnuEditFind", "&Find...", [this] { mnuEditFind_Click(); });
  menus.Next = AddEntry(*menus.Edit, "mnuEditNext", "Find &Next", [this] { mnuEditNext_Click(); });
  menus.Copy = AddEntry(*menus.Edit, "mnuEditCopy", "&Copy", [this] { mnuEditCopy_Click(); });
  menus.SelectAll = AddEntry(*menus.Edit, "mnuEditSelectAll", "Select &All",
                             [this] { area_->SelectEverything(); });
  return menus;
}

void TextWindow::mnuFileSave_Click() {
  const std::string path = AskSaveFile(&window_, TextFileQuestion(SaveName()));
  if (path.empty()) return;
  try {
    CheckSavePath(path);
    OutputFile file = CreateOutputFile(path);
    file.Write(ToBbc(area_->WholeText()) + "\r\n");
    file.Close();
  } catch (const HostError& error) {
    ShowError(error);
  }
}

void TextWindow::mnuFilePrint_Click() {
  QPrinter printer;
  if (PrinterOrTellTheUser(window_, printer)) PrintTo(printer);
}

void TextWindow::PrintTo(QPrinter& printer) {
  QTextDocument document;
  document.setDefaultFont(area_->font());
  document.setPlainText(area_->WholeText() + QStringLiteral("\r\n"));
  printer.setDocName(window_.windowTitle());
  document.print(&printer);
}

void TextWindow::mnuEditFind_Click() {
  frmFind dialog(&window_, search_);
  dialog.exec();
  FindPos = -1;
  if (!search_.FindOK) return;
  FindPos = area_->Find(search_.FindText, 0);
  if (FindPos == -1) ShowBox(&window_, QStringLiteral("Text Not Found"));
}

void TextWindow::mnuEditNext_Click() {
  if (FindPos != -1) FindPos = area_->Find(search_.FindText, FindPos + 1);
}

void TextWindow::mnuEditCopy_Click() {
  QClipboard* clipboard = QApplication::clipboard();
  clipboard->clear();
  clipboard->setText(area_->SelectedText());
}

void TextWindow::ShowError(const std::exception& error) {
  ShowBox(&window_, FromHost(error.what()), QStringLiteral("Sectorbox"), BoxIcon::kExclamation);
}

FileQuestion TextFileQuestion(const std::string& name) {
  return {"Save File As", "Save File (*.TXT)|*.txt|All Files (*.*)|*.*", name};
}

}  // namespace sectorbox
