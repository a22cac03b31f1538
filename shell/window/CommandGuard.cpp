#include "shell/window/CommandGuard.h"

namespace sectorbox {

bool CommandGuard::MayStart(CommandKind kind) const {
  for (const auto one : {CommandKind::kChange, CommandKind::kSmall, CommandKind::kExit}) {
    if (IsRunning(one)) return false;
  }
  const bool isHarmless = kind != CommandKind::kChange && kind != CommandKind::kTransfer;
  return isHarmless || !IsRunning(CommandKind::kTransfer);
}

}  // namespace sectorbox
