#pragma once

#include <cstdint>
#include <string>

// JSON on standard output, for programs to read.
namespace sectorbox::cli {

// A text of the BBC as a JSON string, with its quotes: one byte is one character. Bytes below 32
// and above 126 become "\u00XX".
[[nodiscard]] std::string JsonOfBbcText(const std::string& text);
// A text of the host as a JSON string, with its quotes. Characters of UTF-8 stay, apart from
// control characters; a byte that belongs to none becomes "\u00XX".
[[nodiscard]] std::string JsonOfHostText(const std::string& text);

// An object, put together field by field. Names of fields are plain ASCII without quotes.
class JsonObject {
 public:
  JsonObject& Number(const char* name, std::int64_t value);
  JsonObject& Bbc(const char* name, const std::string& text);
  JsonObject& Host(const char* name, const std::string& text);
  JsonObject& Null(const char* name);
  JsonObject& Object(const char* name, const JsonObject& value);

  // "{...}", all in one line.
  [[nodiscard]] std::string Text() const { return "{" + fields_ + "}"; }

 private:
  JsonObject& Add(const char* name, const std::string& value);

  std::string fields_;
};

// Prints one object and the line's end.
void PrintJson(const JsonObject& object);

// A list of objects that is printed as it grows, an object a line. End prints what is behind the
// last one; a list without it, as after an error, is no whole JSON value.
class JsonList {
 public:
  void Add(const JsonObject& object);
  void End();

 private:
  bool isEmpty_ = true;
};

}  // namespace sectorbox::cli
