// Changing discs. One small change of a .dat is compared with the syncs that make a change safe.
// Each operation is compared with a floor: import and export with a plain recursive copy of the
// same files, compaction with a plain copy of the bytes that have to move, and deletion of trees
// with plain writes of the directory and the map for each file. Adding one large file is compared
// with a plain copy of its bytes, in time and in memory. The counter "ratio" is the engine's time
// divided by the floor's. "us_each" is the engine's time for each object; it stays the same if the
// whole time is linear.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "bench/Ratio.h"
#include "bench/ScatteredDisc.h"
#include "disc/catalogue/Catalogue.h"
#include "disc/change/Compaction.h"
#include "disc/change/Mutation.h"
#include "disc/exchange/HostExchange.h"
#include "disc/health/Check.h"
#include "disc/image/NewDisc.h"
#include "disc/image/OpenImage.h"
#include "disc/image/SaveImage.h"
#include "disc/store/Disc.h"
#include "tests/support/QuietHost.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace sectorbox;
using namespace sectorbox::bench;
using namespace sectorbox::testing;
namespace fs = std::filesystem;

struct OpenDisc {
  OpenDisc() { host.ProgressRunning = &disc.ProgressRunning; }
  explicit OpenDisc(const std::string& path) : OpenDisc() { OpenImage(disc, path); }
  QuietHost host;
  Disc disc{host};
};

// A 640K disc's worth of files: five folders of 45 files of 2700 bytes, 98% of the disc.
void MakeFolders(const std::string& root) {
  for (int i = 0; i < 5; ++i) {
    const std::string folder = root + "/D" + std::to_string(i);
    fs::create_directories(folder);
    for (int j = 0; j < 45; ++j) {
      WriteAll(folder + "/FILE" + std::to_string(j),
               std::vector<std::uint8_t>(2700, static_cast<std::uint8_t>(45 * i + j)));
    }
  }
}

// A new floppy image of 640K or a .dat of 1M with all of folder in it, as one directory.
void Import(const std::string& folder, const std::string& image) {
  fs::remove(image);
  OpenDisc open;
  if (image.ends_with(".adl")) {
    CreateDisc(open.disc, image, 80, 2, 16, kAdl);
  } else {
    CreateDisc(open.disc, image, 32, 4, 33, kDat);
  }
  if (ImportFolder(open.disc, 2, folder) != Outcome::kDone)
    throw std::runtime_error("the import was refused");
  if (image.ends_with(".adl")) SaveImageTo(open.disc, image);
  open.disc.TheDisc.CloseFile();
}

// The folders as an export writes them: SRC with the files and their sidecars.
class ExportedFolders {
 public:
  explicit ExportedFolders(const std::string& image) : Image(folder_ / image) {
    MakeFolders(folder_ / "plain/SRC");
    Import(Plain, Image);
    OpenDisc open(Image);
    ExportFiles(open.disc, folder_ / "exported", 2);
    if (!fs::exists(Source + "/D4/FILE44.INF")) throw std::runtime_error("the export is short");
  }
  Timed PlainCopy(const std::string& source) {
    const std::string copy = folder_ / "copy";
    return {[=] { fs::copy(source, copy, fs::copy_options::recursive); },
            [=] { fs::remove_all(copy); }};
  }
  std::string operator/(const std::string& name) const { return folder_ / name; }

 private:
  const TempFolder folder_;

 public:
  const std::string Image;
  const std::string Plain = folder_ / "plain/SRC";
  const std::string Source = folder_ / "exported/SRC";
};

void ImportFiles(benchmark::State& state, const std::string& image) {
  ExportedFolders folders(image);
  const std::string made = folders / ("made-" + image);
  Compare(state, {[&] { Import(folders.Source, made); }}, folders.PlainCopy(folders.Source));
}
void ImportFilesWithoutSidecars(benchmark::State& state, const std::string& image) {
  ExportedFolders folders(image);
  const std::string made = folders / ("made-" + image);
  Compare(state, {[&] { Import(folders.Plain, made); }}, folders.PlainCopy(folders.Plain));
}
void ExportEverything(benchmark::State& state, const std::string& image) {
  ExportedFolders folders(image);
  const std::string out = folders / "out";
  const auto work = [&] {
    OpenDisc open(folders.Image);
    ExportFiles(open.disc, out, 2);
  };
  Compare(state, {work, [&] { fs::remove_all(out); }}, folders.PlainCopy(folders / "exported"));
}
BENCHMARK_CAPTURE(ImportFiles, floppy, "x.adl")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ImportFiles, hard, "x.dat")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ImportFilesWithoutSidecars, floppy, "x.adl")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ExportEverything, floppy, "x.adl")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ExportEverything, hard, "x.dat")->UseManualTime()->Unit(benchmark::kMillisecond);

