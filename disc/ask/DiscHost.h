#pragma once

#include "disc/ask/DiscFollowers.h"
#include "disc/ask/DiscOptions.h"
#include "disc/ask/LongWork.h"
#include "disc/ask/Questions.h"
#include "disc/ask/StatusLine.h"

namespace sectorbox {

// Everything that the disc engine wants from outside, one base class for each topic. The window,
// the command line and the tests each have one. All calls come on the one thread, inside the engine
// operation that makes them. A function that needs one topic only takes that topic's class.
class DiscHost : public Questions,
                 public StatusLine,
                 public LongWork,
                 public DiscOptions,
                 public DiscFollowers {
 public:
  ~DiscHost() override = default;
};

}  // namespace sectorbox
