// Memory for the items of one large menu read: blocks shared by the items
// in them instead of a heap allocation each.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>

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
  // makes reading a large menu about a twentieth faster; an item kept after
  // its tree still holds a whole block.
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

}  // namespace nx
