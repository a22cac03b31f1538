#pragma once

#include <string>

namespace sectorbox {

// What the engine tells the user without a question. A call only changes what the user sees.
class StatusLine {
 public:
  virtual ~StatusLine() = default;

  // The status line. With busy the front end adds ", please wait..."; an empty text is "Ready".
  virtual void SetStatus(const std::string& text, bool busy) = 0;
  // One line about something that the engine has left out, such as a link that leads back up. It
  // may come any number of times in one operation.
  virtual void Note(const std::string& line) = 0;
  // The same about something that the user asked for and that wasn't done, such as a locked file
  // that was to be replaced. The operation goes on; a front end that tells in the end how it went
  // counts these.
  virtual void NoteLeftOut(const std::string& line) { Note(line); }
  // The hourglass. Calls don't nest: the last one counts. BusyPointer makes both calls.
  virtual void SetBusyPointer(bool busy) = 0;
};

}  // namespace sectorbox
