// Thousands of random operations, each checked against a model in memory that knows nothing of
// sectors: names, contents, attributes, addresses, titles, sequence numbers, and a sound disc.

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <random>

#include "disc/change/Compaction.h"
#include "disc/exchange/HostExchange.h"
#include "disc/format/Text.h"
#include "tests/disc/EngineTest.h"

namespace sectorbox {
namespace {

using namespace testing;

// Names are compared with bit 5 of each letter set, and of each character in the letters' columns.
std::string Folded(std::string text) {
  for (char& c : text) c = c >= '@' ? static_cast<char>(c | 32) : c;
  return text;
}

int Bumped(int bcd) {
  const int next = (bcd / 16 * 10 + bcd % 16 + 1) % 100;
  return next / 10 * 16 + next % 10;
}

struct Node {
  std::string Name;
  bool IsDir = false;
  bool Read = true, Write = true, Locked = false;
  std::uint32_t Load = 0, Exec = 0;
  Bytes Contents;
  int Sequence = 1;  // of the entry
  int Master = 1;    // of a directory
  std::string Title;
  std::map<std::string, std::shared_ptr<Node>> Children;  // by upper-case name

  int Sectors() const {
    return IsDir ? 5 : std::max<int>(1, static_cast<int>((Contents.size() + 255) / 256));
  }
  void Bump(Node* entry = nullptr) {
    Master = Bumped(Master);
    if (entry != nullptr) entry->Sequence = Master;
  }
  int Used() const {
    int used = Sectors();
    for (const auto& [name, child] : Children) used += child->Used();
    return used;
  }
};

// What a run of random operations leans to.
struct Habits {
  bool ManyNames = false;    // far more names than a directory has room for
  unsigned Longest = 20000;  // bytes of the longest file
  bool InTides = false;      // files come for a while, then single ones go for a while
  bool Deep = false;         // mostly works in the lowest directories, and makes more there
};

// How often special states came up, so that a test can see that its random discs had them.
struct Shapes {
  int FullDirectories = 0;
  int MostRuns = 0;
  int Compactions = 0;  // those that nobody asked for
  int Deepest = 0;
  int NoSpace = 0;
  int FullDiscs = 0;  // without a single free sector
};

class MutationModelTest : public EngineTest {
 protected:
  struct Place {
    Node* Dir;
    std::int32_t Sector;
    int Depth = 0;
  };

  void Run(DiscType kind, std::int32_t sectors, unsigned seed, int steps, Habits habits = {}) {
    if (kind == kCF) {
      OpenOnCard(ImageBuilder(sectors));
    } else {
      Open(ImageBuilder(sectors), kind);
    }
    habits_ = habits;
    total_ = sectors;
    random_.seed(seed);
    root_ = Node{};
    root_.IsDir = true;
    root_.Title = "$";
    host_.AcceptMessages = true;
    for (int step = 0; step < steps; ++step) {
      host_.Messages.clear();
      host_.Log.clear();
      last_ = "step " + std::to_string(step) + ": ";
      ebb_ = habits_.InTides && step % 1000 >= 600;
      Step();
      SCOPED_TRACE(last_);
      const Bytes image = Image();
      ASSERT_EQ(FaultsOf(image), std::vector<std::string>());
      Compare(root_, ReadTree(image));
      ASSERT_EQ(FreeSectors(), total_ - 2 - root_.Used());
      NoteShapes();
      if (HasFatalFailure() || HasNonfatalFailure()) return;
    }
  }

