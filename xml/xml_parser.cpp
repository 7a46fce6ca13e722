#include "xml/xml_parser.h"

#include <cstring>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/text.h"
#include "xml/xml_arena.h"
#include "xml/xml_document.h"
#include "xml/xml_string.h"

namespace regmill {

namespace {

constexpr bool isNameByte(unsigned char c) { return isAlnumByte(c) || c == '_' || c == ':' || c == '-'; }
constexpr bool isAttributeStart(unsigned char c) { return isAlphaByte(c) || c == '_' || c == '-' || c == ':'; }

// Byte classes for the scanning loops. A text stops at "<" and at the terminating
// zero; "&" and a carriage return stop the scan too, because they make the text need
// decoding. An attribute value stops at its quote, at "&" and at the zero.
enum ByteClass : uint8_t {
  kSpace = 1,
  kName = 2,
  kTextStop = 4,
  kDoubleQuotedStop = 8,
  kSingleQuotedStop = 16,
};
struct ByteClasses {
  uint8_t of[256] = {};
  constexpr ByteClasses() {
    for (int i = 0; i < 256; ++i) {
      auto c = static_cast<unsigned char>(i);
      of[i] = static_cast<uint8_t>((isSpaceByte(c) ? kSpace : 0) | (isNameByte(c) ? kName : 0) |
                                   (c == '<' || c == '&' || c == '\r' || c == 0 ? kTextStop : 0) |
                                   (c == '"' || c == '&' || c == 0 ? kDoubleQuotedStop : 0) |
                                   (c == '\'' || c == '&' || c == 0 ? kSingleQuotedStop : 0));
    }
  }
};
constexpr ByteClasses kClasses;

// The first byte from `p` on of the class `stop`. Every stop class holds the
// terminating zero, so the scan never leaves the text.
template <uint8_t stop>
const char* scanUntil(const char* text) {
  auto* p = reinterpret_cast<const unsigned char*>(text);
  while (true) {
    if (kClasses.of[p[0]] & stop) break;
    if (kClasses.of[p[1]] & stop) { p += 1; break; }
    if (kClasses.of[p[2]] & stop) { p += 2; break; }
    if (kClasses.of[p[3]] & stop) { p += 3; break; }
    p += 4;
  }
  return reinterpret_cast<const char*>(p);
}

// The number of line feeds in [begin, end), eight bytes at a time.
uint32_t countLineFeeds(const char* begin, const char* end) {
  constexpr uint64_t kOnes = 0x0101010101010101;
  constexpr uint64_t kLow7 = 0x7F7F7F7F7F7F7F7F;
  uint64_t count = 0;
  for (; end - begin >= 8; begin += 8) {
    uint64_t word;
    std::memcpy(&word, begin, 8);
    word ^= kOnes * '\n';  // line feeds become zero bytes
    // The high bit of each byte is set when the byte isn't zero; no carry crosses bytes.
    uint64_t nonZero = ((word & kLow7) + kLow7) | word;
    uint64_t zeroHighBits = ~nonZero & ~kLow7;
    count += ((zeroHighBits >> 7) * kOnes) >> 56;
  }
  for (; begin < end; ++begin) count += *begin == '\n';
  return static_cast<uint32_t>(count);
}

struct NamedEntity {
  const char* text;
  size_t length;
  char byte;
};
constexpr NamedEntity kNamedEntities[] = {
    {"&amp;", 5, '&'}, {"&apos;", 6, '\''}, {"&gt;", 4, '>'}, {"&lt;", 4, '<'}, {"&quot;", 6, '"'}};

// Decodes the reference that starts at `at` (an "&") if it is one of the forms and
// lies wholly inside the token; gives its length, or 0 when the "&" stays as it is.
// Digits are 0-9 and then letters from a on; an upper-case letter counts as its
// lower-case twin, so that an upper-case hexadecimal digit reads as it looks.
size_t decodeReference(const char* at, const char* end, char& byte) {
  size_t available = static_cast<size_t>(end - at);
  for (const NamedEntity& entity : kNamedEntities) {
    if (available >= entity.length && std::memcmp(at, entity.text, entity.length) == 0) {
      byte = entity.byte;
      return entity.length;
    }
  }
  if (available < 4 || at[1] != '#') return 0;
  bool hexadecimal = at[2] == 'x';
  const char* digits = at + (hexadecimal ? 3 : 2);
  unsigned base = hexadecimal ? 16 : 10;
  uint32_t value = 0;
  const char* cursor = digits;
  for (; cursor < end; ++cursor) {
    int digit = digitValue(static_cast<unsigned char>(*cursor));
    if (digit < 0) break;
    value = value * base + static_cast<uint32_t>(digit);
  }
  if (cursor == digits || cursor >= end || *cursor != ';') return 0;
  byte = static_cast<char>(value & 0xFF);
  return static_cast<size_t>(cursor + 1 - at);
}

// Writes the token decoded to `out` with a terminating zero; decoding only ever
// shrinks a token. With dropCarriageReturns (text, not values) bytes 0x0D are left out.
void decodeInto(char* out, const char* begin, const char* end, bool dropCarriageReturns) {
  for (const char* cursor = begin; cursor < end;) {
    char c = *cursor;
    if (c == '\r' && dropCarriageReturns) {
      ++cursor;
      continue;
    }
    if (c == '&') {
      char byte;
      if (size_t used = decodeReference(cursor, end, byte)) {
        *out++ = byte;
        cursor += used;
        continue;
      }
    }
    *out++ = c;
    ++cursor;
  }
  *out = '\0';
}

// Up to this many attributes, a repeated name is looked for by walking the list.
constexpr unsigned kLinearAttributeSearch = 16;

class Parser {
 public:
  Parser(XMLDocument& document, const char* text)
      : document_(document),
        arena_(document.arena()),
        cursor_(text),
        end_(text + std::strlen(text)),
        counted_(text),
        keepText_(document.textNodes()) {}
  ~Parser();
  XMLParseResult run();

