#include "menu/menu_file.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
#define NX_ARENA_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define NX_ARENA_ASAN 1
#endif
#endif
#ifdef NX_ARENA_ASAN
#include <sanitizer/asan_interface.h>
#define NX_POISON(p, n) ASAN_POISON_MEMORY_REGION(p, n)
#define NX_UNPOISON(p, n) ASAN_UNPOISON_MEMORY_REGION(p, n)
#else
#define NX_POISON(p, n) ((void)(p), (void)(n))
#define NX_UNPOISON(p, n) ((void)(p), (void)(n))
#endif

namespace nx {
namespace {

// The items of one read come out of large blocks rather than a heap
// allocation each. Every item keeps its own shared ownership all the same: a
// block goes back when the last item in it ends, so an item that the
// clipboard or the wizard holds outlives the tree it was read into, keeping
// only its own block.
class ItemArena {
 public:
  static constexpr size_t kAlign = alignof(std::max_align_t);

  ItemArena() = default;
  ItemArena(const ItemArena&) = delete;
  ItemArena& operator=(const ItemArena&) = delete;
  ~ItemArena() { Close(); }

  // `align` is a power of two no greater than kAlign.
  void* Allocate(size_t size, size_t align) {
    if (size > kBlockSize - kHeader) throw std::bad_alloc();
    const size_t skip = static_cast<size_t>(-reinterpret_cast<uintptr_t>(next_)) & (align - 1);
    if (static_cast<size_t>(end_ - next_) < skip + size) {
      Open();
    } else {
      next_ += skip;
    }
    void* at = next_;
    next_ += size;
    ++handedOut_;
    NX_UNPOISON(at, size);
    return at;
  }

  // Finds the block from the address alone, so that it still works when the
  // arena is long gone.
  static void Release(void* at, size_t size) {
    NX_POISON(at, size);
    auto* block = reinterpret_cast<Block*>(reinterpret_cast<uintptr_t>(at) & ~(uintptr_t{kBlockSize} - 1));
    if (block->holders.fetch_sub(1, std::memory_order_acq_rel) == 1) Free(block);
  }

 private:
  // Also the blocks' alignment. A quarter as many blocks as with 64 KiB
  // makes reading a large menu about a twentieth faster; a menu of a few
  // items, or an item kept after its tree, still holds a whole block.
  static constexpr size_t kBlockSize = 256 * 1024;
  static constexpr size_t kHeader = kAlign;
  struct Block {
    std::atomic<size_t> holders;
  };
  static_assert(sizeof(Block) <= kHeader);
  // While a block is being filled its count stands at kFilling less the items
  // released so far; the items handed out are taken off kFilling once, when
  // the arena moves on, instead of an atomic operation per item.
  static constexpr size_t kFilling = std::numeric_limits<size_t>::max() / 2;

  void Open() {
    Close();
    void* memory = ::operator new (kBlockSize, std::align_val_t{kBlockSize});
    block_ = new (memory) Block{{kFilling}};
    next_ = static_cast<char*>(memory) + kHeader;
    end_ = static_cast<char*>(memory) + kBlockSize;
    NX_POISON(next_, kBlockSize - kHeader);
  }
  void Close() {
    if (!block_) return;
    const size_t filling = kFilling - handedOut_;
    if (block_->holders.fetch_sub(filling, std::memory_order_acq_rel) == filling) Free(block_);
    block_ = nullptr;
    next_ = end_ = nullptr;
    handedOut_ = 0;
  }
  static void Free(Block* block) {
    block->~Block();
    NX_UNPOISON(block, kBlockSize);
    ::operator delete (block, std::align_val_t{kBlockSize});
  }

  Block* block_ = nullptr;
  char* next_ = nullptr;
  char* end_ = nullptr;
  size_t handedOut_ = 0;
};

template <typename T>
class ArenaAllocator {
 public:
  using value_type = T;
  static_assert(alignof(T) <= ItemArena::kAlign, "the arena aligns for the fundamental types only");

  explicit ArenaAllocator(ItemArena& arena) : arena_(&arena) {}
  template <typename U>
  ArenaAllocator(const ArenaAllocator<U>& other) : arena_(other.arena_) {}

  T* allocate(size_t n) {
    if (n > std::numeric_limits<size_t>::max() / sizeof(T)) throw std::bad_alloc();
    return static_cast<T*>(arena_->Allocate(n * sizeof(T), alignof(T)));
  }
  void deallocate(T* at, size_t n) { ItemArena::Release(at, n * sizeof(T)); }

  template <typename U>
  bool operator==(const ArenaAllocator<U>& other) const {
    return arena_ == other.arena_;
  }
  template <typename U>
  bool operator!=(const ArenaAllocator<U>& other) const {
    return arena_ != other.arena_;
  }

 private:
  template <typename>
  friend class ArenaAllocator;
  // Only for allocating: each item keeps a copy of its allocator, which then
  // outlives the arena but only releases (by address).
  ItemArena* arena_;
};

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
    const bool discard = (record.keyWord & kDiscardBit) != 0;
    int32_t code = static_cast<int32_t>(record.keyWord & ~kDiscardBit);
    if (code & kBrailleBit) code = (brailleCode ? brailleCode(item->Action) : 0) | kBrailleBit;
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