 private:
  unsigned Pick(unsigned count) { return static_cast<unsigned>(random_() % count); }
  void NoteShapes() {
    shapes_.MostRuns = std::max<int>(shapes_.MostRuns, disc_.FreeCount);
    shapes_.FullDiscs += FreeSectors() == 0;
    const bool asked = last_.find("compact") != std::string::npos;
    if (!asked) shapes_.Compactions += static_cast<int>(host_.LogOf("status Compacting").size());
    for (const std::string& message : host_.Messages) {
      shapes_.FullDirectories += message == "Directory Full";
      shapes_.NoSpace += message == kNoSpaceMessage;
    }
  }
  std::string PickName() {
    if (habits_.ManyNames) {
      std::string name = std::to_string(Pick(200));
      if (Pick(2) == 0) name = "longname" + name;
      return name.substr(0, 10);
    }
    static const char* const kNames[] = {"A",  "a1",    "FOO",   "foo2",       "FOOD",
                                         "Zz", "!BOOT", "M_N",   "TENLETTERS", "X/Y",
                                         "q",  "Q2",    "Name?", "<>",         "~"};
    return kNames[Pick(15)];
  }
  Bytes Map() {
    Bytes map(512);
    disc_.TheDisc.FetchBytes(0, map);
    return map;
  }
  int FreeSectors() {
    int free = 0;
    for (const auto& run : ReadFreeRuns(Map())) free += run.Length;
    return free;
  }
  int LargestRun() {
    int largest = 0;
    for (const auto& run : ReadFreeRuns(Map())) largest = std::max(largest, run.Length);
    return largest;
  }
  Place PickPlace() {
    Place place{&root_, 2};
    while (Pick(habits_.Deep ? 12 : 3) != 0) {
      std::vector<Node*> dirs;
      for (const auto& [name, child] : place.Dir->Children) {
        if (child->IsDir) dirs.push_back(child.get());
      }
      if (dirs.empty()) break;
      Node* next = dirs[Pick(static_cast<unsigned>(dirs.size()))];
      place = {next, GetEntrySector(disc_, place.Sector, next->Name), place.Depth + 1};
    }
    shapes_.Deepest = std::max(shapes_.Deepest, place.Depth);
    return place;
  }
  // A child of dir, or none.
  Node* PickChild(const Place& place) {
    if (place.Dir->Children.empty()) return nullptr;
    auto child = place.Dir->Children.begin();
    std::advance(child, Pick(static_cast<unsigned>(place.Dir->Children.size())));
    return child->second.get();
  }

  void Step() {
    const Place place = PickPlace();
    if (habits_.InTides && Pick(10) != 0) {
      if (ebb_) return DeleteFile(place);
      return Pick(20) == 0 ? Make(place) : AddOne(place);
    }
    switch (Pick(12)) {
      case 0:
      case 1:
      case 2:
      case 3:
        return AddOne(place);
      case 4:
        return Make(place);
      case 5:
      case 6:
        return Delete(place);
      case 7:
        return Rename(place);
      case 8:
        return Attributes(place);
      case 9:
        return Addresses(place);
      case 10:
        return Title(place);
      default:
        return Pick(6) == 0 ? Compact() : AddOne(place);
    }
  }

  void AddOne(const Place& place) {
    auto node = std::make_shared<Node>();
    node->Name = PickName();
    const unsigned longest = habits_.Longest;
    const unsigned length = Pick(3) == 0 ? Pick(longest) : Pick(std::min(longest, 1200U));
    node->Contents = Pattern(Pick(12) == 0 ? 0 : length, Pick(1000));
    const std::string path = HostFile("host", node->Contents);
    std::filesystem::remove(path + ".INF");
    const bool sidecar = Pick(2) == 0;
    if (sidecar) {
      node->Load = static_cast<std::uint32_t>(random_());
      node->Exec = static_cast<std::uint32_t>(random_());
      node->Locked = Pick(4) == 0;
      node->Write = Pick(2) == 0;
    }
    std::string line = node->Name;
    line.resize(11, ' ');
    line += Hex(node->Load, 8) + " " + Hex(node->Exec, 8) + " " + Hex(node->Contents.size(), 8) +
            " " + (node->Locked ? "L" : "") + (node->Write ? "W" : "") + "R\r\n";
    WriteText(path + ".INF", line);
    last_ += "add " + node->Name;
    const bool fits = node->Sectors() <= LargestRun();
    const auto old = place.Dir->Children.find(Folded(node->Name));
    const bool exists = old != place.Dir->Children.end();
    host_.Overwrite = Pick(3) != 0;
    const Outcome result = AddFile(disc_, place.Sector, path);
    if (!fits) return ExpectRefusal(result, "Not Enough Free Contiguous Space on Disc");
    if (place.Dir->Children.size() == 47) return ExpectRefusal(result, "Directory Full");
    ASSERT_EQ(result, Outcome::kDone);
    if (exists && old->second->IsDir) {
      ASSERT_EQ(host_.Messages, std::vector<std::string>{"Cannot Yet Overwrite A Directory"});
      return;
    }
    ASSERT_TRUE(host_.Messages.empty());
    if (exists && old->second->Locked && !host_.Overwrite) return;
    if (exists) place.Dir->Bump();
    place.Dir->Bump(node.get());
    place.Dir->Children[Folded(node->Name)] = node;
  }

