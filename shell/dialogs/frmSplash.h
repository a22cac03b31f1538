#pragma once

#include <QWidget>
#include <functional>

namespace sectorbox {

// The window that is on the screen before the main window exists.
class frmSplash : public QWidget {
 public:
  frmSplash();

 protected:
  void paintEvent(QPaintEvent* event) override;
};

// Shows the splash for four seconds of the given clock (seconds of any origin), and runs pump over
// and over meanwhile. The user can't shorten it. The splash still shows when this returns.
inline constexpr double kSplashSeconds = 4.0;
void ShowSplash(frmSplash& splash, const std::function<double()>& clock,
                const std::function<void()>& pump);

}  // namespace sectorbox
