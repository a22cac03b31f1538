#pragma once

#include "link/wire/LinkClock.h"
#include "link/wire/LinkCompanions.h"
#include "link/wire/LinkOptions.h"
#include "link/wire/LinkQuestions.h"
#include "link/wire/TraceView.h"
#include "link/wire/TransferView.h"

namespace sectorbox {

// Everything that the link wants from outside but the port itself, one base class for each topic.
// The window, the command line and the tests each have one. All calls come on the one thread,
// inside the procedure that makes them.
class LinkHost : public LinkClock,
                 public LinkQuestions,
                 public TransferView,
                 public LinkOptions,
                 public LinkCompanions,
                 public TraceView {
 public:
  ~LinkHost() override = default;
};

}  // namespace sectorbox
