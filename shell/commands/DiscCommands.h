#pragma once

#include <QObject>
#include <cstdint>

namespace sectorbox {

class MainWindow;
class Panes;

// The Disc menu without the free space map, which is a view, and without the program's end.
class DiscCommands : public QObject {
 public:
  DiscCommands(MainWindow& window, Panes& panes);

 private:
  void mnuDiscBoot();
  void mnuDiscCompact();
  void mnuDiscResizeUser();
  void Resize(std::int32_t tracks);

  MainWindow& window_;
  Panes& panes_;
};

}  // namespace sectorbox
