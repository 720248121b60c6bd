#include "cli/menu_json.h"

#include <cstdint>

#include "platform/text.h"

namespace nx {
namespace {

void Indent(std::string& out, size_t depth) { out.append(depth * 2, ' '); }

bool ReadItems(const JsonValue& list, cMenuItem& parent, const std::string& where, std::string& error);

bool ReadItem(const JsonValue& value, cMenuItem& parent, const std::string& where, std::string& error) {
  if (value.type != JsonValue::Type::Object) {
    error = where + ": an item must be an object";
    return false;
  }
  MenuItemPtr item = cMenuItem::New();
  for (const auto& [name, member] : value.members) {
    const std::string place = where + "." + name;
    if (name == "caption" || name == "action") {
      if (member.type != JsonValue::Type::String) {
        error = place + ": must be a text";
        return false;
      }
      (name == "caption" ? item->Caption : item->Action) = Utf8ToWide(member.text);
    } else if (name == "hotKey") {
      if (member.type != JsonValue::Type::Number || !member.isInteger || member.integer < INT32_MIN ||
          member.integer > INT32_MAX) {
        error = place + ": must be a whole number from -2147483648 to 2147483647";
        return false;
      }
      item->HotKey = static_cast<int32_t>(member.integer);
    } else if (name == "discard") {
      if (member.type != JsonValue::Type::Bool) {
        error = place + ": must be true or false";
        return false;
      }
      item->Discard = member.boolean;
    } else if (name == "items") {
      if (!ReadItems(member, *item, place, error)) return false;
    } else if (name != "menuId" && name != "hotKeyText") {
      error = place + ": unknown member";
      return false;
    }
  }
  if (!value.Find("caption")) {
    error = where + ": the item has no \"caption\"";
    return false;
  }
  parent.SubItems.Add(1, &parent, item);
  return true;
}

bool ReadItems(const JsonValue& list, cMenuItem& parent, const std::string& where, std::string& error) {
  if (list.type != JsonValue::Type::Array) {
    error = where + ": must be a list of items";
    return false;
  }
  for (size_t i = 0; i < list.items.size(); ++i)
    if (!ReadItem(list.items[i], parent, where + "[" + std::to_string(i) + "]", error)) return false;
  return true;
}

}  // namespace

std::string MenuToJson(const cMenuItem& root, bool complete, const MenuJsonOptions& options) {
  std::string out = "{\n  \"items\": [";
  WalkTree(
      root,
      [&](const cMenuItem& item, size_t level, int position) {
        const size_t depth = 2 + 2 * level;  // the item's own indentation
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
        const size_t depth = 2 + 2 * level;
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

MenuItemPtr MenuFromJson(const JsonValue& document, std::string& error) {
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
  if (!ReadItems(*items, *root, "items", error)) return nullptr;
  return root;
}

}  // namespace nx
