#include "menu/menu_file.h"

#include <limits>
#include <vector>

namespace nx {
namespace {

class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}
  bool AtEnd() const { return pos_ >= bytes_.size(); }
  bool Int16(int16_t& v) {
    uint32_t u;
    if (!Unsigned(2, u)) return false;
    v = static_cast<int16_t>(static_cast<uint16_t>(u));
    return true;
  }
  bool Int32(uint32_t& v) { return Unsigned(4, v); }
  bool Text(std::string_view& text) {
    uint32_t length;
    if (!Unsigned(2, length) || bytes_.size() - pos_ < length) return false;
    text = bytes_.substr(pos_, length);
    pos_ += length;
    return true;
  }

 private:
  bool Unsigned(size_t width, uint32_t& v) {
    if (bytes_.size() - pos_ < width) return false;
    v = 0;
    for (size_t i = 0; i < width; ++i)
      v |= static_cast<uint32_t>(static_cast<unsigned char>(bytes_[pos_ + i])) << (8 * i);
    pos_ += width;
    return true;
  }
  std::string_view bytes_;
  size_t pos_ = 0;
};

void PutUnsigned(std::string& out, uint32_t v, size_t width) {
  for (size_t i = 0; i < width; ++i) out += static_cast<char>((v >> (8 * i)) & 0xFF);
}

// The text in the code page after its length; encoded straight into the
// output, and the length filled in afterwards.
bool PutText(std::string& out, const ICodePage& codePage, const std::wstring& text) {
  const size_t at = out.size();
  out.append(2, '\0');
  codePage.AppendAnsi(text, out);
  const size_t length = out.size() - at - 2;
  if (length > 0xFFFF) return false;
  out[at] = static_cast<char>(length & 0xFF);
  out[at + 1] = static_cast<char>(length >> 8);
  return true;
}

// Attaches `item` to the tree according to its level; false when the level
// leads above the root.
bool Attach(MenuItemPtr item, cMenuItem* last, int previousLevel, int level) {
  if (level == previousLevel) {
    cMenuItem* parent = last->Parent;
    return parent && parent->SubItems.Add(0, last, std::move(item));
  }
  if (level < previousLevel) {
    cMenuItem* target = last->Parent;
    for (int up = previousLevel - level; up > 0 && target; --up) target = target->Parent;
    return target && target->SubItems.Add(1, target, std::move(item));
  }
  return last->SubItems.Add(1, last, std::move(item)) != nullptr;
}

}  // namespace

MenuReadResult ParseMenu(std::string_view bytes, const ICodePage& codePage,
                         const std::function<int32_t(const std::wstring&)>& brailleCode, int32_t& counter) {
  MenuReadResult result;
  result.root = cMenuItem::New();
  result.root->Caption = L"[root]";
  cMenuItem* last = result.root.get();
  int previousLevel = -1;
  Reader in(bytes);
  while (!in.AtEnd()) {
    int16_t level;
    uint32_t keyWord;
    std::string_view caption, action;
    if (!in.Int16(level) || !in.Int32(keyWord) || !in.Text(caption) || !in.Text(action)) {
      result.complete = false;
      break;
    }
    MenuItemPtr item = cMenuItem::New();
    item->Caption = codePage.ToWide(caption);
    item->Action = codePage.ToWide(action);
    const bool discard = (keyWord & kDiscardBit) != 0;
    int32_t code = static_cast<int32_t>(keyWord & ~kDiscardBit);
    if (code & kBrailleBit) code = (brailleCode ? brailleCode(item->Action) : 0) | kBrailleBit;
    item->HotKey = code;
    item->Discard = discard;
    item->MenuId = counter;
    if (counter == std::numeric_limits<int32_t>::max()) {
      result.complete = false;
      break;
    }
    ++counter;
    cMenuItem* added = item.get();
    if (!Attach(std::move(item), last, previousLevel, level)) {
      result.complete = false;
      break;
    }
    last = added;
    previousLevel = level;
  }
  return result;
}

std::optional<std::string> SerializeMenu(const cMenuItem& root, const ICodePage& codePage,
                                         const std::function<void(const std::wstring&, uint32_t)>& brailleEntry) {
  std::string out;
  const bool whole = WalkTree(
      root,
      [&](const cMenuItem& item, size_t level, int) {
        if (level > 0x7FFF) return false;
        uint32_t keyWord = static_cast<uint32_t>(item.HotKey);
        const bool braille = (item.HotKey & kBrailleBit) != 0;
        // A braille code has no room for Discard: it reads back as false.
        if (!braille && item.Discard) keyWord |= kDiscardBit;
        PutUnsigned(out, static_cast<uint32_t>(level), 2);
        PutUnsigned(out, keyWord, 4);
        if (!PutText(out, codePage, item.Caption) || !PutText(out, codePage, item.Action)) return false;
        if (braille && brailleEntry)
          brailleEntry(item.Action, static_cast<uint32_t>(item.HotKey) & ~static_cast<uint32_t>(kBrailleBit));
        return true;
      },
      [](const cMenuItem&, size_t) {});
  if (!whole) return std::nullopt;
  return out;
}

}  // namespace nx
