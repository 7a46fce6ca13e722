#include "xml/xml_parser.h"

#include <cstring>
#include <vector>

#include "xml/xml_document.h"
#include "xml/xml_string.h"

namespace regmill {

namespace {

// ASCII classes as the C locale's isspace, isalnum and isalpha see them; bytes from
// 0x80 up belong to none of them.
constexpr bool isSpace(unsigned char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool isAlpha(unsigned char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
constexpr bool isNameChar(unsigned char c) {
  return isAlpha(c) || (c >= '0' && c <= '9') || c == '_' || c == ':' || c == '-';
}
bool isAttributeStart(unsigned char c) { return isAlpha(c) || c == '_' || c == '-' || c == ':'; }

// The byte classes as a table, for the loops that run over every byte of the text.
enum ByteClass : uint8_t { kSpace = 1, kName = 2 };
struct ByteClasses {
  uint8_t of[256] = {};
  constexpr ByteClasses() {
    for (int c = 0; c < 256; ++c)
      of[c] = static_cast<uint8_t>((isSpace(static_cast<unsigned char>(c)) ? kSpace : 0) |
                                   (isNameChar(static_cast<unsigned char>(c)) ? kName : 0));
  }
};
constexpr ByteClasses kByteClasses;

// The value of a digit of a character reference: 0-9, then the letters from a on.
// Upper-case letters are not part of the forms; we give them the values of their
// lower-case twins, so that an upper-case hexadecimal digit reads as it looks.
int referenceDigit(unsigned char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'z') return c - 'a' + 10;
  if (c >= 'A' && c <= 'Z') return c - 'A' + 10;
  return -1;
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
    int digit = referenceDigit(static_cast<unsigned char>(*cursor));
    if (digit < 0) break;
    value = value * base + static_cast<uint32_t>(digit);
  }
  if (cursor == digits || cursor >= end || *cursor != ';') return 0;
  byte = static_cast<char>(value & 0xFF);
  return static_cast<size_t>(cursor + 1 - at);
}

}  // namespace

char* decodeXmlToken(const char* begin, const char* end, bool dropCarriageReturns) {
  size_t length = static_cast<size_t>(end - begin);
  bool plain = std::memchr(begin, '&', length) == nullptr &&
               (!dropCarriageReturns || std::memchr(begin, '\r', length) == nullptr);
  if (plain) return copyXmlString(begin, length);
  char* out = copyXmlString(begin, length);  // decoding only ever shrinks the text
  size_t written = 0;
  for (const char* cursor = begin; cursor < end;) {
    char c = *cursor;
    if (c == '\r' && dropCarriageReturns) {
      ++cursor;
      continue;
    }
    if (c == '&') {
      char byte;
      if (size_t used = decodeReference(cursor, end, byte)) {
        out[written++] = byte;
        cursor += used;
        continue;
      }
    }
    out[written++] = c;
    ++cursor;
  }
  out[written] = '\0';
  return out;
}

namespace {

class Parser {
 public:
  Parser(XMLDocument& document, const char* text)
      : document_(document), cursor_(text), keepText_(document.textNodes()) {}
  ~Parser();
  XMLParseResult run();

 private:
  enum class Next { Tag, Text, Stop };

