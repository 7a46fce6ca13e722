#include "xml/xml_arena.h"

#include <cstdint>
#include <cstring>

namespace regmill {

namespace {

// Blocks grow to this size, so that a large document needs few of them and a small
// one little memory.
constexpr size_t kLargestBlock = size_t{1} << 20;

char* alignUp(char* at, size_t alignment) {
  auto address = reinterpret_cast<uintptr_t>(at);
  return at + ((alignment - address % alignment) % alignment);
}

}  // namespace

XMLArena::~XMLArena() {
  while (last_ != nullptr) {
    Block* previous = last_->previous;
    ::operator delete(last_);
    last_ = previous;
  }
}

void* XMLArena::allocateInNewBlock(size_t size, size_t alignment) {
  size_t needed = sizeof(Block) + alignment + size;
  if (needed > nextBlockSize_ / 4) {
    // A large piece gets a block of its own behind the current one, which keeps
    // serving the small pieces that follow.
    auto* block = static_cast<Block*>(::operator new(needed));
    if (last_ == nullptr) {
      block->previous = nullptr;
      last_ = block;
    } else {
      block->previous = last_->previous;
      last_->previous = block;
    }
    return alignUp(reinterpret_cast<char*>(block + 1), alignment);
  }
  auto* block = static_cast<Block*>(::operator new(nextBlockSize_));
  block->previous = last_;
  last_ = block;
  cursor_ = reinterpret_cast<char*>(block + 1);
  end_ = reinterpret_cast<char*>(block) + nextBlockSize_;
  if (nextBlockSize_ < kLargestBlock) nextBlockSize_ *= 2;
  char* at = alignUp(cursor_, alignment);
  cursor_ = at + size;
  return at;
}

}  // namespace regmill