// 10,000 files of 1000 bytes, in folders of 40, into a .dat of 32 MB.
void ImportTenThousandFiles(benchmark::State& state) {
  const TempFolder folder;
  for (int i = 0; i < 10000; ++i) {
    const int inner = i / 40;
    const std::string in =
        folder / ("SRC/D" + std::to_string(inner / 40)) + "/E" + std::to_string(inner % 40);
    fs::create_directories(in);
    WriteAll(in + "/F" + std::to_string(i % 40),
             std::vector<std::uint8_t>(1000, static_cast<std::uint8_t>(i)));
  }
  const std::string image = folder / "x.dat";
  const auto import = [&] {
    OpenDisc open(image);
    if (ImportFolder(open.disc, 2, folder / "SRC") != Outcome::kDone)
      throw std::runtime_error("the import was refused");
    open.disc.TheDisc.CloseFile();
  };
  const auto make = [&] {
    fs::remove(image);
    OpenDisc open;
    CreateDisc(open.disc, image, 1024, 4, 33, kDat);
    open.disc.TheDisc.CloseFile();
  };
  const std::string copy = folder / "copy";
  Compare(state, {import, make},
          {[&] { fs::copy(folder / "SRC", copy, fs::copy_options::recursive); },
           [&] { fs::remove_all(copy); }});
  state.counters["us_each"] = state.counters["best_ms"] * 1000 / 10000;
}
BENCHMARK(ImportTenThousandFiles)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

// The most memory that this process has had since ForgetPeak, in megabytes.
double PeakMegabytes() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    double kilobytes = 0;
    if (word == "VmHWM:" && status >> kilobytes) return kilobytes / 1024;
  }
  return 0;
}
void ForgetPeak() {
  std::ofstream("/proc/self/clear_refs") << "5";
}

// The floor of adding a file: its bytes are read a megabyte at a time, written behind each other,
// and made safe.
void CopyBytes(const std::string& from, const std::string& to) {
  const int in = ::open(from.c_str(), O_RDONLY);
  const int out = ::open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  std::vector<char> part(std::size_t{1} << 20);
  for (ssize_t got = 1; got > 0;) {
    got = ::read(in, part.data(), part.size());
    if (got > 0 && ::write(out, part.data(), static_cast<std::size_t>(got)) != got)
      throw std::runtime_error("cannot copy the bytes");
  }
  if (::fdatasync(out) != 0) throw std::runtime_error("cannot sync the copy");
  ::close(in);
  ::close(out);
}

// A file of 400 MB into a .dat of 512 MB. "peak_MB" and "floor_peak_MB" are the most memory that
// the process had meanwhile.
void AddLargeFile(benchmark::State& state) {
  const TempFolder folder;
  {
    std::vector<std::uint8_t> part(std::size_t{1} << 20);
    for (std::size_t i = 0; i < part.size(); ++i)
      part[i] = static_cast<std::uint8_t>(i * 31 + i / 251);
    OutputFile file = CreateOutputFile(folder / "BIG");
    for (int i = 0; i < 400; ++i) file.Write(part);
    file.Close();
  }
  const std::string image = folder / "x.dat";
  double peak = 0;
  double floorPeak = 0;
  const auto add = [&] {
    ForgetPeak();
    OpenDisc open(image);
    if (AddFile(open.disc, 2, folder / "BIG") != Outcome::kDone)
      throw std::runtime_error("the file was refused");
    open.disc.TheDisc.CloseFile();
    peak = std::max(peak, PeakMegabytes());
  };
  const auto make = [&] {
    fs::remove(image);
    OpenDisc open;
    CreateDisc(open.disc, image, 16384, 4, 33, kDat);
    open.disc.TheDisc.CloseFile();
  };
  const auto copy = [&] {
    ForgetPeak();
    CopyBytes(folder / "BIG", folder / "copy");
    floorPeak = std::max(floorPeak, PeakMegabytes());
  };
  Compare(state, {add, make}, {copy, [&] { fs::remove(folder / "copy"); }});
  state.counters["peak_MB"] = peak;
  state.counters["floor_peak_MB"] = floorPeak;
}
BENCHMARK(AddLargeFile)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

