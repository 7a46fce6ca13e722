#include "loadfile/load_file.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "base/hexception.h"

namespace regmill {

StandardLoadFileSection::StandardLoadFileSection(std::string name, uint32_t address, uint32_t size,
                                                 const uint8_t* data)
    : name_(std::move(name)), address_(address), size_(size), data_(data) {}

const uint8_t* StandardLoadFileSection::data(bool preferCopy) const {
  return preferCopy && copy_ ? copy_.get() : data_;
}

uint8_t* StandardLoadFileSection::writableData() {
  if (!copy_) {
    copy_ = std::make_unique<uint8_t[]>(size_);
    if (size_ != 0) std::memcpy(copy_.get(), data_, size_);
  }
  return copy_.get();
}

ExpandingLoadFileSection::ExpandingLoadFileSection(uint32_t address)
    : StandardLoadFileSection(std::string(), address, 0, nullptr) {}

ExpandingLoadFileSection::~ExpandingLoadFileSection() { std::free(bytes_); }

uint8_t* ExpandingLoadFileSection::append(size_t count) {
  size_t needed = size_t{size_} + count;
  if (needed > capacity_) {
    size_t capacity = std::max({needed, capacity_ + capacity_ / 2, size_t{64}});
    void* grown = std::realloc(bytes_, capacity);
    if (grown == nullptr) throw std::bad_alloc();
    bytes_ = static_cast<uint8_t*>(grown);
    capacity_ = capacity;
    data_ = bytes_;
  }
  uint8_t* place = bytes_ + size_;
  size_ = static_cast<uint32_t>(needed);
  return place;
}

void StandardLoadFile::setEntryPoint(uint32_t address) {
  entryPoint_ = address;
  hasEntryPoint_ = true;
}

LoadFileSections& StandardLoadFile::sections() {
  if (!sectionsRead_ && readsLazily_) {
    if (!readSections()) throw HException("cannot read sections from load file");
    sectionsRead_ = true;
  }
  return sections_;
}

void StandardLoadFile::dropSections() {
  sections_.sections.clear();
  sections_.otherSections.clear();
  sectionsRead_ = false;
}

void StandardLoadFile::makeContiguous(uint8_t fill) {
  SectionList& list = sections().sections;
  uint32_t lowest = 0xFFFFFFFF;
  uint64_t highestEnd = 0;  // one past the last byte: 2^32 for a byte at 0xFFFFFFFF
  for (const auto& section : list) {
    lowest = std::min(lowest, section->address());
    highestEnd = std::max(highestEnd, uint64_t{section->address()} + section->size());
  }
  if (list.empty() || lowest == 0xFFFFFFFF || highestEnd == 0) return;
  uint64_t span = highestEnd - lowest;
  // Two bytes far apart would make an image of gigabytes, nearly all fill.
  if (span > kLoadFileSizeLimit) throw HException("contiguous image larger than 256 MiB");

  auto bytes = std::make_unique<uint8_t[]>(span);
  std::memset(bytes.get(), fill, span);
  for (const auto& section : list)
    if (section->size() != 0) std::memcpy(bytes.get() + (section->address() - lowest), section->data(), section->size());
  list.clear();
  contiguousBytes_ = std::move(bytes);
  list.push_back(std::make_unique<StandardLoadFileSection>("Contiguous section", lowest, static_cast<uint32_t>(span),
                                                           contiguousBytes_.get()));
}

void StandardLoadFile::sortSections() {
  auto byAddress = [](const auto& a, const auto& b) { return a->address() < b->address(); };
  std::stable_sort(sections_.sections.begin(), sections_.sections.end(), byAddress);
  std::stable_sort(sections_.otherSections.begin(), sections_.otherSections.end(), byAddress);
}

}  // namespace regmill
