#pragma once

#include <array>
#include <cstddef>

namespace sectorbox {

// The kinds of commands that the user can start. The guard decides by the kind.
enum class CommandKind {
  kChange,    // changes the disc, opens another one, or keeps the user in a dialog
  kTransfer,  // talks to the BBC; leaves the disc alone
  kView,      // reads the disc and shows it in a window of its own; the help
  kSmall,     // a short step that changes no disc: a move in the panes, the trace
  kExit,      // the end of the program
};
inline constexpr int kCommandKinds = 5;

// The one guard against commands inside commands. A long command lets events run, so that its
// buttons work and the windows are painted. In these events the user may choose another command.
// This class decides whether that command starts. If it doesn't start, it is dropped: it isn't kept
// until the first command ends.
//
//   inside kChange, kSmall, kExit   nothing starts
//   inside kTransfer                kSmall and kExit start: a transfer may take an hour, and a move
//                                   in the panes doesn't use the line. A view doesn't start: some
//                                   views are dialogs, and the BBC would wait until the user closes
//                                   them
//   inside kView                    everything starts: a view only reads, and users often leave its
//                                   window open while they go on working. The view shows each byte
//                                   as it is when the view reads it
class CommandGuard {
 public:
  // While this object lives, a command of that kind counts as running. The constructor doesn't ask
  // MayStart. The code that starts a command asks it first.
  class Running {
   public:
    Running(CommandGuard& guard, CommandKind kind) : guard_(guard), kind_(kind) {
      ++guard_.Count(kind_);
    }
    ~Running() { --guard_.Count(kind_); }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

   private:
    CommandGuard& guard_;
    CommandKind kind_;
  };

  [[nodiscard]] bool MayStart(CommandKind kind) const;

 private:
  int& Count(CommandKind kind) { return running_.at(static_cast<std::size_t>(kind)); }
  bool IsRunning(CommandKind kind) const { return running_.at(static_cast<std::size_t>(kind)) > 0; }

  std::array<int, kCommandKinds> running_{};
};

}  // namespace sectorbox
