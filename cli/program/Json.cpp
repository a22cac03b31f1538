#include "cli/program/Json.h"

#include <array>
#include <string_view>

#include "cli/program/TerminalText.h"
#include "disc/format/Text.h"

namespace sectorbox::cli {
namespace {

std::uint8_t ByteAt(std::string_view text, std::size_t at) {
  return static_cast<std::uint8_t>(text[at]);
}

std::string Escaped(std::uint8_t byte) {
  return "\\u00" + Hex(byte, 2);
}

// An ASCII character within a string.
std::string JsonOfAscii(std::uint8_t byte) {
  if (byte < 32 || byte == 127) return Escaped(byte);
  const char c = static_cast<char>(byte);
  return c == '"' || c == '\\' ? std::string{'\\', c} : std::string{c};
}

// How many bytes the UTF-8 character at the start of text has. 0 if there is no whole one of two
// bytes or more, if it is longer than it needs to be or no character at all, and if it is one of
// the control characters 128 to 159.
std::size_t Utf8Length(std::string_view text) {
  struct Form {
    std::uint8_t Mask, Mark;
    std::uint32_t Least;  // below it a character has a shorter form
  };
  static constexpr std::array<Form, 3> kForms = {
      {{0xE0, 0xC0, 160}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}}};
  for (std::size_t more = 1; more <= kForms.size(); ++more) {
    const Form& form = kForms[more - 1];
    if ((ByteAt(text, 0) & form.Mask) != form.Mark) continue;
    if (text.size() <= more) return 0;
    std::uint32_t character = ByteAt(text, 0) & static_cast<std::uint8_t>(~form.Mask);
    for (std::size_t i = 1; i <= more; ++i) {
      if ((ByteAt(text, i) & 0xC0) != 0x80) return 0;
      character = character << 6 | (ByteAt(text, i) & 0x3FU);
    }
    const bool isSurrogate = character >= 0xD800 && character < 0xE000;
    return character < form.Least || isSurrogate || character > 0x10FFFF ? 0 : more + 1;
  }
  return 0;
}

}  // namespace

std::string JsonOfBbcText(const std::string& text) {
  std::string json = "\"";
  for (const char c : text) {
    const auto byte = static_cast<std::uint8_t>(c);
    json += byte > 126 ? Escaped(byte) : JsonOfAscii(byte);
  }
  return json + "\"";
}

std::string JsonOfHostText(const std::string& text) {
  std::string json = "\"";
  for (std::size_t i = 0; i < text.size();) {
    const std::uint8_t byte = ByteAt(text, i);
    const std::size_t length = Utf8Length(std::string_view(text).substr(i));
    if (length > 0) {
      json += text.substr(i, length);
    } else {
      json += byte > 126 ? Escaped(byte) : JsonOfAscii(byte);
    }
    i += length > 0 ? length : 1;
  }
  return json + "\"";
}

JsonObject& JsonObject::Number(const char* name, std::int64_t value) {
  return Add(name, std::to_string(value));
}

JsonObject& JsonObject::Bbc(const char* name, const std::string& text) {
  return Add(name, JsonOfBbcText(text));
}

JsonObject& JsonObject::Host(const char* name, const std::string& text) {
  return Add(name, JsonOfHostText(text));
}

JsonObject& JsonObject::Null(const char* name) {
  return Add(name, "null");
}

JsonObject& JsonObject::Object(const char* name, const JsonObject& value) {
  return Add(name, value.Text());
}

JsonObject& JsonObject::Add(const char* name, const std::string& value) {
  if (!fields_.empty()) fields_ += ", ";
  fields_ += std::string("\"") + name + "\": " + value;
  return *this;
}

void PrintJson(const JsonObject& object) {
  PrintBytes(object.Text() + "\n");
}

void JsonList::Add(const JsonObject& object) {
  PrintBytes((isEmpty_ ? "[\n" : ",\n") + object.Text());
  isEmpty_ = false;
}

void JsonList::End() {
  PrintBytes(isEmpty_ ? "[]\n" : "\n]\n");
}

}  // namespace sectorbox::cli
