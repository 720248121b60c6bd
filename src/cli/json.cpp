#include "cli/json.h"

#include "platform/text.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace nx {
namespace {

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  // Without recursion: the containers still open are on a stack of their
  // own, so that any depth the memory holds can be read.
  std::optional<JsonValue> Document(std::string& error) {
    JsonValue document;
    std::vector<JsonValue*> open;
    JsonValue* slot = &document;
    while (slot) {
      JsonValue* first = nullptr;  // of a container that has just opened
      if (!Value(*slot, open, first)) return Failed(error);
      slot = first;
      while (!slot && !open.empty()) {
        JsonValue& container = *open.back();
        const bool array = container.type == JsonValue::Type::Array;
        Blanks();
        if (pos_ < text_.size() && text_[pos_] == ',') {
          ++pos_;
          slot = NewSlot(container);
          if (!slot) return Failed(error);
        } else if (pos_ < text_.size() && text_[pos_] == (array ? ']' : '}')) {
          ++pos_;
          open.pop_back();
        } else {
          Fail(array ? "expected ',' or ']'" : "expected ',' or '}'");
          return Failed(error);
        }
      }
    }
    Blanks();
    if (pos_ == text_.size()) return document;
    Fail("unexpected text after the end of the document");
    return Failed(error);
  }

 private:
  std::nullopt_t Failed(std::string& error) const {
    error = Where() + ": " + error_;
    return std::nullopt;
  }
  bool Fail(const std::string& message) {
    if (error_.empty()) error_ = message;
    return false;
  }
  std::string Where() const {
    int line = 1, column = 1;
    for (size_t i = 0; i < pos_ && i < text_.size(); ++i) {
      if (text_[i] == '\n') {
        ++line;
        column = 1;
      } else {
        ++column;
      }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
  }
  void Blanks() {
    while (pos_ < text_.size() &&
           (text_[pos_] == ' ' || text_[pos_] == '\t' || text_[pos_] == '\n' || text_[pos_] == '\r'))
      ++pos_;
  }
  bool Literal(std::string_view word) {
    if (text_.substr(pos_, word.size()) != word) return Fail("unknown word");
    pos_ += word.size();
    return true;
  }

  // The place for the next element of an open container: a new array item,
  // or a new member after its name and colon. Null after a failure.
  JsonValue* NewSlot(JsonValue& container) {
    if (container.type == JsonValue::Type::Array) return &container.items.emplace_back();
    Blanks();
    if (pos_ >= text_.size() || text_[pos_] != '"') return Fail("expected a member name in quotes"), nullptr;
    std::string key;
    if (!String(key)) return nullptr;
    Blanks();
    if (pos_ >= text_.size() || text_[pos_] != ':') return Fail("expected ':' after a member name"), nullptr;
    ++pos_;
    return &container.members.emplace_back(std::move(key), JsonValue()).second;
  }

  // One value into `out`. A non-empty array or object is left open on
  // `open`, and `first` is the place of its first element, still to come.
  bool Value(JsonValue& out, std::vector<JsonValue*>& open, JsonValue*& first) {
    Blanks();
    if (pos_ >= text_.size()) return Fail("the document ends too early");
    const char c = text_[pos_];
    if (c == '{' || c == '[') {
      const char close = c == '{' ? '}' : ']';
      out.type = c == '{' ? JsonValue::Type::Object : JsonValue::Type::Array;
      ++pos_;
      Blanks();
      if (pos_ < text_.size() && text_[pos_] == close) {
        ++pos_;
        return true;
      }
      open.push_back(&out);
      first = NewSlot(out);
      return first != nullptr;
    }
    if (c == '"') {
      out.type = JsonValue::Type::String;
      return String(out.text);
    }
    if (c == 't' || c == 'f') {
      out.type = JsonValue::Type::Bool;
      out.boolean = c == 't';
      return Literal(c == 't' ? "true" : "false");
    }
    if (c == 'n') return Literal("null");
    if (c == '-' || (c >= '0' && c <= '9')) return Number(out);
    return Fail(std::string("unexpected character '") + c + "'");
  }

  bool Number(JsonValue& out) {
    const size_t start = pos_;
    if (text_[pos_] == '-') ++pos_;
    bool digits = false, integer = true;
    auto run = [&] {
      while (pos_ < text_.size() && text_[pos_] >= '0' && text_[pos_] <= '9') {
        ++pos_;
        digits = true;
      }
    };
    run();
    if (pos_ < text_.size() && text_[pos_] == '.') {
      integer = false;
      ++pos_;
      run();
    }
    if (pos_ < text_.size() && (text_[pos_] == 'e' || text_[pos_] == 'E')) {
      integer = false;
      ++pos_;
      if (pos_ < text_.size() && (text_[pos_] == '+' || text_[pos_] == '-')) ++pos_;
      run();
    }
    if (!digits) return Fail("a number without digits");
    out.type = JsonValue::Type::Number;
    out.text = std::string(text_.substr(start, pos_ - start));
    out.isInteger = false;
    if (integer) {
      errno = 0;
      out.integer = std::strtoll(out.text.c_str(), nullptr, 10);
      out.isInteger = errno == 0;
    }
    return true;
  }

  bool Hex4(unsigned& value) {
    if (text_.size() - pos_ < 4) return Fail("a \\u escape needs four hexadecimal digits");
    value = 0;
    for (int i = 0; i < 4; ++i) {
      const char c = text_[pos_++];
      value <<= 4;
      if (c >= '0' && c <= '9')
        value |= static_cast<unsigned>(c - '0');
      else if (c >= 'a' && c <= 'f')
        value |= static_cast<unsigned>(c - 'a' + 10);
      else if (c >= 'A' && c <= 'F')
        value |= static_cast<unsigned>(c - 'A' + 10);
      else
        return Fail("a \\u escape needs four hexadecimal digits");
    }
    return true;
  }

  bool String(std::string& out) {
    ++pos_;  // the opening quote
    for (;;) {
      if (pos_ >= text_.size()) return Fail("a text without its closing quote");
      const char c = text_[pos_++];
      if (c == '"') return true;
      if (static_cast<unsigned char>(c) < 0x20) return Fail("a control character inside a text");
      if (c != '\\') {
        out += c;
        continue;
      }
      if (pos_ >= text_.size()) return Fail("a text without its closing quote");
      const char e = text_[pos_++];
      switch (e) {
        case '"':
          out += '"';
          break;
        case '\\':
          out += '\\';
          break;
        case '/':
          out += '/';
          break;
        case 'b':
          out += '\b';
          break;
        case 'f':
          out += '\f';
          break;
        case 'n':
          out += '\n';
          break;
        case 'r':
          out += '\r';
          break;
        case 't':
          out += '\t';
          break;
        case 'u': {
          unsigned cp;
          if (!Hex4(cp)) return false;
          // A surrogate stands for a character only as the first half of a
          // pair directly followed by the second.
          if (cp >= 0xDC00 && cp < 0xE000) return Fail("a \\u escape of a lone low surrogate (no character)");
          if (cp >= 0xD800 && cp < 0xDC00) {
            unsigned low = 0;
            if (text_.substr(pos_, 2) != "\\u" || (pos_ += 2, !Hex4(low)) || low < 0xDC00 || low >= 0xE000)
              return Fail("a \\u escape of a high surrogate without its low surrogate (no character)");
            cp = 0x10000 + ((cp - 0xD800) << 10) + (low - 0xDC00);
          }
          AppendUtf8(out, cp);
          break;
        }
        default:
          return Fail(std::string("unknown escape \\") + e);
      }
    }
  }

  std::string_view text_;
  size_t pos_ = 0;
  std::string error_;
};

}  // namespace

