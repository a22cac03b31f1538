#include "disc/host/FileLock.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;
using std::chrono::milliseconds;

class FileLockTest : public ::testing::Test {
 protected:
  FileLockTest() { WriteAll(path_, {1, 2, 3}); }

  TempFolder folder_;
  const std::string path_ = folder_ / "x.dat";
};

TEST_F(FileLockTest, TwoNeverHaveTheLockOfOneFile) {
  FileLock first;
  FileLock second;
  EXPECT_TRUE(first.Take(path_, milliseconds(0)));
  EXPECT_TRUE(first.IsOn(path_));
  EXPECT_FALSE(second.Take(path_, milliseconds(0)));
  first.Release();
  EXPECT_TRUE(second.Take(path_, milliseconds(0)));
}

TEST_F(FileLockTest, TheLockIsTheFilesWhateverItsName) {
  std::filesystem::create_symlink(path_, folder_ / "link");
  std::filesystem::create_hard_link(path_, folder_ / "other");
  FileLock first;
  FileLock second;
  EXPECT_TRUE(first.Take(path_, milliseconds(0)));
  EXPECT_FALSE(second.Take(folder_ / "link", milliseconds(0)));
  EXPECT_FALSE(second.Take(folder_ / "other", milliseconds(0)));
}

TEST_F(FileLockTest, WhoWaitsGetsTheLockWhenItIsGivenUp) {
  FileLock first;
  ASSERT_TRUE(first.Take(path_, milliseconds(0)));
  std::thread other([&] {
    std::this_thread::sleep_for(milliseconds(50));
    first.Release();
  });
  FileLock second;
  EXPECT_TRUE(second.Take(path_, milliseconds(20000)));
  other.join();
}

TEST_F(FileLockTest, WhoWaitsForAFileThatIsReplacedGetsTheLockOfTheNewOne) {
  FileLock first;
  ASSERT_TRUE(first.Take(path_, milliseconds(0)));
  std::thread other([&] {
    std::this_thread::sleep_for(milliseconds(50));
    WriteAll(folder_ / "new", {4});
    std::filesystem::rename(folder_ / "new", path_);
    first.Release();
  });
  FileLock second;
  EXPECT_TRUE(second.Take(path_, milliseconds(20000)));
  other.join();
  EXPECT_TRUE(second.IsOn(path_));
}

TEST_F(FileLockTest, NobodyElseHasTheLockOfAFileThatIsNotThere) {
  FileLock lock;
  EXPECT_TRUE(lock.Take(folder_ / "none", milliseconds(0)));
  EXPECT_FALSE(lock.IsOn(folder_ / "none"));
}

}  // namespace
}  // namespace sectorbox
