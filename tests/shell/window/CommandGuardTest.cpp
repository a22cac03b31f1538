#include "shell/window/CommandGuard.h"

#include <gtest/gtest.h>

#include <set>

namespace sectorbox::testing {
namespace {

using enum CommandKind;
using Kinds = std::set<CommandKind>;

const Kinds kAll = {kChange, kTransfer, kView, kSmall, kExit};

Kinds Startable(const CommandGuard& guard) {
  Kinds kinds;
  for (const CommandKind kind : kAll) {
    if (guard.MayStart(kind)) kinds.insert(kind);
  }
  return kinds;
}

TEST(CommandGuard, EverythingStartsWhileNothingRuns) {
  const CommandGuard guard;
  EXPECT_EQ(Startable(guard), kAll);
}

TEST(CommandGuard, EachKindSaysWhatMayStartInsideIt) {
  const std::pair<CommandKind, Kinds> rows[] = {
      {kChange, {}}, {kSmall, {}}, {kExit, {}}, {kTransfer, {kSmall, kExit}}, {kView, kAll}};
  for (const auto& [kind, startable] : rows) {
    CommandGuard guard;
    {
      const CommandGuard::Running running(guard, kind);
      EXPECT_EQ(Startable(guard), startable) << static_cast<int>(kind);
    }
    EXPECT_EQ(Startable(guard), kAll) << static_cast<int>(kind);
  }
}

TEST(CommandGuard, EachOfTheCommandsThatRunHasItsSay) {
  CommandGuard guard;
  {
    const CommandGuard::Running view(guard, kView);
    const CommandGuard::Running inside(guard, kTransfer);
    EXPECT_EQ(Startable(guard), Kinds({kSmall, kExit}));
    const CommandGuard::Running step(guard, kSmall);
    EXPECT_TRUE(Startable(guard).empty());
  }
  EXPECT_EQ(Startable(guard), kAll);
  {
    const CommandGuard::Running change(guard, kChange);
    const CommandGuard::Running inside(guard, kChange);
    EXPECT_TRUE(Startable(guard).empty());
  }
  EXPECT_EQ(Startable(guard), kAll);
}

}  // namespace
}  // namespace sectorbox::testing