JsonValue::~JsonValue() {
  // Releases nested values one at a time instead of by recursion.
  std::vector<JsonValue> pending;
  auto takeChildren = [&pending](JsonValue& value) {
    for (auto& item : value.items) pending.push_back(std::move(item));
    value.items.clear();
    for (auto& member : value.members) pending.push_back(std::move(member.second));
    value.members.clear();
  };
  takeChildren(*this);
  while (!pending.empty()) {
    JsonValue value = std::move(pending.back());
    pending.pop_back();
    takeChildren(value);
  }
}

const JsonValue* JsonValue::Find(std::string_view key) const {
  for (const auto& [name, value] : members)
    if (name == key) return &value;
  return nullptr;
}

std::optional<JsonValue> ParseJson(std::string_view text, std::string& error) {
  if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
  // Texts are taken only as well-formed UTF-8, never guessed at.
  if (const auto bad = FirstInvalidUtf8(text)) {
    const std::string_view before = text.substr(0, *bad);
    const size_t lineStart = before.rfind('\n');
    const size_t column = lineStart == std::string_view::npos ? *bad + 1 : *bad - lineStart;
    char byte[8];
    std::snprintf(byte, sizeof(byte), "0x%02X", static_cast<unsigned>(static_cast<unsigned char>(text[*bad])));
    error = "line " + std::to_string(std::count(before.begin(), before.end(), '\n') + 1) + ", column " +
            std::to_string(column) + ": not UTF-8 (byte " + byte + " does not begin a well-formed character)";
    return std::nullopt;
  }
  return Parser(text).Document(error);
}

std::string JsonQuote(std::string_view utf8) {
  std::string out = "\"";
  for (char c : utf8) {
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          char buffer[8];
          std::snprintf(buffer, sizeof(buffer), "\\u%04x", static_cast<unsigned>(static_cast<unsigned char>(c)));
          out += buffer;
        } else {
          out += c;
        }
    }
  }
  return out + "\"";
}

}  // namespace nx
