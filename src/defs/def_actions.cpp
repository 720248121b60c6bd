#include "defs/def_actions.h"

#include <stdexcept>

#include "defs/def_text.h"
#include "defs/hot_key.h"
#include "platform/folders.h"
#include "platform/text.h"
#include "platform/string_table.h"

namespace nx {
namespace {

constexpr int kKeyWithoutName = 5025, kShift = 5026, kControl = 5027, kAlt = 5028, kBrailleFrame = 5029;

}  // namespace

cDefActions::cDefActions(const ICodePage& codePage, IProfile& profile) : codePage_(codePage), profile_(profile) {
  for (int i = 0; i <= 30; ++i) brailleKeys_[static_cast<size_t>(i)] = L"H" + HexText(1u << i);
}

void cDefActions::RenderKeyCodeDescrip2List(const std::wstring& path) {
  auto lines = ReadDefLines(path, codePage_);
  if (!lines) return;
  for (std::wstring line : *lines) {
    const auto code = ParseInt16(NextToken(line, L'='));
    if (!code || *code < 0 || *code > 255) return;
    keyNames_[static_cast<size_t>(*code)] = TrimBlanks(NextToken(line, L'='));
  }
}

std::wstring cDefActions::GetHotKeyString(int16_t index) const {
  if (index < 0 || index > 255) throw std::out_of_range("key-name index outside 0..255");
  return keyNames_[static_cast<size_t>(index)];
}

bool cDefActions::InitNXactionsDef(const std::wstring& path, cNarrixActions* list) {
  if (!list) return false;
  list->Clear();
  auto lines = ReadDefLines(path, codePage_);
  if (!lines) return false;
  auto withoutTabs = [](std::wstring text) {
    text = TrimBlanks(text);
    std::wstring out;
    for (wchar_t c : text)
      if (c != L'\t') out += c;
    return out;
  };
  for (std::wstring line : *lines) {
    const std::wstring action = withoutTabs(NextToken(line, L';'));
    if (action.empty()) continue;
    const std::wstring comment = withoutTabs(NextToken(line, L';'));
    list->AddItem(action, comment.empty() ? action : comment);
  }
  return true;
}

void cDefActions::InitBrailleKeyMap(const std::wstring& path) {
  // A missing or unreadable profile gives every name its default.
  ProfileDocument document(codePage_);
  if (!path.empty()) profile_.Load(path, document);
  const ProfileDocument::Section names = document.KeysOf(L"KeyMap");
  for (int i = 0; i <= 30; ++i) {
    const std::wstring hex = HexText(1u << i);
    brailleKeys_[static_cast<size_t>(i)] = names.GetString(hex, L"H" + hex);
  }
  brailleKeys_[31] = names.GetString(L"CursorStatus", L"");
  brailleKeys_[32] = names.GetString(L"AuxStatus", L"");
}

std::wstring cDefActions::ModifierText(int16_t mask, bool longNames) const {
  std::wstring text;
  if (mask & hotkey::kNarrixKey) {
    text = L"Narrix";
    mask &= 0x1FFF;
  }
  const struct {
    int16_t bit;
    const wchar_t* shortName;
    int longId;
  } order[] = {{2, L"C", kControl}, {4, L"A", kAlt}, {1, L"S", kShift}};
  for (const auto& m : order) {
    if (!(mask & m.bit)) continue;
    if (!text.empty()) text += L"+";
    text += longNames ? LoadResText(m.longId) : m.shortName;
  }
  return text;
}

std::wstring cDefActions::KeyName(const std::wstring& path, int16_t key) {
  const auto now = std::chrono::steady_clock::now();
  auto found = keyTables_.find(path);
  if (found == keyTables_.end() || now - found->second.checked >= std::chrono::milliseconds(1)) {
    const auto stamp = StampOf(path);
    if (found == keyTables_.end() || found->second.stamp != stamp) {
      KeyTable table;
      table.stamp = stamp;
      if (auto lines = stamp ? ReadDefLines(path, codePage_) : std::nullopt) {
        std::array<bool, 256> seen{};
        for (std::wstring line : *lines) {
          const auto code = ParseInt16(NextToken(line, L'='));
          if (!code || *code > 255) break;
          const std::wstring name = TrimBlanks(NextToken(line, L'='));
          if (*code < 0) {
            table.negative.emplace(*code, name);
          } else if (!seen[static_cast<size_t>(*code)]) {
            seen[static_cast<size_t>(*code)] = true;
            table.names[static_cast<size_t>(*code)] = name;
          }
        }
      }
      found = keyTables_.insert_or_assign(path, std::move(table)).first;
    }
    found->second.checked = now;
  }
  const KeyTable& table = found->second;
  if (key >= 0 && key <= 255) return table.names[static_cast<size_t>(key)];
  auto name = table.negative.find(key);
  return name == table.negative.end() ? std::wstring() : name->second;
}

std::wstring cDefActions::GetKeyCodeAsText(const std::wstring& path, int16_t key, int16_t mask) {
  if (key == 0 && mask == 0) return {};
  std::wstring keyText = KeyName(path, key);
  if (keyText.empty()) keyText = LoadResText(kKeyWithoutName, std::to_wstring(key));
  std::wstring text = ModifierText(mask, false);
  if (!text.empty()) text += L"+";
  return text + keyText;
}

std::wstring cDefActions::GetKeyCodeAsTextEx(const std::wstring& path, int32_t& code) {
  if (!hotkey::IsBraille(code)) {
    const int32_t key = code % 65536, mask = code / 65536;
    if (key < -32768 || key > 32767 || mask < -32768 || mask > 32767)
      throw std::overflow_error("keyboard code does not fit 16 bits");
    return GetKeyCodeAsText(path, static_cast<int16_t>(key), static_cast<int16_t>(mask));
  }
  code = static_cast<int32_t>(hotkey::WithoutBraille(code));
  std::wstring text;
  if (!(static_cast<uint32_t>(code) & hotkey::kDiscardBit)) {
    for (int i = 0; i <= 30; ++i) {
      if (!(code & (1 << i))) continue;
      if (!text.empty()) text += L"+";
      text += brailleKeys_[static_cast<size_t>(i)];
    }
  } else {
    code = static_cast<int32_t>(static_cast<uint32_t>(code) & ~hotkey::kDiscardBit);
    const int32_t row = (code >> 16) & 0x3FFF, cell = code & 0xFFFF;
    if (cell >= 32767) throw std::overflow_error("status cell number overflow");
    const std::wstring number = std::to_wstring(cell + 1);
    if (row & 2)
      text = ReplaceAll(brailleKeys_[31], L"%1", number);
    else if (row & 4)
      text = ReplaceAll(brailleKeys_[32], L"%1", number);
  }
  return LoadResText(kBrailleFrame, text);
}

cDefServer::cDefServer(const ICodePage& codePage, IProfile& profile, std::wstring folder)
    : codePage_(codePage), profile_(profile), folder_(std::move(folder)) {}

cDefActions& cDefServer::DefActions() {
  if (!actions_) actions_ = std::make_unique<cDefActions>(codePage_, profile_);
  return *actions_;
}

std::wstring cDefServer::FormatKeycode(int16_t key, int16_t mask) {
  return DefActions().GetKeyCodeAsText(folder_ + L"gKeyCode.def", key, mask);
}

std::wstring cDefServer::FormatKeycodeEx(int32_t& code) {
  return DefActions().GetKeyCodeAsTextEx(folder_ + L"gKeyCode.def", code);
}

std::wstring cDefServer::KeyText(int32_t code) {
  try {
    return FormatKeycodeEx(code);
  } catch (const std::exception&) {
    return {};
  }
}

}  // namespace nx
