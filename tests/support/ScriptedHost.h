#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "disc/ask/DiscHost.h"

namespace sectorbox::testing {

// A host for tests: records every call as a line of Log, plays queued answers, and fails the test
// on a question or a box that it didn't expect.
//
// Boxes: push the exact text to ExpectedMessages first, or set AcceptMessages and read Messages.
// Lines of Log: "message TEXT", "yesno TEXT|TITLE", "open TITLE", "save TITLE", "status TEXT" (with
// " (busy)"), "note TEXT", "note left out: TEXT", "pointer busy", "pointer normal", "caption",
// "rebuild", "treeready", "moved OLD>NEW ...", "enable", "root PATH", "pump", "progress open
// CAPTION", "progress LINE", "progress close".
class ScriptedHost : public DiscHost {
 public:
  std::vector<std::string> Log;
  std::vector<std::string> Messages;
  std::vector<std::string> Statuses;
  std::deque<std::string> ExpectedMessages;
  bool AcceptMessages = false;
  std::deque<bool> YesNoAnswers;
  std::deque<std::string> OpenAnswers;
  std::deque<std::string> SaveAnswers;
  std::vector<FileQuestion> Questions;
  bool Pad = false;
  bool Interleave = true;
  bool Overwrite = true;
  // Run at each pump, for tests in which the user acts meanwhile.
  std::function<void()> OnPump;
  // Opening the progress dialog sets the go-on flag; the test points this at its disc's flag.
  bool* ProgressRunning = nullptr;

  ~ScriptedHost() override {
    for (const auto& text : ExpectedMessages) ADD_FAILURE() << "never shown: " << text;
    if (!YesNoAnswers.empty()) ADD_FAILURE() << "a yes/no answer was never asked for";
    if (!OpenAnswers.empty()) ADD_FAILURE() << "an open dialog was never shown";
    if (!SaveAnswers.empty()) ADD_FAILURE() << "a save dialog was never shown";
  }

  void ShowMessage(const std::string& text) override {
    Log.push_back("message " + text);
    Messages.push_back(text);
    if (AcceptMessages) return;
    if (ExpectedMessages.empty()) {
      ADD_FAILURE() << "unexpected message: " << text;
      return;
    }
    EXPECT_EQ(ExpectedMessages.front(), text);
    ExpectedMessages.pop_front();
  }
  bool AskYesNo(const std::string& text, const std::string& title) override {
    Log.push_back("yesno " + text + "|" + title);
    return Take(YesNoAnswers, "yes/no question: " + text, false);
  }
  std::string AskOpenFileName(const FileQuestion& question) override {
    Log.push_back("open " + question.Title);
    Questions.push_back(question);
    return Take(OpenAnswers, "open dialog: " + question.Title, std::string());
  }
  std::string AskSaveFileName(const FileQuestion& question) override {
    Log.push_back("save " + question.Title);
    Questions.push_back(question);
    return Take(SaveAnswers, "save dialog: " + question.Title, std::string());
  }
  void SetStatus(const std::string& text, bool busy) override {
    Log.push_back("status " + text + (busy ? " (busy)" : ""));
    Statuses.push_back(text);
  }
  void Note(const std::string& line) override { Log.push_back("note " + line); }
  void NoteLeftOut(const std::string& line) override { Log.push_back("note left out: " + line); }
  void SetBusyPointer(bool busy) override {
    Log.push_back(busy ? "pointer busy" : "pointer normal");
  }
  void RefreshCaption() override { Log.push_back("caption"); }
  void RebuildTree() override { Log.push_back("rebuild"); }
  void SetTreeReady() override { Log.push_back("treeready"); }
  void DirectoriesMoved(const std::map<std::int32_t, std::int32_t>& moves) override {
    std::string line = "moved";
    for (const auto& [from, to] : moves) {
      line += " " + std::to_string(from) + ">" + std::to_string(to);
    }
    Log.push_back(line);
  }
  void EnableDiscEntries() override { Log.push_back("enable"); }
  void StoreRoot(const std::string& path) override { Log.push_back("root " + path); }
  void PumpEvents() override {
    Log.push_back("pump");
    if (OnPump) OnPump();
  }
  void OpenProgress(const std::string& caption) override {
    Log.push_back("progress open " + caption);
    if (ProgressRunning != nullptr) *ProgressRunning = true;
  }
  void ShowProgress(const std::string& line, double percent) override {
    Log.push_back("progress " + line);
    EXPECT_GE(percent, 0.0);
    EXPECT_LE(percent, 100.0);
  }
  void CloseProgress() override { Log.push_back("progress close"); }
  bool PadDiscImages() const override { return Pad; }
  bool InterleavedDisc() const override { return Interleave; }
  bool OverwriteLocked() const override { return Overwrite; }

  // Lines of the log that begin with prefix.
  std::vector<std::string> LogOf(const std::string& prefix) const {
    std::vector<std::string> lines;
    for (const auto& line : Log) {
      if (line.compare(0, prefix.size(), prefix) == 0) lines.push_back(line);
    }
    return lines;
  }

 private:
  template <typename T>
  static T Take(std::deque<T>& answers, const std::string& what, T none) {
    if (answers.empty()) {
      ADD_FAILURE() << "unexpected " << what;
      return none;
    }
    T answer = answers.front();
    answers.pop_front();
    return answer;
  }
};

}  // namespace sectorbox::testing
