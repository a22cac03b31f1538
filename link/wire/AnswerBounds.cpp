#include "link/wire/AnswerBounds.h"

namespace sectorbox {

AnswerBounds::AnswerBounds(Link& link, std::size_t mostBytes, std::int32_t patience)
    : link_(link), mostBytes_(mostBytes), patience_(patience), start_(link.Host.Milliseconds()) {}

bool AnswerBounds::Take(std::size_t bytes) {
  bytes_ += bytes;
  if (IsTooLong()) return false;
  return link_.Host.Milliseconds() - start_ <= patience_ + 2 * TimeOnTheLine(link_, bytes_);
}

}  // namespace sectorbox