 private:
  enum class Next { Tag, Text, Stop };

  // The line of the byte at `at`: the line feeds stepped onto from the first byte up
  // to `at`, which is the line count of a parse that steps byte by byte. Counted per
  // span, when a node needs it; `at` never goes back.
  uint32_t lineAt(const char* at) {
    if (at > counted_) {
      line_ += countLineFeeds(counted_ + 1, at + 1);
      counted_ = at;
    }
    return line_;
  }
  // The cursor never steps past the terminating zero.
  void step() {
    if (*cursor_ != '\0') ++cursor_;
  }
  void skipSpace() {
    auto* p = reinterpret_cast<const unsigned char*>(cursor_);
    while (kClasses.of[*p] & kSpace) ++p;
    cursor_ = reinterpret_cast<const char*>(p);
  }
  void readName() {
    auto* p = reinterpret_cast<const unsigned char*>(cursor_);
    while (kClasses.of[*p] & kName) ++p;
    tokenStart_ = cursor_;
    cursor_ = tokenEnd_ = reinterpret_cast<const char*>(p);
  }
  // Moves the cursor onto `stop` or onto the terminating zero.
  void scanTo(char stop) {
    const void* found = std::memchr(cursor_, stop, static_cast<size_t>(end_ - cursor_));
    cursor_ = found != nullptr ? static_cast<const char*>(found) : end_;
  }
  size_t tokenLength() const { return static_cast<size_t>(tokenEnd_ - tokenStart_); }
  bool tokenIsPrefixOf(const char* word) const {
    return tokenLength() <= std::strlen(word) && std::memcmp(tokenStart_, word, tokenLength()) == 0;
  }
  bool scanToTerminator(char close);
  // The scan from the cursor to the end of a text or value, noting whether a byte
  // that needs decoding stood in it.
  template <uint8_t stop>
  const char* scanToken(bool& needsDecoding);

  // Nodes and strings come from the arena when the document has one.
  char* copyText(const char* text, size_t length) {
    return arena_ != nullptr ? arena_->copyString(text, length) : copyXmlString(text, length);
  }
  char* decodedText(const char* begin, const char* end, bool needsDecoding, bool dropCarriageReturns) {
    char* text = copyText(begin, static_cast<size_t>(end - begin));
    if (needsDecoding) decodeInto(text, begin, end, dropCarriageReturns);
    return text;
  }
  template <typename Node>
  Node* makeNode(char* text, uint32_t line) {
    Node* node = arena_ != nullptr ? arena_->make<Node>(text) : new Node(text);
    node->setLine(line);
    return node;
  }
  void discard(XMLNode* node) {
    if (arena_ == nullptr) delete node;
  }
  void addAttribute(XMLElement* element, const char* nameStart, size_t nameLength, char* value);

  Next processingInstruction();
  Next commentOrDeclaration();
  Next startTag();
  Next endTag();
  Next text();
  void linkToInnermost(XMLNode* node) { open_.back()->addChild(node); }
  void closeInnermost();

