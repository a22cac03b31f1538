#pragma once

#include <array>
#include <cstddef>

namespace sectorbox {

// What the user can start, by what it may disturb.
enum class CommandKind {
  kChange,    // changes the disc, opens another one, or keeps the user in a dialog
  kTransfer,  // talks to the BBC; leaves the disc alone
  kView,      // reads the disc and shows it in a window of its own; the help
  kSmall,     // a short step that changes no disc: a move in the panes, the trace
  kExit,      // the end of the program
};
inline constexpr int kCommandKinds = 5;

// The one guard against commands inside commands. A long command lets events run, so that its
// buttons work and the windows are painted. In these events the user may choose the next command:
// this class decides whether that one starts. What doesn't start is dropped; it doesn't wait.
//
//   inside kChange, kSmall, kExit   nothing starts
//   inside kTransfer                kSmall and kExit start: a transfer may take an hour, and moving
//                                   about in the panes doesn't touch the line. A view doesn't
//                                   start: some views are dialogs, and the BBC would wait for their
//                                   end
//   inside kView                    everything starts: a view only reads, and its window is often
//                                   left open while the user goes on working. It reads the bytes as
//                                   they are when it comes to them
class CommandGuard {
 public:
  // Marks a command of that kind as running for as long as it lives. It asks nobody: whoever starts
  // what a user has chosen asks MayStart first.
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
