// Bulk memory for a document that is parsed, read and thrown away: nodes, attribute
// pairs and strings are carved from large blocks and never freed one by one, so
// that freeing the whole tree is freeing a handful of blocks. Nothing made here has
// its destructor run; only trivially destructible data and nodes whose members all
// live in the same arena belong here.
#pragma once
#include <cstddef>
#include <new>
#include <utility>

namespace regmill {

class XMLArena {
 public:
  XMLArena() = default;
  ~XMLArena();
  XMLArena(const XMLArena&) = delete;
  XMLArena& operator=(const XMLArena&) = delete;

  void* allocate(size_t size, size_t alignment);
  // `length` bytes of `text` and a terminating zero.
  char* copyString(const char* text, size_t length);

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
