// A load file is a memory image as a tool chain writes it: sections of bytes with
// start addresses, and an optional entry point. Every format reads through the same
// interface, so callers see only a list of sections. A file object owns its sections,
// and a section that was made contiguous has its bytes owned by the file.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace regmill {

class LoadFileSectionInterface {
 public:
  virtual ~LoadFileSectionInterface() = default;
  virtual const char* name() const = 0;
  virtual uint32_t address() const = 0;
  virtual uint32_t size() const = 0;
  // With `preferCopy` and a copy made by writableData, the copy; else the bytes as read.
  virtual const uint8_t* data(bool preferCopy = false) const = 0;
  // A private copy of the bytes, made on the first call; the unchanged bytes stay.
  virtual uint8_t* writableData() = 0;
  virtual void discardCopy() = 0;
};

// A section over bytes that someone else owns.
class StandardLoadFileSection : public LoadFileSectionInterface {
 public:
  StandardLoadFileSection(std::string name, uint32_t address, uint32_t size, const uint8_t* data);

  const char* name() const override { return name_.c_str(); }
  uint32_t address() const override { return address_; }
  uint32_t size() const override { return size_; }
  const uint8_t* data(bool preferCopy = false) const override;
  uint8_t* writableData() override;
  void discardCopy() override { copy_.reset(); }

 protected:
  std::string name_;
  uint32_t address_;
  uint32_t size_;
  const uint8_t* data_;
  std::unique_ptr<uint8_t[]> copy_;
};

// A section that owns its bytes and grows as a reader appends records. It grows
// geometrically, so that an image of many records costs no quadratic copying.
class ExpandingLoadFileSection : public StandardLoadFileSection {
 public:
  explicit ExpandingLoadFileSection(uint32_t address);
  ~ExpandingLoadFileSection() override;
  ExpandingLoadFileSection(const ExpandingLoadFileSection&) = delete;
  ExpandingLoadFileSection& operator=(const ExpandingLoadFileSection&) = delete;

  // Makes room for `count` more bytes at the end and gives where they go.
  uint8_t* append(size_t count);

 private:
  uint8_t* bytes_ = nullptr;
  size_t capacity_ = 0;
};

using SectionList = std::vector<std::unique_ptr<LoadFileSectionInterface>>;

struct LoadFileSections {
  SectionList sections;
  SectionList otherSections;  // no format fills it; sorting keeps it in order too
};

class LoadFileInterface {
 public:
  virtual ~LoadFileInterface() = default;
  virtual bool hasEntryPoint() const = 0;
  virtual void setEntryPoint(uint32_t address) = 0;
  virtual uint32_t entryPoint() const = 0;
  // False when the file holds bytes only and the caller gives the load address.
  virtual bool hasAddresses() const = 0;
  virtual void setLoadAddress(uint32_t address) = 0;
  virtual void makeContiguous(uint8_t fill) = 0;
  virtual void sortSections() = 0;
  // Fills the section list on demand; false when it cannot.
  virtual bool readSections() = 0;
};

// What every format shares: the section list, read on first use, and the entry point.
// Failures throw HException.
class StandardLoadFile : public LoadFileInterface {
 public:
  bool hasEntryPoint() const override { return hasEntryPoint_; }
  void setEntryPoint(uint32_t address) override;
  uint32_t entryPoint() const override { return entryPoint_; }
  bool hasAddresses() const override { return true; }
  void setLoadAddress(uint32_t) override {}
  // Replaces the sections by one that spans them all, the gaps filled with `fill`;
  // where sections overlap, the later one in the list wins.
  void makeContiguous(uint8_t fill) override;
  void sortSections() override;
  bool readSections() override { return true; }

  // The sections, read by readSections on the first call.
  LoadFileSections& sections();

 protected:
  // Forgets the sections, so that the next call of sections reads them anew.
  void dropSections();

  LoadFileSections sections_;
  bool sectionsRead_ = false;
  bool readsLazily_ = true;

 private:
  std::unique_ptr<uint8_t[]> contiguousBytes_;
  uint32_t entryPoint_ = 0;
  bool hasEntryPoint_ = false;
};

// The largest image a reader holds or makeContiguous makes: the bound of every other
// input of the library.
constexpr size_t kLoadFileSizeLimit = size_t{256} << 20;

}  // namespace regmill
