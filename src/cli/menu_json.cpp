#include "cli/menu_json.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "platform/text.h"

namespace nx {
namespace {

// Items deeper than this are written at its indentation, so that the size of
// the text grows with the number of items and not with their depth.
constexpr size_t kDeepestIndentedLevel = 10;

void Indent(std::string& out, size_t depth) { out.append(depth * 2, ' '); }

// The indentation of an item at `level` (its members one step deeper).
size_t ItemIndent(size_t level) { return 2 + 2 * std::min(level, kDeepestIndentedLevel); }

// The fields of one item, not its children; false with `error` naming the
// problem and the member, after the place of the item that the caller puts
// before it.
bool ReadFields(const JsonValue& value, cMenuItem& item, std::string& error) {
  if (value.type != JsonValue::Type::Object) {
    error = ": an item must be an object";
    return false;
  }
  for (const auto& [name, member] : value.members) {
    const std::string place = "." + name;
    if (name == "caption" || name == "action") {
      if (member.type != JsonValue::Type::String) {
        error = place + ": must be a text";
        return false;
      }
      auto text = Utf8ToWideStrict(member.text);
      if (!text) {
        error = place + ": not UTF-8";
        return false;
      }
      (name == "caption" ? item.Caption : item.Action) = std::move(*text);
    } else if (name == "hotKey") {
      if (member.type != JsonValue::Type::Number || !member.isInteger || member.integer < INT32_MIN ||
          member.integer > INT32_MAX) {
        error = place + ": must be a whole number from -2147483648 to 2147483647";
        return false;
      }
      item.HotKey = static_cast<int32_t>(member.integer);
    } else if (name == "discard") {
      if (member.type != JsonValue::Type::Bool) {
        error = place + ": must be true or false";
        return false;
      }
      item.Discard = member.boolean;
    } else if (name == "items") {
      if (member.type != JsonValue::Type::Array) {
        error = place + ": must be a list of items";
        return false;
      }
    } else if (name != "menuId" && name != "hotKeyText") {
      error = place + ": unknown member";
      return false;
    }
  }
  if (!value.Find("caption")) {
    error = ": the item has no \"caption\"";
    return false;
  }
  return true;
}

// Fills `root` from the list `items`, top down and without recursion: each
// item joins its parent before its own children are read, so that it is
// still a leaf when it is added.
// The first text of the item that `codePage` cannot store, as
// ' "Caption": the action holds U+0159 "ř", which code page 1252 cannot
// store'; empty when it can store both.
std::string Unstorable(const cMenuItem& item, const ICodePage& codePage) {
  for (const bool action : {false, true}) {
    const std::wstring& text = action ? item.Action : item.Caption;
    const auto bad = codePage.FirstUnencodable(text);
    if (!bad) continue;
    const std::string character = WideToUtf8(DescribeCharacter(text, *bad));  // "ř" (U+0159)
    return " " + JsonQuote(WideToUtf8(item.Caption)) + ": the " + (action ? "action" : "caption") + " holds " +
           character + ", which code page " + std::to_string(codePage.Id()) + " cannot store";
  }
  return {};
}

bool ReadTree(const JsonValue& items, cMenuItem& root, std::string& error, const ICodePage* codePage) {
  if (items.type != JsonValue::Type::Array) {
    error = "items: must be a list of items";
    return false;
  }
  struct Level {
    const JsonValue* list;
    cMenuItem* parent;
    size_t next;
  };
  std::vector<Level> stack{{&items, &root, 0}};
  // "items[2].items[0]": the place of the item each level is at, built only
  // for a message, as it grows with the depth.
  auto where = [&stack] {
    std::string place;
    for (const Level& level : stack)
      place += (place.empty() ? "items[" : ".items[") + std::to_string(level.next - 1) + "]";
    return place;
  };
  while (!stack.empty()) {
    Level& level = stack.back();
    if (level.next >= level.list->items.size()) {
      stack.pop_back();
      continue;
    }
    const JsonValue& value = level.list->items[level.next++];
    MenuItemPtr item = cMenuItem::New();
    if (!ReadFields(value, *item, error) || (codePage && !(error = Unstorable(*item, *codePage)).empty())) {
      error = where() + error;
      return false;
    }
    level.parent->SubItems.Add(1, level.parent, item);
    if (const JsonValue* children = value.Find("items")) stack.push_back({children, item.get(), 0});
  }
  return true;
}

}  // namespace

std::string MenuToJson(const cMenuItem& root, bool complete, const MenuJsonOptions& options) {
  std::string out = "{\n  \"items\": [";
  WalkTree(
      root,
      [&](const cMenuItem& item, size_t level, int position) {
        const size_t depth = ItemIndent(level);
        out += position > 1 ? ",\n" : "\n";
        Indent(out, depth);
        out += "{\n";
        auto field = [&](const char* name, const std::string& value) {
          Indent(out, depth + 1);
          out += "\"" + std::string(name) + "\": " + value + ",\n";
        };
        field("caption", JsonQuote(WideToUtf8(item.Caption)));
        field("action", JsonQuote(WideToUtf8(item.Action)));
        field("hotKey", std::to_string(item.HotKey));
        field("discard", item.Discard ? "true" : "false");
        if (options.withIds) field("menuId", std::to_string(item.MenuId));
        if (options.hotKeyText) field("hotKeyText", JsonQuote(WideToUtf8(options.hotKeyText(item.HotKey))));
        Indent(out, depth + 1);
        out += "\"items\": [";
        return true;
      },
      [&](const cMenuItem& item, size_t level) {
        const size_t depth = ItemIndent(level);
        if (item.SubItems.Count() > 0) {
          out += "\n";
          Indent(out, depth + 1);
        }
        out += "]\n";
        Indent(out, depth);
        out += "}";
      });
  out += root.SubItems.Count() > 0 ? "\n  ]" : "]";
  out += ",\n  \"complete\": ";
  out += complete ? "true" : "false";
  out += "\n}\n";
  return out;
}

MenuItemPtr MenuFromJson(const JsonValue& document, std::string& error, const ICodePage* codePage) {
  if (document.type != JsonValue::Type::Object) {
    error = "the document must be an object with \"items\"";
    return nullptr;
  }
  const JsonValue* items = document.Find("items");
  if (!items) {
    error = "the document has no \"items\"";
    return nullptr;
  }
  for (const auto& [name, member] : document.members) {
    if (name != "items" && name != "complete") {
      error = name + ": unknown member";
      return nullptr;
    }
  }
  MenuItemPtr root = cMenuItem::New();
  root->Caption = L"[root]";
  if (!ReadTree(*items, *root, error, codePage)) return nullptr;
  return root;
}

}  // namespace nx
