#include "menu/menu_file.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "defs/hot_key.h"
#include "menu/item_arena.h"
#include "defs/def_text.h"
#include "platform/folders.h"
#include "startup/file_helpers.h"
#include "platform/text.h"
#include "platform/string_table.h"

namespace nx {
namespace {

struct Record {
  int16_t level;
  uint32_t keyWord;
  std::string_view caption, action;
};

class Reader {
 public:
  explicit Reader(std::string_view bytes)
      : at_(reinterpret_cast<const unsigned char*>(bytes.data())), end_(at_ + bytes.size()) {}
  bool AtEnd() const { return at_ == end_; }
  // False when the bytes end inside the record.
  bool Next(Record& record) {
    if (Left() < 8) return false;
    record.level = static_cast<int16_t>(Word(0));
    record.keyWord = Word(2) | (Word(4) << 16);
    const size_t captionLength = Word(6);
    at_ += 8;
    if (Left() < captionLength + 2) return false;
    record.caption = Text(captionLength);
    const size_t actionLength = Word(0);
    at_ += 2;
    if (Left() < actionLength) return false;
    record.action = Text(actionLength);
    return true;
  }

 private:
  size_t Left() const { return static_cast<size_t>(end_ - at_); }
  uint32_t Word(size_t offset) const { return static_cast<uint32_t>(at_[offset] | (at_[offset + 1] << 8)); }
  std::string_view Text(size_t length) {
    const std::string_view text(reinterpret_cast<const char*>(at_), length);
    at_ += length;
    return text;
  }
  const unsigned char* at_;
  const unsigned char* end_;
};

void PutUnsigned(std::string& out, uint32_t v, size_t width) {
  for (size_t i = 0; i < width; ++i) out += static_cast<char>((v >> (8 * i)) & 0xFF);
}

constexpr int kNameTooLong = 670, kCommandTooLong = 671, kTooDeep = 672, kNameUnencodable = 673,
              kCommandUnencodable = 674;

// An item's caption as a message names it: long ones cut short.
std::wstring CaptionForMessage(const std::wstring& caption) {
  constexpr size_t kLongest = 60;
  return caption.size() <= kLongest ? caption : caption.substr(0, kLongest) + L"...";
}

// The text in the code page after its length; encoded straight into the
// output, and the length filled in afterwards. False, with the reason, when
// the file cannot hold it.
bool PutText(std::string& out, const ICodePage& codePage, const cMenuItem& item, bool action, std::wstring* reason) {
  const std::wstring& text = action ? item.Action : item.Caption;
  // Plain ASCII is in every code page; only other texts are looked at.
  bool ascii = true;
  for (wchar_t c : text) ascii &= static_cast<unsigned>(c) < 0x80;
  if (!ascii) {
    if (const auto bad = codePage.FirstUnencodable(text)) {
      if (reason)
        *reason = ReplaceAll(ReplaceAll(LoadResText(action ? kCommandUnencodable : kNameUnencodable), L"%2",
                                        DescribeCharacter(text, *bad)),
                             L"%1", CaptionForMessage(item.Caption));
      return false;
    }
  }
  const size_t at = out.size();
  out.append(2, '\0');
  codePage.AppendAnsi(text, out);
  const size_t length = out.size() - at - 2;
  if (length > 0xFFFF) {
    if (reason) *reason = LoadResText(action ? kCommandTooLong : kNameTooLong, CaptionForMessage(item.Caption));
    return false;
  }
  out[at] = static_cast<char>(length & 0xFF);
  out[at + 1] = static_cast<char>(length >> 8);
  return true;
}

// Attaches `item` to the tree according to its level and returns it; null
// when the level leads above the root.
cMenuItem* Attach(MenuItemPtr item, cMenuItem* last, int previousLevel, int level) {
  static const std::wstring noKey;  // spares a new empty key for every item
  if (level == previousLevel) {
    cMenuItem* parent = last->Parent;
    return parent ? parent->SubItems.Append(0, last, std::move(item), noKey) : nullptr;
  }
  if (level < previousLevel) {
    cMenuItem* target = last->Parent;
    for (int up = previousLevel - level; up > 0 && target; --up) target = target->Parent;
    return target ? target->SubItems.Append(1, target, std::move(item), noKey) : nullptr;
  }
  return last->SubItems.Append(1, last, std::move(item), noKey);
}

// Some five hundred items.
constexpr size_t kPooledFromBytes = 32 * 1024;

}  // namespace

MenuReadResult ParseMenu(std::string_view bytes, const ICodePage& codePage,
                         const std::function<int32_t(const std::wstring&)>& brailleCode, int32_t& counter) {
  MenuReadResult result;
  result.root = cMenuItem::New();
  result.root->Caption = L"[root]";
  // Only a large menu is worth the blocks: the menus users keep are a few
  // dozen items, each of which would otherwise hold a whole block.
  const bool pooled = bytes.size() >= kPooledFromBytes;
  ItemArena arena;
  const ArenaAllocator<cMenuItem> allocator(arena);
  // The tree keeps every item it was given until the reading ends, so the
  // last item is known by its address alone: holding it would be two more
  // operations on its count for every item.
  cMenuItem* last = result.root.get();
  int previousLevel = -1;
  Reader in(bytes);
  Record record;
  while (!in.AtEnd()) {
    if (!in.Next(record)) {
      result.complete = false;
      break;
    }
    // The texts are made first and moved in after the item is made, by when
    // the new strings' fields are written and can be read back at full speed.
    std::wstring caption = codePage.ToWide(record.caption);
    std::wstring action = codePage.ToWide(record.action);
    MenuItemPtr item = pooled ? std::allocate_shared<cMenuItem>(allocator) : std::make_shared<cMenuItem>();
    item->Caption = std::move(caption);
    item->Action = std::move(action);
    const bool discard = (record.keyWord & hotkey::kDiscardBit) != 0;
    int32_t code = static_cast<int32_t>(record.keyWord & ~hotkey::kDiscardBit);
    if (hotkey::IsBraille(code))
      code = static_cast<int32_t>(static_cast<uint32_t>(brailleCode ? brailleCode(item->Action) : 0) |
                                  hotkey::kBrailleBit);
    item->HotKey = code;
    item->Discard = discard;
    item->MenuId = counter;
    if (counter == std::numeric_limits<int32_t>::max()) {
      result.complete = false;
      break;
    }
    ++counter;
    cMenuItem* added = Attach(std::move(item), last, previousLevel, record.level);
    if (!added) {
      result.complete = false;
      break;
    }
    last = added;
    previousLevel = record.level;
  }
  return result;
}

std::optional<std::string> SerializeMenu(const cMenuItem& root, const ICodePage& codePage,
                                         const std::function<void(const std::wstring&, uint32_t)>& brailleEntry,
                                         std::wstring* reason) {
  std::string out;
  const bool whole = WalkTree(
      root,
      [&](const cMenuItem& item, size_t level, int) {
        if (level > 0x7FFF) {
          if (reason) *reason = LoadResText(kTooDeep);
          return false;
        }
        uint32_t keyWord = static_cast<uint32_t>(item.HotKey);
        const bool braille = hotkey::IsBraille(item.HotKey);
        // A braille code has no room for Discard: it reads back as false.
        if (!braille && item.Discard) keyWord |= hotkey::kDiscardBit;
        PutUnsigned(out, static_cast<uint32_t>(level), 2);
        PutUnsigned(out, keyWord, 4);
        if (!PutText(out, codePage, item, false, reason) || !PutText(out, codePage, item, true, reason)) return false;
        if (braille && brailleEntry) brailleEntry(item.Action, hotkey::WithoutBraille(item.HotKey));
        return true;
      },
      [](const cMenuItem&, size_t) {});
  if (!whole) return std::nullopt;
  return out;
}

MenuItemPtr cMenuFile::InitCommandDef(const std::wstring& menuPath, const std::wstring& braillePath, bool* complete) {
  if (complete) *complete = true;
  std::string bytes;
  ReadFailure failure;
  if (!ReadFileBytes(menuPath, bytes, &failure)) {
    if (complete && !failure.missing) *complete = false;
    return nullptr;
  }
  // The profile is read once for all the items; a missing or unreadable
  // one gives every braille item the code 0.
  ProfileDocument profile(codePage_);
  if (!braillePath.empty()) profile_.Load(braillePath, profile);
  const ProfileDocument::Section codes = profile.KeysOf(L"Actions");
  MenuReadResult result = ParseMenu(
      bytes, codePage_,
      [&codes](const std::wstring& action) {
        const std::wstring value = codes.GetString(action, L"");
        return value.empty() ? 0 : ParseHex32(value).value_or(0);
      },
      ItemCounter);
  if (complete) *complete = result.complete;
  return result.root;
}

bool cMenuFile::FlushCommand2Def(const std::wstring& menuPath, const std::wstring& braillePath, const cMenuItem& root,
                                 WriteFailure* failure) {
  auto fail = [failure](const std::wstring& file, std::wstring reason, bool menuWritten) {
    if (failure) *failure = {file, std::move(reason), menuWritten};
    return false;
  };
  std::vector<std::pair<std::wstring, std::wstring>> brailleCodes;
  std::wstring reason;
  auto bytes = SerializeMenu(
      root, codePage_,
      [&](const std::wstring& action, uint32_t code) { brailleCodes.emplace_back(action, HexText(code)); }, &reason);
  if (!bytes) return fail(menuPath, reason, false);
  const bool withCodes = !braillePath.empty() && !brailleCodes.empty();
  ProfileDocument profile(codePage_);
  ReadFailure unreadable;
  if (withCodes && !profile_.Load(braillePath, profile, &unreadable))
    return fail(braillePath, unreadable.reason, false);
  if (!WriteFileBytes(menuPath, *bytes, &reason)) return fail(menuPath, reason, false);
  if (!withCodes) return true;
  profile.WriteKeys(L"Actions", brailleCodes);
  return profile_.Save(braillePath, profile, &reason) || fail(braillePath, reason, true);
}

namespace {

std::wstring MenuFolder(const MenuLocation& menu) {
  return menu.general ? menu.menuDir : JoinPath(menu.menuDir, menu.appName);
}

}  // namespace

std::wstring MenuFilePath(const MenuLocation& menu) { return JoinPath(MenuFolder(menu), L"Command.mnu"); }

std::wstring BrailleProfilePath(const MenuLocation& menu) {
  return menu.brailleName.empty() ? std::wstring() : JoinPath(MenuFolder(menu), menu.brailleName + L".ini");
}

}  // namespace nx
