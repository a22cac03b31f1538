#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "link/wire/LinkHost.h"
#include "tests/support/VirtualLine.h"

namespace sectorbox::testing {

// The link's host for tests, in virtual time: records every call as a line of Log, plays queued
// answers, and fails the test on a question or a box that it didn't expect.
//
// Lines of Log: "message TITLE|TEXT", "warning TEXT", "replace TEXT", "open TITLE|FILTER|NAME",
// "save ...", "dialog CAPTION", "chunk TEXT", "total TEXT", "counters R C B", "percent N",
// "finish", "close dialog", "wave PATH", "trace TEXT" (without the time, CR LF cut off). Polls and
// sleeps leave no line.
class ScriptedLinkHost final : public LinkHost {
 public:
  explicit ScriptedLinkHost(VirtualClock& clock) : clock_(clock) {}
  ~ScriptedLinkHost() override {
    for (const auto& text : ExpectedMessages) ADD_FAILURE() << "never shown: " << text;
    if (!FileAnswers.empty()) ADD_FAILURE() << "a file dialog was never shown";
    if (!ReplaceAnswers.empty()) ADD_FAILURE() << "a question was never asked";
  }

  std::vector<std::string> Log;
  std::deque<std::string> ExpectedMessages;  // texts, without the title
  bool AcceptMessages = false;
  std::deque<std::string> FileAnswers;
  std::deque<ReplaceAnswer> ReplaceAnswers;
  std::int32_t Speed = 19200;
  bool Check = false;
  bool Wave = false;
  std::string Folder = "/nowhere";
  TransferCounters Counters;
  bool DialogOpen = false;
  bool DialogFinished = false;
  std::string Trace;  // whole, with times
  std::int64_t Pumps = 0;
  std::function<void()> OnPump;
  std::function<void(const std::string&)> OnLog;

  void Add(const std::string& line) {
    Log.push_back(line);
    if (OnLog) OnLog(line);
  }
  std::vector<std::string> LogOf(const std::string& prefix) const {
    std::vector<std::string> lines;
    for (const auto& line : Log) {
      if (line.rfind(prefix, 0) == 0) lines.push_back(line);
    }
    return lines;
  }
  bool Traced(const std::string& text) const {
    return Trace.find("NOW " + text + "\r\n") != std::string::npos;
  }

  std::int64_t Milliseconds() override { return clock_.Milliseconds(); }
  void Sleep(std::int32_t milliseconds) override { clock_.Sleep(milliseconds); }
  void PumpEvents() override {
    ++Pumps;
    if (OnPump) OnPump();
  }
  std::string DateAndTime() override { return "NOW"; }
  void ShowMessage(const std::string& text, const std::string& title) override {
    Add("message " + title + "|" + text);
    TakeMessage(text);
  }
  void ShowWarning(const std::string& text) override {
    Add("warning " + text);
    TakeMessage(text);
  }
  ReplaceAnswer AskReplace(const std::string& text) override {
    Add("replace " + text);
    if (ReplaceAnswers.empty()) {
      ADD_FAILURE() << "unexpected question: " << text;
      return ReplaceAnswer::kCancel;
    }
    const ReplaceAnswer answer = ReplaceAnswers.front();
    ReplaceAnswers.pop_front();
    return answer;
  }
  std::string AskOpenFileName(const FileQuestion& question) override {
    Add("open " + question.Title + "|" + question.Filter + "|" + question.FileName);
    return TakeFile();
  }
  std::string AskSaveFileName(const FileQuestion& question) override {
    Add("save " + question.Title + "|" + question.Filter + "|" + question.FileName);
    return TakeFile();
  }
  void OpenTransfer(const std::string& caption) override {
    Add("dialog " + caption);
    DialogOpen = true;
  }
  void ShowChunk(const std::string& text) override { Add("chunk " + text); }
  void ShowTotal(const std::string& text) override { Add("total " + text); }
  void ShowCounters(const TransferCounters& counters) override {
    Counters = counters;
    Add("counters " + std::to_string(counters.Retries) + " " + std::to_string(counters.BadCRCs) +
        " " + std::to_string(counters.BadSectors));
  }
  void ShowPercent(float percent) override {
    EXPECT_GE(percent, 0.0F);
    EXPECT_LE(percent, 100.0F);
    Add("percent " + std::to_string(static_cast<int>(percent)));
  }
  void FinishTransfer() override {
    Add("finish");
    DialogFinished = true;
  }
  void CloseTransfer() override {
    Add("close dialog");
    DialogOpen = false;
  }
  std::int32_t TickedSpeed() override { return Speed; }
  bool CheckBeforeTransfer() override { return Check; }
  bool PlayWaveOnSuccess() override { return Wave; }
  std::string ProgramFolder() override { return Folder; }
  bool PlayWave(const std::string& path, bool wait) override {
    Add("wave " + path + (wait ? " to its end" : ""));
    return false;
  }
  void ShowTrace(const std::string& text) override {
    Trace += text;
    ASSERT_GE(text.size(), 6U);
    Add("trace " + text.substr(4, text.size() - 6));
  }

 private:
  void TakeMessage(const std::string& text) {
    if (AcceptMessages) return;
    if (ExpectedMessages.empty()) {
      ADD_FAILURE() << "unexpected message: " << text;
      return;
    }
    EXPECT_EQ(ExpectedMessages.front(), text);
    ExpectedMessages.pop_front();
  }
  std::string TakeFile() {
    if (FileAnswers.empty()) {
      ADD_FAILURE() << "unexpected file dialog";
      return {};
    }
    std::string answer = FileAnswers.front();
    FileAnswers.pop_front();
    return answer;
  }

  VirtualClock& clock_;
};

}  // namespace sectorbox::testing