void MustBeSound(benchmark::State& state, const std::string& image, std::int16_t runs) {
  OpenDisc open(image);
  if (!CheckDisc(open.disc).empty()) state.SkipWithError("the disc is damaged");
  if (open.disc.FreeCount != runs) state.SkipWithError("the free space is not as it should be");
}

// The floor of a compaction: copies bytes down inside the image, from its start on and in large
// parts, and waits until they are on the disc. Nothing is worked out, so no way is quicker.
void MoveDown(const ScatteredDisc& image) {
  const int file = ::open(image.Path().c_str(), O_RDWR);
  std::vector<std::uint8_t> part(65536);
  const std::int64_t from = std::int64_t{image.FirstMoved()} * 256;
  const std::int64_t length = std::int64_t{image.MovedSectors()} * 256;
  for (std::int64_t done = 0; done < length; done += 65536) {
    const auto size = static_cast<std::size_t>(std::min<std::int64_t>(65536, length - done));
    const bool moved = ::pread(file, part.data(), size, from + done) == ::ssize_t(size) &&
                       ::pwrite(file, part.data(), size, 7 * 256 + done) == ::ssize_t(size);
    if (!moved) throw std::runtime_error("cannot move the bytes");
  }
  ::fsync(file);
  ::close(file);
}

// 1,000 to 100,000 objects with 79 holes between them; the largest of these discs nearly fill 512
// MB. Files of 5 KB leave room for small holes only: the entries are then written after each
// megabyte that has moved. With files of 4 KB a fifth of the disc is free.
void Compact(benchmark::State& state) {
  const TempFolder folder;
  const auto objects = static_cast<std::uint32_t>(state.range(0));
  const bool roomy = state.range(2) != 0;
  const std::uint32_t hole = roomy ? objects / 20 : objects / 2500 + 1;
  const ScatteredDisc image(folder / "x.dat", {objects, roomy ? 16U : 21U, roomy ? 4000U : 5300U,
                                               79, hole, state.range(1) != 0});
  image.Write();
  MustBeSound(state, image.Path(), 80);
  const auto compact = [&] {
    OpenDisc open(image.Path());
    (void)CompactDisc(open.disc);
    open.disc.TheDisc.CloseFile();
  };
  Compare(state, {compact, [&] { image.Write(); }},
          {[&] { MoveDown(image); }, [&] { image.Write(); }});
  MustBeSound(state, image.Path(), 1);
  state.counters["us_each"] = state.counters["best_ms"] * 1000 / objects;
  state.counters["moved_MB"] = image.MovedSectors() / 4096.0;
}
BENCHMARK(Compact)
    ->ArgsProduct({{1000, 10000, 100000}, {0, 1}, {0, 1}})
    ->ArgNames({"objects", "scattered", "roomy"})
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

// The floor of a deletion: writes the directory and the map once for each file.
void WriteDirectoryAndMap(const ScatteredDisc& image, const std::vector<std::uint32_t>& sectors) {
  const int file = ::open(image.Path().c_str(), O_WRONLY);
  const std::vector<std::uint8_t> bytes(1280);
  for (const std::uint32_t sector : sectors) {
    const bool written = ::pwrite(file, bytes.data(), 1280, std::int64_t{sector} * 256) == 1280 &&
                         ::pwrite(file, bytes.data(), 512, 0) == 512;
    if (!written) throw std::runtime_error("cannot write the directory");
  }
  ::close(file);
}

