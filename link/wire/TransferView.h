#pragma once

#include <cstdint>
#include <string>

namespace sectorbox {

// The counters of a transfer. The dialog shows the first three.
struct TransferCounters {
  std::int32_t Retries = 0;
  std::int32_t BadCRCs = 0;
  std::int32_t BadSectors = 0;  // exchanges that failed because of the BBC's disc
  // Sectors that couldn't be read or written alone either, and were left out. The dialog doesn't
  // show this number.
  std::int32_t GivenUp = 0;
};

// The transfer dialog. Its Abort sets Link::AbortRequested and closes the dialog at once; the calls
// below then do nothing. The image file stays as far as it got then, and the next transfer may
// resume over it.
class TransferView {
 public:
  virtual ~TransferView() = default;

  // What the transfer does before its dialog opens, such as "Connecting to the BBC". An empty text
  // comes when that is over, in every case. It must not throw. A front end may leave it out.
  virtual void ShowStep(const std::string& text) { (void)text; }
  // Comes once in each transfer, before its first chunk.
  virtual void OpenTransfer(const std::string& caption) = 0;
  // The next chunk, before its exchange; again before each retry.
  virtual void ShowChunk(const std::string& text) = 0;
  // The running total, at the start and after each chunk.
  virtual void ShowTotal(const std::string& text) = 0;
  // The counters, at the start and whenever one has changed.
  virtual void ShowCounters(const TransferCounters& counters) = 0;
  // 0 to 100, after each chunk.
  virtual void ShowPercent(float percent) = 0;
  // The transfer ran to its end: OK is enabled, and the dialog stays until the user presses it.
  virtual void FinishTransfer() = 0;
  // Closes the dialog on every other way out. It may come twice, and without OpenTransfer before.
  virtual void CloseTransfer() = 0;
};

}  // namespace sectorbox
