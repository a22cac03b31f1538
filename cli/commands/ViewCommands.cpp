// The views, as text on standard output or in the file of -o.

#include <cstdio>
#include <optional>

#include "cli/program/Dispatch.h"
#include "cli/program/ImageSession.h"
#include "disc/catalogue/Adfs.h"
#include "viewers/text/BasicLister.h"
#include "viewers/text/CatalogueViews.h"
#include "viewers/text/Disassembler.h"
#include "viewers/text/TextAndHexViews.h"
#include "viewers/text/TextFile.h"
#include "viewers/wordwise/Wordwise.h"

namespace sectorbox::cli {
namespace {

// A view without a window. The file of -o gets the text as a window's file does, CR LF included; on
// standard output a line ends in LF.
class PrintedView : public TextView {
 public:
  PrintedView(const CommandLine& line, CliHost& host, TextStyle& style)
      : TextView(style), host_(host) {
    if (line.Has("o")) output_.emplace(line.Option("o", ""));
  }

  void Close() {
    if (output_) output_->Close();
  }

  void SetCaption(const std::string&) override {}
  void ShowMessage(const std::string& text) override { host_.ShowMessage(text); }
  void WidenWindow(int) override {}
  void CloseWindow() override {}

 protected:
  void Append(const std::string& text) override {
    if (output_) {
      output_->Write(text);
      return;
    }
    for (std::size_t at = 0; at < text.size();) {
      std::size_t end = text.find("\r\n", at);
      if (end == std::string::npos) end = text.size();
      std::fwrite(text.data() + at, 1, end - at, stdout);
      if (end < text.size()) std::putchar('\n');
      at = end + 2;
    }
  }

 private:
  CliHost& host_;
  std::optional<TextFile> output_;
};

using Generator = void (*)(Disc& disc, const ListRow& row, TextView& view);

// find is made before the view, so that a path that isn't there leaves the file of -o as it was.
template <typename Find, typename Show>
int RunView(const CommandLine& line, std::size_t least, std::size_t most, Find find, Show show) {
  line.Expect(least, most);
  ImageSession session(line);
  OpenForReading(session.Open, line.Arguments[0]);
  const auto target = find(session.Open);
  TextStyle style;
  PrintedView view(line, session.Host, style);
  show(session.Open, target, view);
  view.Close();
  return StatusOf(session.Open);
}

template <Generator generator>
int RunFileView(const CommandLine& line) {
  return RunView(
      line, 2, 2,
      [&](Disc& disc) {
        const PathTarget file = RequireFile(disc, line.Arguments[1]);
        return ReadRow(disc, file.DirSector, file.Slot);
      },
      generator);
}

ListRow RowOf(Disc& disc, const PathTarget& target) {
  if (target.Slot >= 0) return ReadRow(disc, target.DirSector, target.Slot);
  // The root has no entry; its row is made up.
  Entry root;
  root.SetName(target.Name);
  root.Set(Attribute::kDirectory, true);
  root.SetStart(target.Sector);
  return MakeRow(root);
}

int RunHex(const CommandLine& line) {
  return RunView(
      line, 2, 2, [&](Disc& disc) { return RowOf(disc, RequirePath(disc, line.Arguments[1])); },
      ShowHex);
}

template <typename Show>
int RunDirectoryView(const CommandLine& line, Show show) {
  return RunView(
      line, 1, 2,
      [&](Disc& disc) {
        return RequireDirectory(disc, line.Arguments.size() > 1 ? line.Arguments[1] : "$").Sector;
      },
      show);
}

int RunCat(const CommandLine& line) {
  return RunDirectoryView(line, ShowCat);
}

int RunEx(const CommandLine& line) {
  return RunDirectoryView(line, ShowEx);
}

int RunCatAll(const CommandLine& line) {
  return RunDirectoryView(line, [](Disc& disc, std::int32_t sector, TextView& view) {
    ShowCatAll(disc, sector, GetDirName(disc, sector), view);
  });
}

int RunExAll(const CommandLine& line) {
  return RunDirectoryView(line, [](Disc& disc, std::int32_t sector, TextView& view) {
    ShowExAll(disc, sector, GetDirName(disc, sector), view);
  });
}

int RunMap(const CommandLine& line) {
  return RunView(
      line, 1, 1, [](Disc&) { return 0; },
      [](Disc& disc, int, TextView& view) { ShowMap(disc, view); });
}

}  // namespace

std::vector<Command> ViewCommands() {
  return {
      {"map", "IMAGE [-o FILE]", "the free space map", RunMap},
      {"cat", "IMAGE [DIR] [-o FILE]", "a directory, as *CAT shows it", RunCat},
      {"ex", "IMAGE [DIR] [-o FILE]", "a directory, as *EX shows it", RunEx},
      {"catall", "IMAGE [DIR] [-o FILE]", "a directory and all below it, as *CAT", RunCatAll},
      {"exall", "IMAGE [DIR] [-o FILE]", "a directory and all below it, as *EX", RunExAll},
      {"text", "IMAGE PATH [-o FILE]", "a file as text", RunFileView<ShowText>},
      {"hex", "IMAGE PATH [-o FILE]", "a file or directory in hexadecimal", RunHex},
      {"basic", "IMAGE PATH [-o FILE]", "a BASIC program as a listing", RunFileView<Show_Basic>},
      {"dis", "IMAGE PATH [-o FILE]", "machine code, disassembled", RunFileView<ShowDis>},
      {"wordwise", "IMAGE PATH [-o FILE]", "a Wordwise document, formatted",
       RunFileView<ShowWordwise>},
  };
}

}  // namespace sectorbox::cli
