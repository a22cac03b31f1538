#pragma once

#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace sectorbox::testing {

// A JSON value.
struct JsonValue {
  enum class Kind { kNull, kTruth, kNumber, kText, kList, kObject };
  Kind What = Kind::kNull;
  bool Truth = false;
  double Number = 0;
  // The code points of a string; "\u0041" is one.
  std::u32string Text;
  std::vector<JsonValue> Items;
  std::map<std::string, JsonValue> Fields;

  // A field that has to be there.
  const JsonValue& operator[](const std::string& name) const {
    const auto found = Fields.find(name);
    if (found == Fields.end()) throw std::runtime_error("no field " + name);
    return found->second;
  }
  bool Has(const std::string& name) const { return Fields.count(name) != 0; }
  bool IsNull() const { return What == Kind::kNull; }
  // The string as bytes, one a code point below 256.
  std::string Latin() const {
    if (What != Kind::kText) throw std::runtime_error("no string");
    std::string text;
    for (const char32_t c : Text) text += static_cast<char>(c < 256 ? c : U'?');
    return text;
  }
  std::int64_t Whole() const {
    if (What != Kind::kNumber) throw std::runtime_error("no number");
    return static_cast<std::int64_t>(Number);
  }
};

// Reads one JSON value, by the letter of the standard: nothing but blanks around it, no comma too
// many, no control character in a string, valid UTF-8, no field twice. std::runtime_error if the
// text is anything else.
class StrictJson {
 public:
  static JsonValue Parse(const std::string& text) {
    StrictJson json(text);
    JsonValue value = json.Value();
    json.SkipBlanks();
    json.Require(json.at_ == text.size(), "the end");
    return value;
  }

 private:
  explicit StrictJson(const std::string& text) : text_(text) {}

  void Require(bool right, const std::string& what) const {
    if (!right) throw std::runtime_error(what + " is wanted at " + std::to_string(at_));
  }
  unsigned char Peek() const {
    return at_ < text_.size() ? static_cast<unsigned char>(text_[at_]) : 0;
  }
  unsigned char Next() {
    Require(at_ < text_.size(), "more");
    return static_cast<unsigned char>(text_[at_++]);
  }
  void Expect(char c) {
    Require(Peek() == static_cast<unsigned char>(c), std::string(1, c));
    ++at_;
  }
  void ExpectWord(const std::string& word) {
    Require(text_.compare(at_, word.size(), word) == 0, word);
    at_ += word.size();
  }
  void SkipBlanks() {
    while (at_ < text_.size() && std::string(" \t\r\n").find(text_[at_]) != std::string::npos) {
      ++at_;
    }
  }
  bool IsDigit() const { return Peek() >= '0' && Peek() <= '9'; }
  void Digits() {
    Require(IsDigit(), "a digit");
    while (IsDigit()) ++at_;
  }

  JsonValue Value() {
    SkipBlanks();
    JsonValue value;
    switch (Peek()) {
      case '{':
        return Object();
      case '[':
        return List();
      case '"':
        value.What = JsonValue::Kind::kText;
        value.Text = String();
        return value;
      case 'n':
        ExpectWord("null");
        return value;
      case 't':
      case 'f':
        value.What = JsonValue::Kind::kTruth;
        value.Truth = Peek() == 't';
        ExpectWord(value.Truth ? "true" : "false");
        return value;
      default:
        return Number();
    }
  }

  JsonValue Number() {
    const std::size_t start = at_;
    if (Peek() == '-') ++at_;
    if (Peek() == '0') {
      ++at_;
    } else {
      Digits();
    }
    if (Peek() == '.') {
      ++at_;
      Digits();
    }
    if (Peek() == 'e' || Peek() == 'E') {
      ++at_;
      if (Peek() == '+' || Peek() == '-') ++at_;
      Digits();
    }
    JsonValue value;
    value.What = JsonValue::Kind::kNumber;
    value.Number = std::strtod(text_.substr(start, at_ - start).c_str(), nullptr);
    return value;
  }

  JsonValue List() {
    JsonValue value;
    value.What = JsonValue::Kind::kList;
    Expect('[');
    SkipBlanks();
    if (Peek() != ']') {
      value.Items.push_back(Value());
      for (SkipBlanks(); Peek() == ','; SkipBlanks()) {
        ++at_;
        value.Items.push_back(Value());
      }
    }
    Expect(']');
    return value;
  }

  JsonValue Object() {
    JsonValue value;
    value.What = JsonValue::Kind::kObject;
    Expect('{');
    SkipBlanks();
    if (Peek() != '}') {
      Field(value);
      for (SkipBlanks(); Peek() == ','; SkipBlanks()) {
        ++at_;
        Field(value);
      }
    }
    Expect('}');
    return value;
  }

  void Field(JsonValue& object) {
    SkipBlanks();
    Require(Peek() == '"', "a name");
    std::string name;
    for (const char32_t c : String()) name += static_cast<char>(c);
    SkipBlanks();
    Expect(':');
    Require(object.Fields.emplace(name, Value()).second, "another name than " + name);
  }

  std::u32string String() {
    std::u32string text;
    Expect('"');
    while (Peek() != '"') {
      const unsigned char c = Next();
      Require(c >= 32, "no control character");
      text += c == '\\' ? Escape() : c < 128 ? char32_t{c} : Utf8(c);
    }
    Expect('"');
    return text;
  }

  char32_t Escape() {
    const unsigned char c = Next();
    const std::string plain = "\"\\/bfnrt";
    const auto at = plain.find(static_cast<char>(c));
    if (at != std::string::npos) return static_cast<unsigned char>("\"\\/\b\f\n\r\t"[at]);
    Require(c == 'u', "an escape");
    const std::size_t start = at_;
    for (int i = 0; i < 4; ++i) Require(std::isxdigit(Next()) != 0, "a hexadecimal digit");
    const auto code =
        static_cast<char32_t>(std::strtoul(text_.substr(start, 4).c_str(), nullptr, 16));
    Require(code < 0xD800 || code >= 0xE000, "a character that needs no second half");
    return code;
  }

  char32_t Utf8(unsigned char first) {
    const int more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
    Require(first >= 0xC2 && first <= 0xF4, "UTF-8");
    char32_t code = first & (0x3FU >> more);
    for (int i = 0; i < more; ++i) {
      const unsigned char c = Next();
      Require((c & 0xC0) == 0x80, "UTF-8");
      code = code << 6 | (c & 0x3FU);
    }
    const char32_t least = more == 3 ? 0x10000 : more == 2 ? 0x800 : 0x80;
    Require(code >= least && code <= 0x10FFFF && (code < 0xD800 || code >= 0xE000), "UTF-8");
    return code;
  }

  const std::string& text_;
  std::size_t at_ = 0;
};

}  // namespace sectorbox::testing
