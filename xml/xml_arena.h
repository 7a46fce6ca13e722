// Bulk memory for a document that is parsed, read and thrown away: nodes, attribute
// pairs and strings are carved from large blocks and never freed one by one, so
// that freeing the whole tree is freeing a handful of blocks. Nothing made here has
// its destructor run; only trivially destructible data and nodes whose members all
// live in the same arena belong here.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

namespace regmill {

class XMLArena {
 public:
  XMLArena() = default;
  ~XMLArena();
  XMLArena(const XMLArena&) = delete;
  XMLArena& operator=(const XMLArena&) = delete;

  // The common case, a piece that fits the current block, is inline.
  void* allocate(size_t size, size_t alignment) {
    auto address = reinterpret_cast<uintptr_t>(cursor_);
    auto padding = static_cast<size_t>(-address & (alignment - 1));  // alignment is a power of two
    if (cursor_ != nullptr && padding + size <= static_cast<size_t>(end_ - cursor_)) {
      char* at = cursor_ + padding;
      cursor_ = at + size;
      return at;
    }
    return allocateInNewBlock(size, alignment);
  }
  // `length` bytes of `text` and a terminating zero.
  char* copyString(const char* text, size_t length) {
    auto* copy = static_cast<char*>(allocate(length + 1, 1));
    if (length != 0) std::memcpy(copy, text, length);
    copy[length] = '\0';
    return copy;
  }

  template <typename T, typename... Arguments>
  T* make(Arguments&&... arguments) {
    return new (allocate(sizeof(T), alignof(T))) T(std::forward<Arguments>(arguments)...);
  }

 private:
  struct Block {
    Block* previous;
  };
  void* allocateInNewBlock(size_t size, size_t alignment);

  Block* last_ = nullptr;
  char* cursor_ = nullptr;
  char* end_ = nullptr;
  size_t nextBlockSize_ = size_t{64} << 10;
};

}  // namespace regmill
