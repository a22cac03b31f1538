#pragma once

#include <functional>
#include <string>
#include <vector>

#include "viewers/text/TextView.h"

namespace sectorbox::testing {

// A text view for tests: keeps everything that a generator does to it. As the window does, it can
// let the user act before each text of more than one character (OnYield) and at each box (OnBox).
class CollectingView : public TextView {
 public:
  CollectingView() : TextView(ownStyle_) {}
  explicit CollectingView(TextStyle& style) : TextView(style) {}

  std::string Text;                   // all that was shown, with its line feeds
  std::vector<std::string> Texts;     // one for each call of ShowData
  std::string Styles;                 // for each character of Text: ' ', 'U', 'B' or '*' for both
  std::vector<std::string> Captions;  // in the order in which they were set
  std::vector<std::string> Messages;
  int Widened = 0;  // twips
  int Closed = 0;   // calls of CloseWindow
  std::function<void()> OnYield;
  std::function<void()> OnBox;

  void SetCaption(const std::string& caption) override { Captions.push_back(caption); }
  void ShowMessage(const std::string& text) override {
    Messages.push_back(text);
    if (OnBox) OnBox();
  }
  void WidenWindow(int twips) override { Widened += twips; }
  void CloseWindow() override { ++Closed; }

  // Text with LF for CR LF, which is easier to write down.
  std::string Plain() const {
    std::string plain;
    for (const char c : Text) {
      if (c != '\r') plain += c;
    }
    return plain;
  }

 protected:
  void Append(const std::string& text) override {
    if (text.size() > 1 && OnYield) OnYield();
    Text += text;
    Texts.push_back(text);
    const char style = Style.UnderlineOn ? (Style.BoldOn ? '*' : 'U') : (Style.BoldOn ? 'B' : ' ');
    Styles.append(text.size(), style);
  }

 private:
  TextStyle ownStyle_;
};

}  // namespace sectorbox::testing
