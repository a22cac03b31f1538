#include "tests/support/WindowFixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSettings>
#include <QTest>
#include <algorithm>

#include "shell/program/Application.h"
#include "tests/support/NoBlockDevices.h"
#include "toolkit/Text.h"

namespace sectorbox::testing {
namespace {

constexpr int kTickMilliseconds = 5;
constexpr int kMostTicksOpen = 2000;  // ten seconds

void CloseModal(QWidget& dialog) {
  if (auto* asDialog = qobject_cast<QDialog*>(&dialog)) {
    asDialog->done(QDialog::Rejected);
  } else {
    dialog.close();
  }
}

QMessageBox* AsBox(QWidget& dialog, const QString& text) {
  auto* box = qobject_cast<QMessageBox*>(&dialog);
  if (box == nullptr) {
    ADD_FAILURE() << "expected the box \"" << text.toStdString() << "\", found "
                  << dialog.objectName().toStdString() << " \""
                  << dialog.windowTitle().toStdString() << "\"";
    CloseModal(dialog);
  }
  return box;
}

void CollectNodes(const QTreeWidgetItem* node, QStringList& names) {
  names.append(node->text(0));
  for (int i = 0; i < node->childCount(); ++i) CollectNodes(node->child(i), names);
}

}  // namespace

DialogPlayer::DialogPlayer() {
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Tick(); });
  timer_.start(kTickMilliseconds);
}

DialogPlayer::~DialogPlayer() {
  if (!AllPlayed()) ADD_FAILURE() << answers_.size() << " expected dialog(s) never came up";
}

// The window makes some dialogs once and uses them again: one that was closed may be the next.
void DialogPlayer::ForgetClosed() {
  std::erase_if(answered_, [](const QPointer<QWidget>& dialog) {
    return dialog.isNull() || !dialog->isVisible();
  });
}

void DialogPlayer::Tick() {
  ForgetClosed();
  QWidget* dialog = QApplication::activeModalWidget();
  if (dialog == nullptr || !dialog->isVisible()) return;
  if (PassOverProgress && dialog->objectName() == QStringLiteral("frmSave")) return;
  // A dialog that has opened others is the topmost again for a moment when one of them closes.
  if (std::find(answered_.begin(), answered_.end(), dialog) != answered_.end()) {
    if (++ticksOpen_ < kMostTicksOpen) return;
    ADD_FAILURE() << "left open: " << dialog->windowTitle().toStdString();
    CloseModal(*dialog);
    return;
  }
  if (answers_.empty()) {
    const auto* box = qobject_cast<QMessageBox*>(dialog);
    ADD_FAILURE() << "unexpected dialog: " << dialog->windowTitle().toStdString() << " "
                  << (box == nullptr ? std::string() : box->text().toStdString());
    CloseModal(*dialog);
    return;
  }
  const auto answer = answers_.front();
  answers_.pop_front();
  answered_.emplace_back(dialog);
  ticksOpen_ = 0;
  // The answer runs from a timer of its own. It may open a box, and this timer must go on to serve
  // that box, but a timer doesn't run again inside its own call.
  QTimer::singleShot(0, &timer_, [this, answer, held = QPointer<QWidget>(dialog)] {
    if (held == nullptr) return;
    answer(*held);
    ForgetClosed();
  });
}

void DialogPlayer::Expect(std::function<void(QWidget&)> answer) {
  answers_.push_back(std::move(answer));
}

void DialogPlayer::ExpectBox(const QString& text, const QString& title) {
  Expect([=](QWidget& dialog) {
    auto* box = AsBox(dialog, text);
    if (box == nullptr) return;
    EXPECT_EQ(box->text().toStdString(), text.toStdString());
    if (!title.isEmpty()) {
      EXPECT_EQ(box->windowTitle().toStdString(), title.toStdString());
    }
    box->button(QMessageBox::Ok)->click();
  });
}

void DialogPlayer::ExpectYesNo(const QString& text, bool yes) {
  Expect([=](QWidget& dialog) {
    auto* box = AsBox(dialog, text);
    if (box == nullptr) return;
    EXPECT_EQ(box->text().toStdString(), text.toStdString());
    box->button(yes ? QMessageBox::Yes : QMessageBox::No)->click();
  });
}

void DialogPlayer::ExpectFileDialog(const std::string& path) {
  ExpectFileDialog(path, [](QWidget&) {});
}

