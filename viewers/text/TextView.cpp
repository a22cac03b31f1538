#include "viewers/text/TextView.h"

namespace sectorbox {

void TextView::ShowData(std::string& text) {
  for (auto at = text.find('\r'); at != std::string::npos; at = text.find('\r', at + 2)) {
    text.insert(at + 1, 1, '\n');
  }
  Append(text);
}

void EndView(TextView& view) {
  if (view.Finished) view.CloseWindow();
  view.Finished = true;
}

void SetFileCaption(TextView& view, const std::string& verb, const std::string& name) {
  view.SetCaption(verb + name);
  view.DefaultName = name;
}

}  // namespace sectorbox
