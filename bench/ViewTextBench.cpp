// How long the text area of a view keeps the window from answering if a file of a million bytes is
// one single line: when the text is put in and drawn for the first time, and at each step of a
// scroll. Offscreen.
//
//   view_text_bench [CHARACTERS]
//
// Prints milliseconds. The limits for a million characters: put in 250, scroll 100.

#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "toolkit/TextArea.h"

namespace {

double MillisecondsOf(const auto& work) {
  QElapsedTimer timer;
  timer.start();
  work();
  return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace sectorbox;
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  const int characters = argc > 1 ? std::atoi(argv[1]) : 1'000'000;
  constexpr int kPrintable = 95;
  std::string line;
  for (int i = 0; i < characters; ++i) line += static_cast<char>(' ' + i * 7LL % kPrintable);

  TextArea area(nullptr, 9.75);
  area.setLineWrapMode(QPlainTextEdit::NoWrap);
  area.resize(720, 420);
  area.show();
  QCoreApplication::processEvents();
  const double put = MillisecondsOf([&] {
    area.AppendText(line, {});
    area.Flush();
  });
  const double drawn = MillisecondsOf([&] {
    area.SetCaret(0);
    QCoreApplication::processEvents();
  });
  double worst = 0;
  constexpr int kTurns = 20;
  QScrollBar& bar = *area.horizontalScrollBar();
  for (int turn = 1; turn <= kTurns; ++turn) {
    worst = std::max(worst, MillisecondsOf([&] {
                       bar.setValue(bar.maximum() / kTurns * turn);
                       QCoreApplication::processEvents();
                     }));
  }
  std::printf("put in: %.1f ms\nfirst drawing: %.1f ms\nscroll: %.1f ms at worst\n", put, drawn,
              worst);
  return 0;
}
