#pragma once

#include <string>

namespace sectorbox {

// The character style that a text view applies. One for the whole program: only the Wordwise
// formatter changes it, and no other view resets it, so a view started after a document that ended
// inside an underlined stretch is styled the same way.
struct TextStyle {
  bool UnderlineOn = false;
  bool BoldOn = false;
};

// Where a text generator writes, and all that it asks of its window. Implemented by the view
// window, by a writer to a host file, and by a collector for tests. Texts are BBC bytes.
//
// A generator is a free function over the disc. It reads what it shows through the store, sets
// caption and DefaultName, and leaves Finished true (the two exceptions say so). A close request
// can arrive inside ShowData and ShowMessage and nowhere else: the window then sets Finished, and
// the generator stops at its next test of it, if it has one.
class TextView {
 public:
  explicit TextView(TextStyle& style) : Style(style) {}
  virtual ~TextView() = default;
  TextView(const TextView&) = delete;
  TextView& operator=(const TextView&) = delete;

  // The one sink. Puts a line feed behind every carriage return of text (in place), then hands it
  // to Append: a generator only ever writes carriage returns. The window lets the event loop run
  // once before a text that is longer than one character by then.
  void ShowData(std::string& text);
  void ShowData(std::string&& text) { ShowData(text); }

  // The window's title while it shows this view.
  virtual void SetCaption(const std::string& caption) = 0;
  // A box with OK, no icon. Nothing is shown once a close request has come.
  virtual void ShowMessage(const std::string& text) = 0;
  // Makes the window wider by so many twips. Nothing where there is no window.
  virtual void WidenWindow(int twips) = 0;
  // Closes the window, which a generator does when it ends after a close request. The view itself
  // stays usable until the generator's caller has returned.
  virtual void CloseWindow() = 0;

  // Name offered by the save dialog, as it is on the disc and without extension. The generator sets
  // it; the dialog shows the host's form of it.
  std::string DefaultName;
  // Set when the generator has ended; set before that by a close request, which asks the generator
  // to stop.
  bool Finished = false;

  TextStyle& Style;

 protected:
  // text has its line feeds. Style says how it looks.
  virtual void Append(const std::string& text) = 0;
};

// The fixed end of a generator: close the window if that was asked for meanwhile, then be finished.
void EndView(TextView& view);

// Caption and DefaultName of the views of one file. verb stands before the name and brings its own
// blank: "View File - " or "Disassemble File - ".
void SetFileCaption(TextView& view, const std::string& verb, const std::string& name);

}  // namespace sectorbox
