// A small JSON reader and the quoting of JSON strings, for nxmenu's menu
// exchange format. Texts are UTF-8.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nx {

// Values may nest as deep as the memory allows: neither reading nor
// releasing them recurses.
struct JsonValue {
  JsonValue() = default;
  ~JsonValue();
  JsonValue(JsonValue&&) = default;
  JsonValue& operator=(JsonValue&&) = default;
  JsonValue(const JsonValue&) = delete;
  JsonValue& operator=(const JsonValue&) = delete;

  enum class Type { Null, Bool, Number, String, Array, Object };
  Type type = Type::Null;
  bool boolean = false;
  bool isInteger = false;  // a number written without fraction or exponent
  int64_t integer = 0;     // its value, when it fits 64 bits
  std::string text;        // string value, or the number as written
  std::vector<JsonValue> items;
  std::vector<std::pair<std::string, JsonValue>> members;

  const JsonValue* Find(std::string_view key) const;
};

// Parses a whole document. On failure: nothing, and `error` says where
// ("line 3, column 7: ...").
std::optional<JsonValue> ParseJson(std::string_view text, std::string& error);

// `text` as a JSON string literal, quotes included.
std::string JsonQuote(std::string_view utf8);

}  // namespace nx