  XMLDocument& document_;
  XMLArena* arena_;
  const char* cursor_;
  const char* end_;  // the terminating zero
  const char* tokenStart_ = nullptr;
  const char* tokenEnd_ = nullptr;
  const char* counted_;  // the line feeds up to here are in line_
  uint32_t line_ = 0;
  XMLParseStatus status_ = XMLParseStatus::Ok;
  bool keepText_;
  std::vector<XMLElement*> open_;  // elements whose end tag is still to come
  XMLNode* result_ = nullptr;
  // The attributes of a tag with many of them, by name, while the tag is read.
  std::unordered_map<std::string_view, XMLAttribute*> wideTag_;
};

Parser::~Parser() {
  // Elements whose end never came are linked to nothing; they are freed here.
  for (XMLElement* element : open_) discard(element);
}

XMLParseResult Parser::run() {
  skipSpace();
  Next next = *cursor_ == '<' ? Next::Tag : Next::Stop;
  while (next != Next::Stop) {
    if (next == Next::Text) {
      next = text();
      continue;
    }
    switch (cursor_[1]) {
      case '?': next = processingInstruction(); break;
      case '!': next = commentOrDeclaration(); break;
      case '/': step(); next = endTag(); break;
      default: next = startTag(); break;
    }
  }
  XMLNode* root = result_;
  result_ = nullptr;
  return {root, status_, lineAt(cursor_)};
}

Parser::Next Parser::processingInstruction() {
  cursor_ += 2;  // "<?"
  readName();
  skipSpace();
  if (!tokenIsPrefixOf("xml")) return Next::Text;
  while (*cursor_ != '?' && *cursor_ != '\0') {
    const char* before = cursor_;
    readName();
    std::string_view name(tokenStart_, tokenLength());
    skipSpace();
    if (*cursor_ == '=') {
      step();
      skipSpace();
      char quote = *cursor_;
      if (quote != '"' && quote != '\'') {
        // The parse ends at once and gives no root, even if one was closed before.
        discard(result_);
        result_ = nullptr;
        return Next::Stop;
      }
      step();
      const char* valueStart = cursor_;
      scanTo(quote);
      size_t valueLength = static_cast<size_t>(cursor_ - valueStart);
      step();
      if (name == "version")
        document_.setVersion(copyXmlString(valueStart, valueLength));
      else if (name == "encoding")
        document_.setEncoding(copyXmlString(valueStart, valueLength));
    }
    // A byte that is neither name, blank nor "=" would hold the loop in place; we
    // pass over it as the lenient parser does with anything it doesn't understand.
    if (cursor_ == before) step();
  }
  if (*cursor_ == '?') {
    step();
    if (*cursor_ == '>') step();
  }
  return Next::Text;
}

// Moves the cursor behind the first "<close><close>>" in the way the comment and
// CDATA rules find it; the token is the text in front of it. False at the end of text.
bool Parser::scanToTerminator(char close) {
  tokenStart_ = cursor_;
  const char* p = cursor_;
  while (const void* found = std::memchr(p, close, static_cast<size_t>(end_ - p))) {
    p = static_cast<const char*>(found);
    if (p[1] == close && p[2] == '>') {
      tokenEnd_ = p;
      cursor_ = p + 3;
      return true;
    }
    // A second close byte without ">" behind it resumes the search at the third byte.
    p += p[1] == close ? 2 : 1;
  }
  cursor_ = end_;
  return false;
}

Parser::Next Parser::commentOrDeclaration() {
  const char* start = cursor_;
  cursor_ += 2;  // "<!"
  if (*cursor_ == '-') {
    step();
    if (*cursor_ != '-') return Next::Text;
    step();
    // A comment outside every element would be made and destroyed at once; nothing
    // of it remains, so it isn't made.
    bool kept = keepText_ && !open_.empty();
    uint32_t line = kept ? lineAt(start) : 0;
    if (scanToTerminator('-') && kept)
      linkToInnermost(makeNode<XMLComment>(copyText(tokenStart_, tokenLength()), line));
    return Next::Text;
  }
  readName();
  if (tokenLength() == 0) {
    step();  // the first "["
    readName();
    step();  // the second "["
    uint32_t line = open_.empty() ? 0 : lineAt(start);
    if (scanToTerminator(']') && !open_.empty())
      linkToInnermost(makeNode<XMLCDATASection>(copyText(tokenStart_, tokenLength()), line));
    return Next::Text;
  }
  if (tokenIsPrefixOf("DOCTYPE")) {
    // The name is read after the blank that separates it from the keyword.
    skipSpace();
    readName();
    if (*cursor_ == '>') {
      document_.setDocumentType(copyXmlString(tokenStart_, tokenLength()));
      step();
    }
  }
  return Next::Text;
}

template <uint8_t stop>
const char* Parser::scanToken(bool& needsDecoding) {
  const char* p = scanUntil<stop>(cursor_);
  while (*p == '&' || *p == '\r') {
    needsDecoding = true;
    p = scanUntil<stop>(p + 1);
  }
  return p;
}

void Parser::addAttribute(XMLElement* element, const char* nameStart, size_t nameLength, char* value) {
  char* name = copyText(nameStart, nameLength);
  if (arena_ == nullptr) {
    element->setAttribute(name, value);
    return;
  }
  // A name given twice keeps its first place and takes the later value. Nothing in
  // an arena is freed: the first value just stays unused.
  XMLAttribute* existing;
  if (element->attributeCount() < kLinearAttributeSearch) {
    existing = element->findAttribute(name);
  } else {
    if (wideTag_.empty())
      for (XMLAttribute* a = element->attributes(); a != nullptr; a = a->next)
        wideTag_.emplace(a->name, a);
    auto found = wideTag_.find(name);
    existing = found == wideTag_.end() ? nullptr : found->second;
  }
  if (existing != nullptr) {
    existing->value = value;
    return;
  }
  XMLAttribute* added = element->appendArenaAttribute(*arena_, name, value);
  if (!wideTag_.empty()) wideTag_.emplace(added->name, added);
}

Parser::Next Parser::startTag() {
  uint32_t startLine = lineAt(cursor_);
  step();  // "<"
  readName();
  skipSpace();
  XMLElement* element = document_.createElement(copyText(tokenStart_, tokenLength()));
  element->setLine(startLine);
  open_.push_back(element);
  if (!wideTag_.empty()) wideTag_.clear();
  while (*cursor_ != '/' && *cursor_ != '>' && *cursor_ != '\0') {
    if (!isAttributeStart(static_cast<unsigned char>(*cursor_))) {
      status_ = XMLParseStatus::BadAttributeName;
      return Next::Stop;
    }
    readName();
    const char* nameStart = tokenStart_;
    size_t nameLength = tokenLength();
    skipSpace();
    if (*cursor_ != '=') continue;  // a lone word: dropped without a message
    step();
    skipSpace();
    char quote = *cursor_;
    if (quote != '"' && quote != '\'') continue;
    step();
    // The value runs to the matching quote, line feeds included, or to the end of the text.
    const char* valueStart = cursor_;
    bool needsDecoding = false;
    cursor_ = quote == '"' ? scanToken<kDoubleQuotedStop>(needsDecoding) : scanToken<kSingleQuotedStop>(needsDecoding);
    // Carriage returns stay in a value; only references are decoded.
    char* value = decodedText(valueStart, cursor_, needsDecoding, false);
    step();
    skipSpace();
    addAttribute(element, nameStart, nameLength, value);
  }
  if (*cursor_ == '>') {
    step();
    return Next::Text;
  }
  if (*cursor_ == '/') return endTag();
  return Next::Stop;  // the text ended inside the tag
}

Parser::Next Parser::endTag() {
  // The cursor stands on "/".
  if (cursor_[1] != '>') {
    step();
    readName();
    skipSpace();
    if (!open_.empty()) {
      // The tag must begin with the bytes of the name, so "a" closes "abc" and an
      // empty name closes anything.
      const char* tag = open_.back()->getName();
      if (std::strncmp(tag, tokenStart_, tokenLength()) != 0) {
        status_ = XMLParseStatus::EndTagMismatch;
        return Next::Stop;
      }
    }
    if (*cursor_ != '>') return Next::Text;
  } else {
    step();
  }
  if (!open_.empty()) closeInnermost();
  step();  // ">"
  return Next::Text;
}

void Parser::closeInnermost() {
  XMLElement* element = open_.back();
  open_.pop_back();
  if (!open_.empty()) {
    linkToInnermost(element);
    return;
  }
  // A later top-level element replaces the earlier one: the last one is the root.
  discard(result_);
  result_ = element;
}

Parser::Next Parser::text() {
  const char* start = cursor_;
  if (!keepText_ || open_.empty()) {
    // Nothing is made of this text, so only its end is looked for.
    scanTo('<');
  } else {
    uint32_t startLine = lineAt(start);
    bool needsDecoding = false;
    cursor_ = scanToken<kTextStop>(needsDecoding);
    linkToInnermost(makeNode<XMLData>(decodedText(start, cursor_, needsDecoding, true), startLine));
  }
  return *cursor_ == '<' ? Next::Tag : Next::Stop;
}

}  // namespace

XMLParseResult parseXML(XMLDocument& document, const char* text) {
  Parser parser(document, text);
  return parser.run();
}

}  // namespace regmill