void DeleteAll(benchmark::State& state, std::uint32_t fileLength) {
  const TempFolder folder;
  const auto objects = static_cast<std::uint32_t>(state.range(0));
  const ScatteredDisc image(folder / "x.dat",
                            {objects, std::max((fileLength + 255) / 256, 1U), fileLength});
  const std::vector<std::uint32_t> directories = image.DirectoryOfEachFile();
  const auto empty = [&] {
    OpenDisc open(image.Path());
    if (DeleteTree(open.disc, -1, 2, "$", true, true) != Outcome::kDone)
      throw std::runtime_error("refused");
    open.disc.TheDisc.CloseFile();
  };
  Compare(state, {empty, [&] { image.Write(); }},
          {[&] { WriteDirectoryAndMap(image, directories); }, [&] { image.Write(); }});
  MustBeSound(state, image.Path(), 1);
  state.counters["us_each"] = state.counters["best_ms"] * 1000 / objects;
}
BENCHMARK_CAPTURE(DeleteAll, files, 1000)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DeleteAll, empty_files, 0)
    ->RangeMultiplier(10)
    ->Range(1000, 10000)
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

// The floor of one change: what a change waits for, with next to nothing written. The bytes of a
// new file, the journal and its name, the blocks in place; then the journal goes.
void SyncAsAChangeDoes(const std::string& image, const std::string& folder, bool addsBytes) {
  const std::string journal = image + "-floor";
  const std::vector<std::uint8_t> bytes(1024);
  const auto write = [&](int file) {
    if (::pwrite(file, bytes.data(), bytes.size(), 4096) != 1024 || ::fsync(file) != 0)
      throw std::runtime_error("cannot write");
  };
  const int file = ::open(image.c_str(), O_WRONLY);
  if (addsBytes) write(file);
  const int other = ::open(journal.c_str(), O_WRONLY | O_CREAT, 0600);
  write(other);
  ::close(other);
  const int names = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY);
  ::fsync(names);
  ::close(names);
  write(file);
  ::close(file);
  ::unlink(journal.c_str());
}

// One change of a .dat with 2,000 files, from the opening to the closing.
template <typename Work>
void OneChange(benchmark::State& state, Work work, bool addsBytes) {
  const TempFolder folder;
  const ScatteredDisc image(folder / "x.dat", {2000, 4, 1000});
  WriteAll(folder / "NEW", std::vector<std::uint8_t>(700));
  // The floor's writes go to another file.
  WriteAll(folder / "floor.dat", std::vector<std::uint8_t>(8192));
  Compare(state,
          {[&] {
             OpenDisc open(image.Path());
             if (work(open.disc, folder / "NEW") != Outcome::kDone)
               throw std::runtime_error("refused");
             open.disc.TheDisc.CloseFile();
           },
           [&] { image.Write(); }},
          {[&] { SyncAsAChangeDoes(folder / "floor.dat", folder.Path(), addsBytes); }});
}

// The first file of the disc and its directory.
std::pair<std::int32_t, std::string> FirstFile(Disc& disc) {
  std::int32_t directory = 2;
  for (;;) {
    const auto rows = ReadRows(disc, directory);
    if (rows.empty()) throw std::runtime_error("no file");
    if (!rows.front().IsDirectory()) return {directory, rows.front().Name()};
    directory = rows.front().StartSector();
  }
}

void OneAdd(benchmark::State& state) {
  OneChange(
      state, [](Disc& disc, const std::string& file) { return AddFile(disc, 2, file); }, true);
}
void OneRename(benchmark::State& state) {
  OneChange(
      state,
      [](Disc& disc, const std::string&) {
        const auto [directory, name] = FirstFile(disc);
        return RenameEntry(disc, "ZZZ", name, directory, false);
      },
      false);
}
void OneDelete(benchmark::State& state) {
  OneChange(
      state,
      [](Disc& disc, const std::string&) {
        const auto [directory, name] = FirstFile(disc);
        return DeleteEntry(disc, directory, name, false, false);
      },
      false);
}
BENCHMARK(OneAdd)->UseManualTime()->Iterations(20)->Unit(benchmark::kMillisecond);
BENCHMARK(OneRename)->UseManualTime()->Iterations(20)->Unit(benchmark::kMillisecond);
BENCHMARK(OneDelete)->UseManualTime()->Iterations(20)->Unit(benchmark::kMillisecond);

}  // namespace
