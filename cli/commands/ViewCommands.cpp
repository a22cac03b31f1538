// The views, as text on standard output or in the file of -o.

#include <cstdio>
#include <optional>

#include "cli/program/Dispatch.h"
#include "cli/program/ImageSession.h"
#include "cli/program/TerminalText.h"
#include "disc/store/OpenDisc.h"
#include "viewers/table/TextViews.h"
#include "viewers/text/TextFile.h"

namespace sectorbox::cli {
namespace {

// A view without a window. In the file of -o lines end with CR LF, as in a file that the window
// saves; on standard output they end with LF.
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
      PrintBytes(ShownOnOutput(text.substr(at, end - at)));
      if (end < text.size()) std::putchar('\n');
      at = end + 2;
    }
  }

 private:
  CliHost& host_;
  std::optional<TextFile> output_;
};

ListRow RowOf(Disc& disc, const PathTarget& target) {
  if (target.Slot >= 0) return ReadRow(disc, target.DirSector, target.Slot);
  // The root has no entry, so its row is made here.
  Entry root;
  root.SetName(target.Name);
  root.Set(Attribute::kDirectory, true);
  root.SetStart(target.Sector);
  return MakeRow(root);
}

ViewTarget FindTarget(Disc& disc, const CommandLine& line, ViewSubject subject) {
  ViewTarget target;
  switch (subject) {
    case ViewSubject::kFile:
      target.Row = RequireFileRow(disc, line.Arguments[1]);
      break;
    case ViewSubject::kEntry:
      target.Row = RowOf(disc, RequirePath(disc, line.Arguments[1]));
      break;
    case ViewSubject::kDirectory:
      target.Sector =
          RequireDirectory(disc, line.Arguments.size() > 1 ? line.Arguments[1] : "$").Sector;
      break;
    case ViewSubject::kDisc:
      break;
  }
  return target;
}

// The words after the command, as the help shows them, and how many there may be.
struct Usage {
  const char* Arguments;
  std::size_t Least;
  std::size_t Most;
};

Usage UsageOf(ViewSubject subject) {
  switch (subject) {
    case ViewSubject::kDirectory:
      return {"IMAGE [DIR] [-o FILE]", 1, 2};
    case ViewSubject::kDisc:
      return {"IMAGE [-o FILE]", 1, 1};
    default:
      return {"IMAGE PATH [-o FILE]", 2, 2};
  }
}

// The target is looked for before the view is made. If it isn't there, the file of -o stays as it
// was.
int RunTextView(const CommandLine& line) {
  const TextViewKind& kind = *FindTextView(line.Command);
  const Usage usage = UsageOf(kind.Subject);
  line.Expect(usage.Least, usage.Most);
  ImageSession session(line);
  OpenForReading(session, line.Arguments[0]);
  const ViewTarget target = FindTarget(session.Open, line, kind.Subject);
  if (line.Has("o")) RefuseOpenDisc(session.Open, line.Option("o", ""));
  TextStyle style;
  PrintedView view(line, session.Host, style);
  ShowTextView(kind, session.Open, target, view);
  view.Close();
  return StatusOf(session);
}

}  // namespace

// A view's word is its name in small letters.
std::vector<Command> ViewCommands() {
  std::vector<Command> commands;
  for (const TextViewKind& kind : TextViews()) {
    commands.push_back({SmallNameOf(kind),
                        UsageOf(kind.Subject).Arguments,
                        std::string(kind.Description),
                        {"o"},
                        RunTextView});
  }
  return commands;
}

}  // namespace sectorbox::cli
