#pragma once

#include <chrono>
#include <string>

#include "disc/host/HostFile.h"

namespace sectorbox {

// An advisory lock on a host file or device: only programs that ask for it notice it. Two programs,
// or two objects of this class in one program, never have it on the same file at the same time. It
// ends with the object, and with the program, however that ends.
class FileLock {
 public:
  // Waits for the lock at most as long as patience says. False if another program still has it
  // then. True if this object has it, and also if there is no such file or the host knows no locks
  // on it: then nobody else can have it either. What was locked before is given up first.
  [[nodiscard]] bool Take(const std::string& path, std::chrono::milliseconds patience);
  void Release() { (void)file_.Close(); }
  // True if the lock is held and path still names the file that it is on. A file that was replaced
  // has another lock.
  [[nodiscard]] bool IsOn(const std::string& path) const;

 private:
  OpenFileNumber file_;
};

}  // namespace sectorbox
