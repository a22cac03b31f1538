#include "shell/window/CommandGuard.h"

namespace sectorbox {

bool CommandGuard::MayStart(CommandKind kind) const {
  for (const auto one : {CommandKind::kChange, CommandKind::kSmall, CommandKind::kExit}) {
    if (IsRunning(one)) return false;
  }
  if (kind == CommandKind::kSmall || kind == CommandKind::kExit) return true;
  return !IsRunning(CommandKind::kTransfer);
}

}  // namespace sectorbox
