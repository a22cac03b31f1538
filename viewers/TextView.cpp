#include "viewers/TextView.h"

namespace sectorbox {

void TextView::ShowData(std::string& text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '\r') text.insert(++at, 1, '\n');
  }
  Append(text);
}

void EndView(TextView& view) {
  if (view.Finished) view.CloseWindow();
  view.Finished = true;
}

}  // namespace sectorbox