  unsigned char at(size_t offset = 0) const { return static_cast<unsigned char>(cursor_[offset]); }
  // Every step of the cursor that lands on a line feed counts a line. The cursor
  // never steps past the terminating zero.
  void step() {
    if (*cursor_ == '\0') return;
    ++cursor_;
    if (*cursor_ == '\n') ++line_;
  }
  void stepOver(size_t count) {
    for (size_t i = 0; i < count; ++i) step();
  }
  // The loops below do what repeated steps do, with the cursor and the line count in
  // locals: a byte read through a char pointer may alias the members, which would
  // otherwise be reloaded and stored again on every byte.
  void skipSpace() {
    const unsigned char* p = reinterpret_cast<const unsigned char*>(cursor_);
    uint32_t line = line_;
    while (kByteClasses.of[*p] & kSpace) line += *++p == '\n';
    cursor_ = reinterpret_cast<const char*>(p);
    line_ = line;
  }
  // Name characters include no line feed, so no line is counted inside a name; the
  // byte behind the name may be one.
  void readName() {
    const unsigned char* p = reinterpret_cast<const unsigned char*>(cursor_);
    tokenStart_ = cursor_;
    if (kByteClasses.of[*p] & kName) {
      while (kByteClasses.of[*++p] & kName) {
      }
      line_ += *p == '\n';
    }
    cursor_ = reinterpret_cast<const char*>(p);
    tokenEnd_ = cursor_;
  }
  // Steps until the cursor stands on `stop` or on the terminating zero.
  void scanTo(char stop) {
    const char* p = cursor_;
    uint32_t line = line_;
    while (*p != stop && *p != '\0') line += *++p == '\n';
    cursor_ = p;
    line_ = line;
  }
  size_t tokenLength() const { return static_cast<size_t>(tokenEnd_ - tokenStart_); }
  bool tokenIsPrefixOf(const char* word) const {
    return tokenLength() <= std::strlen(word) && std::memcmp(tokenStart_, word, tokenLength()) == 0;
  }
  // Moves the cursor behind the first "<close><close>>" in the way the comment and
  // CDATA rules find it; the token is the text in front of it. False at the end of text.
  bool scanToTerminator(char close);

  Next processingInstruction();
  Next commentOrDeclaration();
  Next startTag();
  Next endTag();
  Next text();
  void linkToInnermost(XMLNode* node);
  void closeInnermost();