  void Make(const Place& place) {
    auto node = std::make_shared<Node>();
    node->IsDir = true;
    node->Name = node->Title = PickName();
    last_ += "mkdir " + node->Name;
    const bool fits = LargestRun() >= 5;
    const bool exists = place.Dir->Children.count(Folded(node->Name)) != 0;
    const Outcome made = NewDirectory(disc_, place.Sector, node->Name).has_value()
                             ? Outcome::kDone
                             : Outcome::kRefused;
    if (!fits) return ExpectRefusal(made, "Not Enough Free Contiguous Space on Disc");
    if (place.Dir->Children.size() == 47) return ExpectRefusal(made, "Directory Full");
    if (exists) return ExpectRefusal(made, "Directory " + node->Name + " Already Exists");
    place.Dir->Bump(node.get());
    ASSERT_EQ(made, Outcome::kDone);
    place.Dir->Children[Folded(node->Name)] = node;
  }

  // Deletes a directory's contents in the model. False if it stopped at a locked entry.
  static bool Empty(Node& dir, bool ignoreLock) {
    while (!dir.Children.empty()) {
      const auto first = dir.Children.begin();
      Node& child = *first->second;
      if (child.IsDir && !Empty(child, ignoreLock)) return false;
      if (child.Locked && !ignoreLock) return false;
      dir.Bump();
      dir.Children.erase(first);
    }
    return true;
  }

  void Delete(const Place& place) {
    Node* node = PickChild(place);
    if (node == nullptr) return;
    const bool ignoreLock = Pick(2) == 0;
    const bool nonEmpty = Pick(3) == 0;
    last_ += "delete " + node->Name;
    const std::string name = node->Name;
    if (!node->IsDir) {
      const Outcome result = DeleteEntry(disc_, place.Sector, name, false, ignoreLock);
      if (node->Locked && !ignoreLock) {
        return ExpectRefusal(result, "Cannot Delete Locked File : " + name);
      }
      ASSERT_EQ(result, Outcome::kDone);
    } else {
      const Outcome result =
          DeleteTree(disc_, place.Sector, GetEntrySector(disc_, place.Sector, name), name,
                     ignoreLock, nonEmpty);
      if (nonEmpty && !Empty(*node, ignoreLock)) {
        ASSERT_EQ(result, Outcome::kRefused);
        return;
      }
      if (node->Locked && !ignoreLock) {
        return ExpectRefusal(result, "Cannot Delete Locked Directory : " + name);
      }
      if (!node->Children.empty()) {
        return ExpectRefusal(result, "Cannot Delete Non Empty Directory : " + name);
      }
      ASSERT_EQ(result, Outcome::kDone);
    }
    place.Dir->Bump();
    place.Dir->Children.erase(Folded(name));
  }

  // Deletes a file that isn't locked, so that its sectors become free.
  void DeleteFile(const Place& place) {
    Node* node = PickChild(place);
    if (node == nullptr || node->IsDir || node->Locked) return;
    last_ += "delete file " + node->Name;
    const std::string name = node->Name;
    ASSERT_EQ(DeleteEntry(disc_, place.Sector, name, false, false), Outcome::kDone);
    place.Dir->Bump();
    place.Dir->Children.erase(Folded(name));
  }

  void Rename(const Place& place) {
    Node* node = PickChild(place);
    if (node == nullptr) return;
    const std::string to = Pick(8) == 0 ? "B*D" : PickName();
    last_ += "rename " + node->Name + " " + to;
    const Outcome result = RenameEntry(disc_, to, node->Name, place.Sector, false);
    if (node->Locked) {
      return ExpectRefusal(result, std::string("Cannot Rename Locked ") +
                                       (node->IsDir ? "Directory : " : "File : ") + node->Name);
    }
    if (place.Dir->Children.count(Folded(to)) != 0) {
      return ExpectRefusal(result, to + " Already Exists");
    }
    if (to == "B*D") {
      return ExpectRefusal(result, "File B*D Contains Illegal Characters");
    }
    ASSERT_EQ(result, Outcome::kDone);
    auto held = place.Dir->Children.extract(Folded(node->Name));
    held.key() = Folded(to);
    held.mapped()->Name = to;
    place.Dir->Bump(held.mapped().get());
    place.Dir->Children.insert(std::move(held));
  }

  void Attributes(const Place& place) {
    Node* node = PickChild(place);
    if (node == nullptr) return;
    last_ += "access " + node->Name;
    node->Read = Pick(2) == 0;
    node->Write = Pick(2) == 0;
    node->Locked = Pick(4) == 0;
    (void)SetEntryAttributes(disc_, place.Sector, node->Name, node->Read, node->Write,
                             node->Locked);
    place.Dir->Bump(node);
  }

