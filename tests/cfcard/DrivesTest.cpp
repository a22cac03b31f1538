// Which devices are candidates, and their letters.

#include <fstream>

#include "cfcard/cards/linux/SysBlockDevices.h"
#include "tests/cfcard/CardFixture.h"

namespace sectorbox::testing {
namespace {

namespace fs = std::filesystem;

// A kernel's table in a folder.
class DrivesTest : public ::testing::Test {
 protected:
  void Add(const std::string& name, const std::string& removable, const std::string& type = "") {
    const fs::path entry = fs::path(folder.Path()) / name;
    fs::create_directories(entry / "device");
    WriteText((entry / "removable").string(), removable + "\n");
    if (!type.empty()) WriteText((entry / "device" / "type").string(), type + "\n");
  }
  std::vector<std::string> Letters(CardDrives& drives) {
    std::vector<std::string> found;
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
      const std::string path = drives.PathOf(letter);
      if (!path.empty()) found.push_back(std::string(1, letter) + " " + path);
    }
    return found;
  }

  // The devices that the table in the folder tells of.
  std::unique_ptr<BlockDevices> Devices() {
    return std::make_unique<SysBlockDevices>(folder.Path(), "/dev");
  }

  TempFolder folder;
};

TEST_F(DrivesTest, TheKernelsTableDecidesTheType) {
  Add("sda", "0");
  Add("sdb", "1");
  Add("mmcblk0", "0", "SD");
  Add("mmcblk1", "0", "MMC");
  Add("sr0", "1");
  Add("zram0", "0");
  Add("nbd0", "0");
  Add("fd0", "1");
  Add("nvme0n1", "0");
  fs::create_directories(fs::path(folder.Path()) / "odd");
  std::map<std::string, DriveType> types;
  for (const BlockDevice& device : Devices()->List()) types[device.Path] = device.Type;
  const std::map<std::string, DriveType> expected = {{"/dev/sda", kFixedDrive},
                                                     {"/dev/sdb", kRemovableDrive},
                                                     {"/dev/mmcblk0", kRemovableDrive},
                                                     {"/dev/mmcblk1", kFixedDrive},
                                                     {"/dev/sr0", kCdRom},
                                                     {"/dev/zram0", kRamDisk},
                                                     {"/dev/nbd0", kRemoteDrive},
                                                     {"/dev/fd0", kRemovableDrive},
                                                     {"/dev/nvme0n1", kFixedDrive},
                                                     {"/dev/odd", kUnknownDrive}};
  EXPECT_EQ(types, expected);
}

TEST_F(DrivesTest, OnlyRemovableDrivesAndCardFilesGetLettersFromCOn) {
  Add("sda", "0");
  Add("sdc", "1");
  Add("sdaa", "1");
  Add("sdb", "1");
  CardDrives drives(Devices());
  drives.SetCardFiles({"/home/me/card.img"});
  drives.Refresh();
  EXPECT_EQ(Letters(drives), std::vector<std::string>({"C /dev/sdb", "D /dev/sdc", "E /dev/sdaa",
                                                       "F /home/me/card.img"}));
}

TEST_F(DrivesTest, AFloppyDriveIsALetterLikeAnyOther) {
  Add("fd0", "1");
  CardDrives drives(Devices());
  drives.Refresh();
  EXPECT_EQ(Letters(drives), std::vector<std::string>({"C /dev/fd0"}));
}

TEST_F(DrivesTest, ALetterIsNeverGivenToAnotherDevice) {
  Add("sdb", "1");
  CardDrives drives(Devices());
  drives.Refresh();
  fs::remove_all(fs::path(folder.Path()) / "sdb");
  Add("sdc", "1");
  drives.Refresh();
  EXPECT_EQ(Letters(drives), std::vector<std::string>({"D /dev/sdc"}));
  Add("sdb", "1");
  drives.Refresh();
  EXPECT_EQ(Letters(drives), std::vector<std::string>({"C /dev/sdb", "D /dev/sdc"}));
}

TEST_F(DrivesTest, MoreDevicesThanLettersLeaveTheRestOut) {
  std::vector<std::string> files(40, "/card");
  for (std::size_t i = 0; i < files.size(); ++i) files[i] += std::to_string(i);
  CardDrives drives(Devices());
  drives.SetCardFiles(files);
  drives.Refresh();
  EXPECT_EQ(Letters(drives).size(), 24u);
  EXPECT_EQ(drives.PathOf('Z'), "/card23");
}

TEST_F(DrivesTest, DriveTypeTextNamesTheType) {
  Add("sdb", "1");
  CardDrives drives(Devices());
  drives.Refresh();
  std::string text;
  EXPECT_EQ(drives.DriveTypeText("C", text), 2);
  EXPECT_EQ(text, "Removable Drive");
  EXPECT_EQ(drives.DriveTypeText("C:\\", text), 2);
  EXPECT_EQ(drives.DriveTypeText("Q", text), 1);
  EXPECT_EQ(text, "");
  EXPECT_EQ(drives.DriveTypeText("", text), 3);
  EXPECT_EQ(text, "Fixed Drive");
}

TEST_F(DrivesTest, EveryTypeHasItsText) {
  const std::vector<std::string> expected = {
      "(unknown)", "", "Removable Drive", "Fixed Drive", "Remote Drive", "CD-ROM", "RAM Disk"};
  for (std::int32_t code = 0; code < 7; ++code) {
    EXPECT_EQ(NameOfDriveType(static_cast<DriveType>(code)),
              expected[static_cast<std::size_t>(code)]);
  }
}

TEST_F(DrivesTest, ATableThatCannotBeReadGivesNoDrives) {
  EXPECT_TRUE(SysBlockDevices(folder / "absent", "/dev").List().empty());
}

TEST_F(DrivesTest, OnlyALetterAndAColonOpenADevice) {
  CardShelf shelf;
  shelf.Put("/dev/sdb", 64);
  shelf.Put(",", 64);
  Add("sdb", "1");
  CardDrives drives(Devices());
  drives.Refresh();
  const auto device = MakeCardDevice(drives, shelf.MakeDevice());
  EXPECT_TRUE(device->Open("C:"));
  for (const char* name : {"/dev/sdb", ",", "", "C", "D:", "A:", "c:", "C:x"}) {
    EXPECT_FALSE(device->Open(name)) << name;
    EXPECT_FALSE(device->IsOpen());
    EXPECT_NE(device->LastError(), 0);
  }
}

}  // namespace
}  // namespace sectorbox::testing
