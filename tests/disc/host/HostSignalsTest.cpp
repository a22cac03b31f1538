// What signals leave behind. Each program that is ended is a process of its own.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>

#include "disc/host/HostFile.h"
#include "disc/host/HostSignals.h"
#include "disc/medium/JournalPlace.h"
#include "tests/support/TempFolder.h"

namespace sectorbox::testing {
namespace {

class HostSignals : public ::testing::Test {
 protected:
  // Runs work in a program of its own. Gives the signal that has ended it; 0 if it ended by itself.
  static int SignalThatEnds(const std::function<void()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
      RemoveTemporaryFilesAtSignals();
      work();
      ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  }
  std::vector<std::string> Names() const { return ListHostFolder(folder / "."); }

  TempFolder folder;
};

TEST_F(HostSignals, EachSignalThatEndsTheProgramTakesTheTemporaryFilesAway) {
  WriteText(folder / "a", "older");
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) {
    EXPECT_EQ(SignalThatEnds([&] {
                OutputFile one(folder / "a");
                OutputFile two(folder / "b");
                one.Write("newer");
                OutputFile moved(std::move(two));
                ::raise(signal);
              }),
              signal);
    EXPECT_EQ(Names(), std::vector<std::string>{"a"});
    EXPECT_EQ(ReadText(folder / "a"), "older");
  }
}

TEST_F(HostSignals, AFileThatIsInPlaceStays) {
  EXPECT_EQ(SignalThatEnds([&] {
              OutputFile file(folder / "a");
              file.Write("newer");
              file.Close();
              ::raise(SIGTERM);
            }),
            SIGTERM);
  EXPECT_EQ(ReadText(folder / "a"), "newer");
}

TEST_F(HostSignals, ManyFilesOneAfterTheOtherFindAPlaceEach) {
  EXPECT_EQ(SignalThatEnds([&] {
              for (int i = 0; i < 100; ++i) OutputFile(folder / "a").Close();
              for (int i = 0; i < 100; ++i) OutputFile file(folder / "a");
              OutputFile file(folder / "b");
              ::raise(SIGTERM);
            }),
            SIGTERM);
  EXPECT_EQ(Names(), std::vector<std::string>{"a"});
}

TEST_F(HostSignals, AJournalIsNoTemporaryFile) {
  EXPECT_EQ(SignalThatEnds([&] {
              JournalFile(folder / "a.dat-journal").Append(std::vector<std::uint8_t>(100));
              ::raise(SIGTERM);
            }),
            SIGTERM);
  EXPECT_EQ(Names(), std::vector<std::string>{"a.dat-journal"});
}

TEST_F(HostSignals, TheFirstCtrlCOfACommandThatCatchesItIsKeptAndTheSecondCleansUp) {
  EXPECT_EQ(SignalThatEnds([&] {
              CatchInterrupt();
              OutputFile file(folder / "a");
              ::raise(SIGINT);
              if (!TakeInterrupt()) return;
              if (!HostPathIsTaken(folder / ".") || Names().size() != 1) return;
              ::raise(SIGINT);
            }),
            SIGINT);
  EXPECT_TRUE(Names().empty());
}

TEST_F(HostSignals, ASignalThatTheProgramWasStartedToIgnoreStaysIgnored) {
  EXPECT_EQ(SignalThatEnds([&] {
              std::signal(SIGHUP, SIG_IGN);
              RemoveTemporaryFilesAtSignals();
              ::raise(SIGHUP);
            }),
            0);
}

}  // namespace
}  // namespace sectorbox::testing
