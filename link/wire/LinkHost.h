#pragma once

#include <cstdint>
#include <string>

#include "disc/ask/DiscHost.h"

namespace sectorbox {

// The title of every box of the link, but for those of the star-command console.
inline constexpr char kLinkTitle[] = "Sectorbox";

// The three counters of a transfer, as the dialog shows them.
struct TransferCounters {
  std::int32_t Retries = 0;
  std::int32_t BadCRCs = 0;
  std::int32_t BadSectors = 0;
};

enum class ReplaceAnswer { kYes, kNo, kCancel };

// Everything that the link wants from outside but the port itself: time, the event pump, boxes, the
// transfer dialog, the user's ticks, the trace window. All calls come on the one thread, inside the
// procedure that makes them. Handlers that run inside PumpEvents may only set flags of the Link.
class LinkHost {
 public:
  virtual ~LinkHost() = default;

  // --- Time ------------------------------------------------------------------------------------
  // A steady clock in milliseconds; only differences count.
  virtual std::int64_t Milliseconds() = 0;
  // Waits without running events.
  virtual void Sleep(std::int32_t milliseconds) = 0;
  // Lets waiting user actions run: at every poll of a wait and at fixed points of a send.
  virtual void PumpEvents() = 0;
  // Date and time as the locale writes them, in front of each line of the trace.
  virtual std::string DateAndTime() = 0;

  // --- Boxes and dialogs -----------------------------------------------------------------------
  virtual void ShowMessage(const std::string& text, const std::string& title) = 0;
  // A box with the warning icon, for failures of the host in the system's words.
  virtual void ShowWarning(const std::string& text) = 0;
  virtual ReplaceAnswer AskReplace(const std::string& text) = 0;
  // An empty text means that the user cancelled. Neither dialog tests or replaces anything.
  virtual std::string AskOpenFileName(const FileQuestion& question) = 0;
  virtual std::string AskSaveFileName(const FileQuestion& question) = 0;

  // --- The transfer dialog ---------------------------------------------------------------------
  // Opened once for a transfer. Its Abort sets Link::AbortRequested and closes the dialog at once;
  // the calls below then do nothing. FinishTransfer enables OK: the dialog stays until the user
  // presses it. CloseTransfer closes it, on every way out but the last, and may come twice.
  virtual void OpenTransfer(const std::string& caption) = 0;
  virtual void ShowChunk(const std::string& text) = 0;
  virtual void ShowTotal(const std::string& text) = 0;
  virtual void ShowCounters(const TransferCounters& counters) = 0;
  virtual void ShowPercent(float percent) = 0;  // 0 to 100
  virtual void FinishTransfer() = 0;
  virtual void CloseTransfer() = 0;

  // --- The user's choices, asked for at the moment of use --------------------------------------
  // The ticked speed, or 0 when none of the five is ticked.
  virtual std::int32_t TickedSpeed() = 0;
  virtual bool CheckBeforeTransfer() = 0;
  virtual bool PlayWaveOnSuccess() = 0;

  // --- Beside the program ----------------------------------------------------------------------
  // The executable's own folder, without a separator at its end.
  virtual std::string ProgramFolder() = 0;
  // Plays a sound file, to its end if wait is set. False if it didn't start; a missing file is
  // simply not heard.
  virtual bool PlayWave(const std::string& path, bool wait) = 0;

  // --- Trace -----------------------------------------------------------------------------------
  // Appends to the trace window; does nothing while that is not open.
  virtual void ShowTrace(const std::string& text) = 0;
};

}  // namespace sectorbox
