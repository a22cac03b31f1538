#include "shell/panes/StatusBar.h"

#include <QDateTime>
#include <QLocale>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QTextDocument>
#include <algorithm>

#include "toolkit/Twips.h"

namespace sectorbox {
namespace {

constexpr int kMargin = 4;
constexpr int kLeastCharacters = 5;
constexpr double kFontScale = 0.92;

// The locale's short time without its seconds.
QString ShortTime(const QTime& time) {
  QString pattern = QLocale().timeFormat(QLocale::ShortFormat);
  pattern.remove(QStringLiteral(":ss")).remove(QStringLiteral(".ss"));
  return QLocale().toString(time, pattern);
}

// A name on a disc may look like HTML. This keeps a tool tip from showing it as HTML.
QString AsToolTip(const QString& text) {
  return Qt::mightBeRichText(text) ? text.toHtmlEscaped() : text;
}

}  // namespace

Panel::Panel(const QString& name, Qt::TextElideMode mode, QWidget* parent)
    : QLabel(parent), mode_(mode) {
  setObjectName(name);
  setTextFormat(Qt::PlainText);
}

// A path that is cut at its start takes the spare width, and what the other panels need comes
// first.
QSize Panel::sizeHint() const {
  if (mode_ == Qt::ElideLeft) return minimumSizeHint();
  return {TextWidth(), fontMetrics().height() + 4};
}

int Panel::TextWidth() const {
  // One pixel more, because the width of a text is a fraction.
  return fontMetrics().horizontalAdvance(text()) + 1 + 2 * kMargin;
}

QSize Panel::minimumSizeHint() const {
  if (mode_ == Qt::ElideNone) return sizeHint();
  const int least = fontMetrics().horizontalAdvance(u'0') * kLeastCharacters + 2 * kMargin;
  return {std::min(least, TextWidth()), fontMetrics().height() + 4};
}

void Panel::SetElide(Qt::TextElideMode mode) {
  mode_ = mode;
  update();
}

void Panel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QRect inside = rect().adjusted(kMargin, 0, -kMargin, 0);
  const QString shown = fontMetrics().elidedText(text(), mode_, inside.width());
  style()->drawItemText(&painter, inside, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                        palette(), isEnabled(), shown, foregroundRole());
  painter.setPen(palette().color(QPalette::Mid));
  painter.drawLine(width() - 1, 3, width() - 1, height() - 4);
}

StatusBar::StatusBar(QWidget* parent)
    : QStatusBar(parent),
      text_(new Panel(QStringLiteral("sbStatusBar1"), Qt::ElideRight, this)),
      path_(new Panel(QStringLiteral("sbStatusBar2"), Qt::ElideLeft, this)),
      date_(new Panel(QStringLiteral("sbStatusBar3"), Qt::ElideNone, this)),
      time_(new Panel(QStringLiteral("sbStatusBar4"), Qt::ElideNone, this)) {
  setObjectName(QStringLiteral("sbStatusBar"));
  setStyleSheet(QStringLiteral("QStatusBar::item { border: none; }"));
  setSizeGripEnabled(true);
  QFont small = font();
  small.setPointSizeF(small.pointSizeF() * kFontScale);
  for (Panel* panel : {text_, path_, date_, time_}) panel->setFont(small);
  addWidget(text_);
  addWidget(path_, 1);
  addPermanentWidget(date_);
  addPermanentWidget(time_);
  SetText(QStringLiteral("Ready"));
  connect(&clock_, &QTimer::timeout, this, [this] { ShowClock(); });
  clock_.start(1000);
  ShowClock();
}

void StatusBar::SetText(const QString& text) {
  text_->setText(text);
  text_->setToolTip(AsToolTip(text));
}

void StatusBar::SetPath(const QString& text) {
  ShowInPanel2(text, Qt::ElideLeft, false);
}

void StatusBar::SetNote(const QString& text) {
  // The line is cut in its middle, because both ends matter: the start names the thing, the end
  // tells the reason.
  ShowInPanel2(text, Qt::ElideMiddle, true);
}

void StatusBar::ShowInPanel2(const QString& text, Qt::TextElideMode mode, bool isAlone) {
  path_->setText(text);
  path_->setToolTip(AsToolTip(text));
  path_->SetElide(mode);
  for (Panel* panel : {text_, date_, time_}) panel->setHidden(isAlone);
}

void StatusBar::ShowClock() {
  const QDateTime now = QDateTime::currentDateTime();
  const QString date = QLocale().toString(now.date(), QLocale::ShortFormat);
  const QString time = ShortTime(now.time());
  if (date_->text() != date) date_->setText(date);
  if (time_->text() != time) time_->setText(time);
}

}  // namespace sectorbox
