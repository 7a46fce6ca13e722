#include "readers/ddf_reader.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/parse_number.h"
#include "base/text.h"
#include "base/text_file.h"
#include "readers/reader_support.h"

namespace regmill {

namespace {

// One read of the line buffer; a longer line arrives in pieces, each handled alone.
constexpr size_t kLineBufferSize = 32768;
constexpr std::string_view kSfrMarker = "sfr = ";
constexpr std::string_view kGroupMarker = "group = ";

bool isSeparator(char c) { return c == '\t' || c == ' ' || c == '"' || c == ','; }
bool endsToken(char c) { return c == '\t' || c == '\n' || c == '"' || c == ','; }

// Splits the text in place: separators outside a token are passed over, and the byte
// that ends a token is overwritten by a zero. A blank doesn't end a token, so names may
// hold blanks. A token still open at the end of the text is dropped; a line feed that
// stands outside a token opens one that the end of the line leaves open.
void tokenize(char* text, std::vector<char*>& tokens) {
  tokens.clear();
  char* tokenStart = nullptr;
  for (char* p = text; *p != '\0'; ++p) {
    if (tokenStart == nullptr) {
      if (!isSeparator(*p)) tokenStart = p;
    } else if (endsToken(*p)) {
      *p = '\0';
      tokens.push_back(tokenStart);
      tokenStart = nullptr;
    }
  }
}

struct FieldBits {
  int32_t low;
  int32_t size;
};

// "bitMask=" followed by a mask, or "bitRange=" followed by "low" or "low-high". The
// number stands at a fixed byte of the token, whatever comes in front of the marker.
std::optional<FieldBits> fieldBitsOfToken(const char* token) {
  if (std::strstr(token, "bitMask=") != nullptr) {
    uint32_t mask = parseUnsignedC(token + 8);
    if (mask == 0) return std::nullopt;
    return FieldBits{std::countr_zero(mask), std::popcount(mask)};
  }
  if (std::strstr(token, "bitRange=") == nullptr) return std::nullopt;
  char* end = nullptr;
  uint32_t low = parseUnsignedC(token + 9, &end, 10);
  uint32_t high = *end == '-' ? parseUnsignedC(end + 1, nullptr, 10) : low;
  // The width is 32-bit arithmetic that wraps; a high bit below the low one gives none.
  auto size = static_cast<int32_t>(high - low + 1u);
  if (size <= 0) return std::nullopt;
  return FieldBits{static_cast<int32_t>(low), size};
}

// Turns the lines of one file into elements. Registers are held here until a group
// line takes them into the tree; those that no group takes are freed with the builder.
class DDFBuilder {
 public:
  DDFBuilder(MemoryMap& document, MemoryMapElement* root) : document_(document), root_(root) {}

  void handleLine(char* line) {
    if (line[0] == ';') return;
    if (std::strstr(line, "//") != nullptr) return;
    // The marker is expected at the start of the line: tokens are read from the byte
    // behind that place, whatever stands in front of the marker.
    if (std::strstr(line, kSfrMarker.data()) != nullptr) {
      tokenize(line + kSfrMarker.size(), tokens_);
      readSfrLine();
    } else if (std::strstr(line, kGroupMarker.data()) != nullptr) {
      tokenize(line + kGroupMarker.size(), tokens_);
      readGroupLine();
    }
  }

 private:
  void readSfrLine() {
    if (tokens_.empty()) return;
    if (const char* dot = std::strchr(tokens_[0], '.'))
      readBitFieldLine(dot + 1);
    else
      readRegisterLine();
  }

  // A register is listed for the groups only with its kind, address and size; an
  // incomplete one still takes the bit fields that follow it, and vanishes with them.
  void readRegisterLine() {
    std::unique_ptr<MemoryMapElement> element(document_.newElement("Register"));
    element->setAttributeCopy("name", tokens_[0]);
    lastRegister_ = element.get();
    bool complete = tokens_.size() >= 4 && (std::strcmp(tokens_[1], "Memory") == 0 ||
                                            std::strcmp(tokens_[1], "Register") == 0);
    if (!complete) {
      incomplete_.push_back(std::move(element));
      return;
    }
    element->setAttributeCopy("start", tokens_[2]);
    element->setAttributeCopy("size", tokens_[3]);
    // The first register of a name is the one a group line finds.
    firstOfName_.try_emplace(std::string(tokens_[0]), registers_.size());
    registers_.push_back(std::move(element));
  }

  // The part in front of the "." isn't looked at: the field goes to the last register
  // read. A field before any register has nowhere to go and is dropped. The first
  // token that gives a width decides.
  void readBitFieldLine(const char* fieldName) {
    if (lastRegister_ == nullptr) return;
    for (size_t i = 1; i < tokens_.size(); ++i) {
      std::optional<FieldBits> bits = fieldBitsOfToken(tokens_[i]);
      if (!bits) continue;
      MemoryMapElement* field = document_.newElement("BitField");
      field->setAttributeCopy("name", fieldName);
      field->setAttributeCopy("start", std::to_string(bits->low).c_str());
      field->setAttributeCopy("size", std::to_string(bits->size).c_str());
      lastRegister_->addChild(field);
      return;
    }
  }

  // A register can hang under one group only: a register that an earlier group line
  // took stays there, and a later group passes over it as over an unknown name.
  void readGroupLine() {
    if (tokens_.empty()) return;
    MemoryMapElement* group = appendNewElement(document_, root_, "RegisterGroup");
    group->setAttributeCopy("name", tokens_[0]);
    uint32_t lowest = 0xFFFFFFFFu;
    for (size_t i = 1; i < tokens_.size(); ++i) {
      auto found = firstOfName_.find(std::string_view(tokens_[i]));
      if (found == firstOfName_.end() || registers_[found->second] == nullptr) continue;
      std::unique_ptr<MemoryMapElement>& held = registers_[found->second];
      lowest = std::min(lowest, parseUnsignedC(held->getAttribute("start")));
      group->addChild(held.release());
    }
    char start[16];
    std::snprintf(start, sizeof start, "0x%x", lowest);
    group->setAttributeCopy("start", start);
  }

  MemoryMap& document_;
  MemoryMapElement* root_;
  std::vector<char*> tokens_;
  // Complete registers in file order; an entry is empty once a group has taken it.
  std::vector<std::unique_ptr<MemoryMapElement>> registers_;
  std::vector<std::unique_ptr<MemoryMapElement>> incomplete_;
  std::unordered_map<std::string, size_t, TransparentStringHash, std::equal_to<>> firstOfName_;
  MemoryMapElement* lastRegister_ = nullptr;
};

}  // namespace

Status readDDF(const char* path, MemoryMap& document) {
  TextFileReader file;
  if (Status opened = file.open(path); !opened) return opened;
  MemoryMapElement* root = document.newElement("Root");
  document.setRoot(root);
  DDFBuilder builder(document, root);
  std::vector<char> line(kLineBufferSize);
  while (file.readLine(line.data(), line.size())) builder.handleLine(line.data());
  return Status();
}

}  // namespace regmill
