#include "shell/dialogs/frmSplash.h"

#include <QGuiApplication>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QScreen>

#include "shell/dialogs/frmAbout.h"
#include "shell/icons/Icons.h"

namespace sectorbox {
namespace {

constexpr int kWidth = 420;
constexpr int kHeight = 200;
constexpr int kTextLeft = 150;

QLabel* MakeLine(QWidget* parent, const char* name, const QString& text, double points, int top,
                 const char* colour) {
  auto* label = new QLabel(text, parent);
  label->setObjectName(QString::fromLatin1(name));
  QFont font = label->font();
  font.setPointSizeF(points);
  label->setFont(font);
  QPalette palette = label->palette();
  palette.setColor(QPalette::WindowText, QColor(QLatin1String(colour)));
  label->setPalette(palette);
  label->setGeometry(kTextLeft, top, kWidth - kTextLeft - 12, label->fontMetrics().height() + 4);
  return label;
}

}  // namespace

frmSplash::frmSplash() : QWidget(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint) {
  setObjectName(QStringLiteral("frmSplash"));
  setWindowTitle(QStringLiteral("Sectorbox"));
  setFixedSize(kWidth, kHeight);
  QLabel* title = MakeLine(this, "lblProductName", QStringLiteral("Sectorbox"), 26, 46, "#f4efe2");
  QFont bold = title->font();
  bold.setBold(true);
  title->setFont(bold);
  MakeLine(this, "lblVersion", VersionLine(), 11, 102, "#f2c14e");
  MakeLine(this, "lblPlatform", QStringLiteral("for ADFS discs of the BBC Micro"), 11, 128,
           "#c9d1da");
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  move(screen.center() - rect().center());
}

void frmSplash::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), QColor(0x23, 0x2a, 0x36));
  painter.fillRect(0, height() - 8, width() / 3, 8, QColor(0xb0, 0x41, 0x3e));
  painter.fillRect(width() / 3, height() - 8, width() / 3, 8, QColor(0xf2, 0xc1, 0x4e));
  painter.fillRect(2 * width() / 3, height() - 8, width(), 8, QColor(0x2f, 0x5f, 0xa8));
  LoadIcon("sectorbox").paint(&painter, QRect(30, 46, 100, 100));
}

void ShowSplash(frmSplash& splash, const std::function<double()>& clock,
                const std::function<void()>& pump) {
  splash.show();
  splash.repaint();
  const double start = clock();
  while (clock() < start + kSplashSeconds) pump();
}

}  // namespace sectorbox