void DialogPlayer::ExpectFileDialog(const std::string& path, std::function<void(QWidget&)> look) {
  Expect([=](QWidget& dialog) {
    auto* files = qobject_cast<QFileDialog*>(&dialog);
    EXPECT_NE(files, nullptr) << dialog.windowTitle().toStdString();
    if (files == nullptr) return CloseModal(dialog);
    look(*files);
    if (path.empty()) return files->reject();
    auto* name = files->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    // When a user types, the dialog takes the mark off the file that it began with. Without the
    // focus it doesn't.
    files->findChild<QListView*>(QStringLiteral("listView"))->clearSelection();
    name->setText(FromHost(path));
    QMetaObject::invokeMethod(files, "accept");
  });
}

WindowTest::WindowTest() {
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, FromHost(folder_ / "settings"));
  qputenv("TMPDIR", QByteArray::fromStdString(folder_.Path()));
}

WindowTest::~WindowTest() {
  window_.reset();
  disc_.reset();
  host_.reset();
  qunsetenv("TMPDIR");
}

frmMain& WindowTest::Start(const std::string& commandLine) {
  std::unique_ptr<RawDevice> device;
  if (useHostCards_) {
    device = MakeHostDevice();
  } else {
    auto memory = std::make_unique<MemoryDevice>(std::uint64_t{64} << 20);
    device_ = memory.get();
    device = std::move(memory);
  }
  host_ = std::make_unique<WindowHost>();
  host_->Drives = CardDrives(std::make_unique<NoBlockDevices>());
  disc_ = std::make_unique<Disc>(*host_, MakeCardDevice(host_->Drives, std::move(device)));
  window_ = std::make_unique<frmMain>(*disc_, *host_, end_);
  window_->Load(commandLine);
  Settle();
  return *window_;
}

frmMain& WindowTest::StartWith(const ImageBuilder& image, const std::string& name) {
  image.WriteInterleavedTo(folder_ / name);
  return Start("\"" + (folder_ / name) + "\"");
}

frmMain& WindowTest::StartAgain(const std::string& commandLine) {
  window_.reset();
  disc_.reset();
  host_.reset();
  return Start(commandLine);
}

void WindowTest::Choose(const char* entry) {
  ASSERT_TRUE(window_->Action(entry)->isEnabled()) << entry;
  window_->Action(entry)->trigger();
  Settle();
}

QString WindowTest::Panel(int n) {
  return Find<QLabel>(("sbStatusBar" + std::to_string(n)).c_str()).text();
}

QStringList WindowTest::Names() {
  QStringList names;
  for (const ListRow& row : window_->ThePanes().List().Model().Rows()) {
    names.append(FromBbc(row.Name()));
  }
  return names;
}

QStringList WindowTest::Nodes() {
  QStringList names;
  const DirTree& tree = window_->ThePanes().Tree();
  for (int i = 0; i < tree.topLevelItemCount(); ++i) CollectNodes(tree.topLevelItem(i), names);
  return names;
}

DirNode& WindowTest::Node(const QString& text) {
  for (QTreeWidgetItemIterator i(&window_->ThePanes().Tree()); *i != nullptr; ++i) {
    if ((*i)->text(0) == text) return static_cast<DirNode&>(**i);
  }
  throw std::runtime_error("no such node: " + text.toStdString());
}

int WindowTest::Row(const QString& name) {
  const auto row = Names().indexOf(name);
  if (row < 0) throw std::runtime_error("no such row: " + name.toStdString());
  return static_cast<int>(row);
}

void WindowTest::ClickRow(const QString& name, Qt::KeyboardModifiers modifiers) {
  FileList& list = window_->ThePanes().List();
  const QModelIndex index = list.Model().index(Row(name), 0);
  list.scrollTo(index);
  QTest::mouseClick(list.viewport(), Qt::LeftButton, modifiers,
                    list.visualRect(index).topLeft() + QPoint(25, 8));
}

void WindowTest::SelectRows(const QStringList& names) {
  window_->ThePanes().List().clearSelection();
  bool first = true;
  for (const QString& name : names) {
    ClickRow(name, first ? Qt::NoModifier : Qt::ControlModifier);
    first = false;
  }
}

void WindowTest::ClickNode(const QString& text) {
  DirTree& tree = window_->ThePanes().Tree();
  DirNode& node = Node(text);
  tree.scrollToItem(&node);
  QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, tree.visualItemRect(&node).center());
}

void WindowTest::Press(QWidget& target, Qt::Key key, Qt::KeyboardModifiers modifiers) {
  QTest::keyClick(&target, key, modifiers);
  Settle();
}

void WindowTest::Settle() {
  for (int i = 0; i < 3; ++i) QApplication::processEvents();
}

}  // namespace sectorbox::testing

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  sectorbox::Application application(argc, argv);
  return RUN_ALL_TESTS();
}
