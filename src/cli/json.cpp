#include "cli/json.h"

#include "platform/text.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace nx {
namespace {

// Deep enough for any real menu (two levels of nesting per menu level), and
// shallow enough for the smallest thread stack the program runs on.
constexpr int kMaxDepth = 4000;

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  std::optional<JsonValue> Document(std::string& error) {
    JsonValue value;
    if (Value(value, 0)) {
      Blanks();
      if (pos_ == text_.size()) return value;
      Fail("unexpected text after the end of the document");
    }
    error = Where() + ": " + error_;
    return std::nullopt;
  }

 private:
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

  bool Value(JsonValue& out, int depth) {
    if (depth > kMaxDepth) return Fail("nested too deeply");
    Blanks();
    if (pos_ >= text_.size()) return Fail("the document ends too early");
    const char c = text_[pos_];
    if (c == '{') return Object(out, depth);
    if (c == '[') return Array(out, depth);
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
          if (cp >= 0xD800 && cp < 0xDC00 && text_.substr(pos_, 2) == "\\u") {
            pos_ += 2;
            unsigned low;
            if (!Hex4(low)) return false;
            if (low >= 0xDC00 && low < 0xE000) cp = 0x10000 + ((cp - 0xD800) << 10) + (low - 0xDC00);
          }
          AppendUtf8(out, cp);
          break;
        }
        default:
          return Fail(std::string("unknown escape \\") + e);
      }
    }
  }

  bool Array(JsonValue& out, int depth) {
    out.type = JsonValue::Type::Array;
    ++pos_;
    Blanks();
    if (pos_ < text_.size() && text_[pos_] == ']') {
      ++pos_;
      return true;
    }
    for (;;) {
      out.items.emplace_back();
      if (!Value(out.items.back(), depth + 1)) return false;
      Blanks();
      if (pos_ < text_.size() && text_[pos_] == ',') {
        ++pos_;
        continue;
      }
      if (pos_ < text_.size() && text_[pos_] == ']') {
        ++pos_;
        return true;
      }
      return Fail("expected ',' or ']'");
    }
  }

  bool Object(JsonValue& out, int depth) {
    out.type = JsonValue::Type::Object;
    ++pos_;
    Blanks();
    if (pos_ < text_.size() && text_[pos_] == '}') {
      ++pos_;
      return true;
    }
    for (;;) {
      Blanks();
      if (pos_ >= text_.size() || text_[pos_] != '"') return Fail("expected a member name in quotes");
      std::string key;
      if (!String(key)) return false;
      Blanks();
      if (pos_ >= text_.size() || text_[pos_] != ':') return Fail("expected ':' after a member name");
      ++pos_;
      out.members.emplace_back(std::move(key), JsonValue());
      if (!Value(out.members.back().second, depth + 1)) return false;
      Blanks();
      if (pos_ < text_.size() && text_[pos_] == ',') {
        ++pos_;
        continue;
      }
      if (pos_ < text_.size() && text_[pos_] == '}') {
        ++pos_;
        return true;
      }
      return Fail("expected ',' or '}'");
    }
  }

  std::string_view text_;
  size_t pos_ = 0;
  std::string error_;
};

}  // namespace

const JsonValue* JsonValue::Find(std::string_view key) const {
  for (const auto& [name, value] : members)
    if (name == key) return &value;
  return nullptr;
}

std::optional<JsonValue> ParseJson(std::string_view text, std::string& error) {
  if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
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
