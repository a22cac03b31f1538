#include "shell/window/CommandGuard.h"

namespace sectorbox {

bool CommandGuard::MayStart(CommandKind kind) const {
  for (const auto one : {CommandKind::kChange, CommandKind::kSmall, CommandKind::kExit}) {
    if (IsRunning(one)) return false;
  }
  if (!IsRunning(CommandKind::kTransfer)) return true;
  return kind == CommandKind::kSmall || kind == CommandKind::kExit;
}

}  // namespace sectorbox