  void Addresses(const Place& place) {
    Node* node = PickChild(place);
    if (node == nullptr || node->IsDir) return;
    last_ += "address " + node->Name;
    node->Load = static_cast<std::uint32_t>(random_());
    node->Exec = static_cast<std::uint32_t>(random_());
    (void)SetEntryAddresses(disc_, place.Sector, node->Name, Hex(node->Load, 8),
                            Hex(node->Exec, 8));
    place.Dir->Bump(node);
  }

  void Title(const Place& place) {
    const std::string title = "Title " + std::to_string(Pick(100000));
    last_ += "title";
    ASSERT_EQ(SetDirTitle(disc_, place.Sector, title), Outcome::kDone);
    place.Dir->Title = title;
    place.Dir->Bump();
  }

  void Compact() {
    last_ += "compact";
    (void)CompactDisc(disc_);
    ASSERT_EQ(ReadFreeRuns(Image()).size(), 1U);
  }

  void ExpectRefusal(Outcome result, const std::string& message) {
    ASSERT_EQ(result, Outcome::kRefused);
    ASSERT_EQ(host_.Messages, std::vector<std::string>{message});
  }

  void Compare(const Node& node, const ReadObject& read) {
    if (node.IsDir) {
      EXPECT_EQ(read.MasterSequence, node.Master) << node.Name;
      EXPECT_EQ(read.Title, node.Title) << node.Name;
      ASSERT_EQ(read.Contents.size(), node.Children.size()) << node.Name;
      std::size_t i = 0;
      for (const auto& [key, child] : node.Children) {
        const ReadObject& found = read.Contents[i++];
        ASSERT_EQ(found.Name, child->Name);
        EXPECT_EQ(found.Sequence, child->Sequence) << found.Name;
        std::string attr = child->IsDir ? "D" : "";
        attr += std::string(child->Locked ? "L" : "") + (child->Write ? "W" : "") +
                (child->Read ? "R" : "");
        EXPECT_EQ(found.Attr, attr) << found.Name;
        Compare(*child, found);
      }
      return;
    }
    EXPECT_EQ(read.Load, node.Load) << node.Name;
    EXPECT_EQ(read.Exec, node.Exec) << node.Name;
    EXPECT_EQ(read.Bytes, node.Contents) << node.Name;
  }

  Node root_;
  std::mt19937 random_;
  std::string last_;
  int total_ = 0;
  Habits habits_;
  bool ebb_ = false;

 protected:
  Shapes shapes_;
};

TEST_F(MutationModelTest, ASingleSidedFloppyFollowsTheModel) {
  for (unsigned seed = 1; seed <= 3; ++seed) Run(kAdf, 640, seed, 1500);
}

TEST_F(MutationModelTest, ADoubleSidedFloppyFollowsTheModel) {
  for (unsigned seed = 11; seed <= 12; ++seed) Run(kAdl, 2560, seed, 600);
}

TEST_F(MutationModelTest, AHardDiscImageFollowsTheModel) {
  Run(kDat, 900, 21, 1000);
}

TEST_F(MutationModelTest, ACardFollowsTheModel) {
  Run(kCF, 640, 31, 400);
}

TEST_F(MutationModelTest, AHardDiscImageThatIsOpenedAfterACardFollowsTheModel) {
  OpenOnCard(ImageBuilder(640));
  Run(kDat, 640, 41, 400);
}

TEST_F(MutationModelTest, FullDirectoriesFollowTheModel) {
  Run(kAdf, 640, 51, 1000, {.ManyNames = true, .Longest = 1200});
  EXPECT_GT(shapes_.FullDirectories, 0);
}

TEST_F(MutationModelTest, AFreeListThatGrowsUntilItIsCompactedFollowsTheModel) {
  Run(kAdf, 1280, 62, 1000, {.ManyNames = true, .Longest = 600, .InTides = true});
  EXPECT_EQ(shapes_.MostRuns, 79);
  EXPECT_GT(shapes_.Compactions, 0);
}

TEST_F(MutationModelTest, DeepDirectoriesFollowTheModel) {
  Run(kAdf, 640, 71, 1000, {.Longest = 1200, .Deep = true});
  EXPECT_GE(shapes_.Deepest, 6);
}

TEST_F(MutationModelTest, ADiscThatIsFullToItsLastSectorFollowsTheModel) {
  Run(kAdf, 80, 81, 1500, {.Longest = 2000});
  EXPECT_GT(shapes_.NoSpace, 0);
  EXPECT_GT(shapes_.FullDiscs, 0);
}

}  // namespace
}  // namespace sectorbox
