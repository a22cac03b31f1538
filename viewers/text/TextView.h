#pragma once

#include <string>

namespace sectorbox {

// The character style that a text view applies. The whole program has one. Only the Wordwise
// formatter changes it and no other view resets it, so after a document that ended inside an
// underlined stretch the next view is underlined too.
struct TextStyle {
  bool UnderlineOn = false;
  bool BoldOn = false;
};

// The sink of a text generator, and all that a generator asks of its window. The view window
// implements it, and so do the writer to a host file and a collector for tests. Texts are BBC
// bytes.
//
// A generator is a free function over the disc. It reads what it shows through the store, sets
// caption and DefaultName, and sets Finished at its end, unless its header says otherwise. A close
// request can arrive inside ShowData and ShowMessage and nowhere else. The window then sets
// Finished, and the generator stops where it tests Finished next, if it does.
class TextView {
 public:
  explicit TextView(TextStyle& style) : Style(style) {}
  virtual ~TextView() = default;
  TextView(const TextView&) = delete;
  TextView& operator=(const TextView&) = delete;

  // Puts a line feed behind every carriage return of text (in place) and hands the text to Append:
  // a generator writes only carriage returns. The window lets the event loop run once before a text
  // that is then longer than one character.
  void ShowData(std::string& text);
  void ShowData(std::string&& text) { ShowData(text); }

  // The window's title while it shows this view.
  virtual void SetCaption(const std::string& caption) = 0;
  // A box with OK, no icon. A generator shows none after a close request.
  virtual void ShowMessage(const std::string& text) = 0;
  // Makes the window wider by so many twips. Without a window it does nothing.
  virtual void WidenWindow(int twips) = 0;
  // Closes the window. A generator calls it when it ends after a close request. The view itself
  // stays usable until the generator's caller has returned.
  virtual void CloseWindow() = 0;

  // The name that the save dialog offers, as it is on the disc and without extension. The generator
  // sets it; the dialog shows the host's form of it.
  std::string DefaultName;
  // True when the generator has ended. A close request sets it earlier, to ask the generator to
  // stop.
  bool Finished = false;

  TextStyle& Style;

 protected:
  // text has its line feeds. Style says how it looks.
  virtual void Append(const std::string& text) = 0;
};

// The fixed end of a generator: it closes the window if a close request came meanwhile, and then
// sets Finished.
void EndView(TextView& view);

// Sets caption and DefaultName for a view of one file. The caption is verb and the file's name;
// verb ends in a blank, as in "View File - " and "Disassemble File - ".
void SetFileCaption(TextView& view, const std::string& verb, const std::string& name);

}  // namespace sectorbox