  XMLDocument& document_;
  const char* cursor_;
  const char* tokenStart_ = nullptr;
  const char* tokenEnd_ = nullptr;
  uint32_t line_ = 0;
  XMLParseStatus status_ = XMLParseStatus::Ok;
  bool keepText_;
  std::vector<XMLElement*> open_;  // elements whose end tag is still to come
  XMLNode* result_ = nullptr;
};

Parser::~Parser() {
  // Elements whose end never came are linked to nothing; they are freed here.
  for (XMLElement* element : open_) delete element;
}

XMLParseResult Parser::run() {
  skipSpace();
  Next next = at() == '<' ? Next::Tag : Next::Stop;
  while (next != Next::Stop) {
    if (next == Next::Text) {
      next = text();
      continue;
    }
    switch (at(1)) {
      case '?': next = processingInstruction(); break;
      case '!': next = commentOrDeclaration(); break;
      case '/': step(); next = endTag(); break;
      default: next = startTag(); break;
    }
  }
  XMLNode* root = result_;
  result_ = nullptr;
  return {root, status_, line_};
}

Parser::Next Parser::processingInstruction() {
  stepOver(2);
  readName();
  skipSpace();
  if (!tokenIsPrefixOf("xml")) return Next::Text;
  while (at() != '?' && at() != '\0') {
    const char* before = cursor_;
    readName();
    const char* nameStart = tokenStart_;
    size_t nameLength = tokenLength();
    skipSpace();
    if (at() == '=') {
      step();
      skipSpace();
      char quote = static_cast<char>(at());
      if (quote != '"' && quote != '\'') {
        // The parse ends at once and gives no root, even if one was closed before.
        delete result_;
        result_ = nullptr;
        return Next::Stop;
      }
      step();
      const char* valueStart = cursor_;
      scanTo(quote);
      char* value = copyXmlString(valueStart, static_cast<size_t>(cursor_ - valueStart));
      step();
      std::string_view name(nameStart, nameLength);
      if (name == "version")
        document_.setVersion(value);
      else if (name == "encoding")
        document_.setEncoding(value);
      else
        freeXmlString(value);
    }
    // A byte that is neither name, blank nor "=" would hold the loop in place; we
    // pass over it as the lenient parser does with anything it doesn't understand.
    if (cursor_ == before) step();
  }
  if (at() == '?') {
    step();
    if (at() == '>') step();
  }
  return Next::Text;
}

bool Parser::scanToTerminator(char close) {
  tokenStart_ = cursor_;
  while (at() != '\0') {
    if (*cursor_ != close) {
      step();
      continue;
    }
    if (cursor_[1] == close && cursor_[2] == '>') {
      tokenEnd_ = cursor_;
      stepOver(3);
      return true;
    }
    // A second close byte without ">" behind it resumes the search at the third byte.
    stepOver(cursor_[1] == close ? 2 : 1);
  }
  return false;
}

Parser::Next Parser::commentOrDeclaration() {
  uint32_t startLine = line_;
  stepOver(2);  // "<!"
  if (at() == '-') {
    step();
    if (at() != '-') return Next::Text;
    step();
    if (!scanToTerminator('-')) return Next::Text;
    // A comment outside every element would be made and destroyed at once; nothing
    // of it remains, so it isn't made.
    if (keepText_ && !open_.empty()) {
      auto* comment = new XMLComment(copyXmlString(tokenStart_, tokenLength()));
      comment->setLine(startLine);
      linkToInnermost(comment);
    }
    return Next::Text;
  }
  readName();
  if (tokenLength() == 0) {
    step();  // the first "["
    readName();
    step();  // the second "["
    if (!scanToTerminator(']')) return Next::Text;
    if (!open_.empty()) {
      auto* section = new XMLCDATASection(copyXmlString(tokenStart_, tokenLength()));
      section->setLine(startLine);
      linkToInnermost(section);
    }
    return Next::Text;
  }
  if (tokenIsPrefixOf("DOCTYPE")) {
    // The name is read after the blank that separates it from the keyword.
    skipSpace();
    readName();
    if (at() == '>') {
      document_.setDocumentType(copyXmlString(tokenStart_, tokenLength()));
      step();
    }
  }
  return Next::Text;
}

Parser::Next Parser::startTag() {
  uint32_t startLine = line_;
  step();  // "<"
  readName();
  skipSpace();
  XMLElement* element = document_.createElement(copyXmlString(tokenStart_, tokenLength()));
  element->setLine(startLine);
  open_.push_back(element);
  while (at() != '/' && at() != '>' && at() != '\0') {
    if (!isAttributeStart(at())) {
      status_ = XMLParseStatus::BadAttributeName;
      return Next::Stop;
    }
    readName();
    const char* nameStart = tokenStart_;
    size_t nameLength = tokenLength();
    skipSpace();
    if (at() != '=') continue;  // a lone word: dropped without a message
    step();
    skipSpace();
    char quote = static_cast<char>(at());
    if (quote != '"' && quote != '\'') continue;
    step();
    const char* valueStart = cursor_;
    scanTo(quote);
    const char* valueEnd = cursor_;
    step();
    skipSpace();
    element->setAttribute(copyXmlString(nameStart, nameLength), decodeXmlToken(valueStart, valueEnd, false));
  }
  if (at() == '>') {
    step();
    return Next::Text;
  }
  if (at() == '/') return endTag();
  return Next::Stop;  // the text ended inside the tag
}

Parser::Next Parser::endTag() {
  // The cursor stands on "/".
  if (at(1) != '>') {
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
    if (at() != '>') return Next::Text;
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
  delete result_;
  result_ = element;
}

void Parser::linkToInnermost(XMLNode* node) { open_.back()->addChild(node); }

Parser::Next Parser::text() {
  uint32_t startLine = line_;
  const char* start = cursor_;
  scanTo('<');
  if (keepText_ && !open_.empty()) {
    auto* data = new XMLData(decodeXmlToken(start, cursor_, true));
    data->setLine(startLine);
    linkToInnermost(data);
  }
  return at() == '<' ? Next::Tag : Next::Stop;
}

}  // namespace

XMLParseResult parseXML(XMLDocument& document, const char* text) {
  Parser parser(document, text);
  return parser.run();
}

}  // namespace regmill
