#include "xml/xml_writer.h"

#include <cstring>
#include <vector>

#include "xml/xml_document.h"

namespace regmill {

namespace {

// Bytes that the writer can't print as they are: the four markup characters and
// everything outside 0x20-0x7E.
struct EscapeTable {
  bool needed[256] = {};
  constexpr EscapeTable() {
    for (int c = 0; c < 256; ++c) needed[c] = c < 0x20 || c > 0x7E || c == '"' || c == '&' || c == '<' || c == '>';
  }
};
constexpr EscapeTable kEscape;

void appendEscapedByte(std::string& out, unsigned char c) {
  static const char kHexDigits[] = "0123456789abcdef";
  switch (c) {
    case '"': out += "&quot;"; return;
    case '&': out += "&amp;"; return;
    case '<': out += "&lt;"; return;
    case '>': out += "&gt;"; return;
    default: break;
  }
  out += "&#x";
  if (c >= 0x10) out += kHexDigits[c >> 4];
  out += kHexDigits[c & 0xF];
  out += ';';
}

}  // namespace

void appendEscaped(std::string& out, const char* text) {
  // Runs of bytes that print as they are go out in one piece.
  const unsigned char* p = reinterpret_cast<const unsigned char*>(text);
  while (*p != 0) {
    const unsigned char* run = p;
    while (*p != 0 && !kEscape.needed[*p]) ++p;
    out.append(reinterpret_cast<const char*>(run), static_cast<size_t>(p - run));
    if (*p == 0) break;
    appendEscapedByte(out, *p++);
  }
}

namespace {

// Collects output in a block and hands it to the stream in large writes.
class BlockWriter {
 public:
  explicit BlockWriter(std::FILE* stream) : stream_(stream) { buffer_.reserve(kBlock + 4096); }
  ~BlockWriter() { flush(); }
  std::string& buffer() { return buffer_; }
  void maybeFlush() {
    if (buffer_.size() >= kBlock) flush();
  }
  void flush() {
    if (!buffer_.empty()) std::fwrite(buffer_.data(), 1, buffer_.size(), stream_);
    buffer_.clear();
  }

 private:
  static constexpr size_t kBlock = 1 << 16;
  std::FILE* stream_;
  std::string buffer_;
};

class TreeWriter {
 public:
  TreeWriter(std::string& out, unsigned indentation, unsigned maxLineLength)
      : out_(out), indentation_(indentation), maxLineLength_(maxLineLength) {}

  void indent(size_t depth) { out_.append(depth * indentation_, ' '); }
  void lineFeed() {
    if (indentation_ != 0) out_ += '\n';
  }

  // Prints a node that needs no end tag later; gives true for an element whose
  // children are to be printed next (its end tag is then printed by closeElement).
  bool openNode(const XMLNode* node, size_t depth) {
    indent(depth);
    switch (node->nodeType()) {
      case XMLNodeType::Data: appendEscaped(out_, node->getName()); return false;
      case XMLNodeType::Comment:
        out_ += "<!--";
        out_ += node->getName();
        out_ += "-->";
        return false;
      case XMLNodeType::CDATASection:
        out_ += "<![CDATA[";
        out_ += node->getName();
        out_ += "]]>";
        return false;
      case XMLNodeType::Element: break;
    }
    const auto* element = static_cast<const XMLElement*>(node);
    out_ += '<';
    out_ += element->getName();
    writeAttributes(element, depth);
    const XMLNode* first = element->firstChild();
    if (first == nullptr) {
      if (element->attributeCount() != 0) out_ += ' ';
      out_ += "/>";
      lineFeed();
      return false;
    }
    out_ += '>';
    if (first->nodeType() == XMLNodeType::Data) {
      // A text element takes one line; further children are not printed.
      appendEscaped(out_, first->getName());
      writeEndTag(element);
      return false;
    }
    lineFeed();
    return true;
  }

  void closeElement(const XMLElement* element, size_t depth) {
    indent(depth);
    writeEndTag(element);
  }

 private:
  void writeEndTag(const XMLElement* element) {
    out_ += "</";
    out_ += element->getName();
    out_ += '>';
    lineFeed();
  }

  bool attributesSpread(const XMLElement* element, size_t depth) const {
    if (maxLineLength_ == 0 || element->attributeCount() <= 1) return false;
    size_t sum = depth * indentation_ + 1 + std::strlen(element->getName());
    if (sum > maxLineLength_) return true;
    for (const XMLAttribute* a = element->attributes(); a != nullptr; a = a->next) {
      sum += 4 + std::strlen(a->name) + (a->value == nullptr ? 0 : std::strlen(a->value));
      if (sum > maxLineLength_) return true;
    }
    return false;
  }

  void writeAttributes(const XMLElement* element, size_t depth) {
    bool spread = attributesSpread(element, depth);
    for (const XMLAttribute* a = element->attributes(); a != nullptr; a = a->next) {
      if (a->value == nullptr) {
        // A null value stays on the current line, whatever the spreading.
        out_ += ' ';
        out_ += a->name;
        out_ += "=\"\"";
        continue;
      }
      if (spread) {
        out_ += '\n';
        indent(depth + 1);
      } else {
        out_ += ' ';
      }
      out_ += a->name;
      out_ += "=\"";
      appendEscaped(out_, a->value);
      out_ += '"';
    }
  }

  std::string& out_;
  unsigned indentation_;
  unsigned maxLineLength_;
};

}  // namespace

void writeXML(const XMLDocument& document, std::FILE* stream) {
  BlockWriter block(stream);
  std::string& out = block.buffer();
  if (document.version() != nullptr || document.encoding() != nullptr) {
    // "<?xml " and then " version=...": two blanks stand between the two words.
    out += "<?xml ";
    if (document.version() != nullptr) out += std::string(" version=\"") + document.version() + '"';
    if (document.encoding() != nullptr) out += std::string(" encoding=\"") + document.encoding() + '"';
    out += " ?>\n";
  }
  if (document.documentType() != nullptr) {
    out += "<!DOCTYPE ";
    out += document.documentType();
    out += ">\n";
  }
  if (document.root() == nullptr) return;

  // Depth first without recursion, so that a tree of any depth prints: each frame is
  // an element whose children are being printed and the child to print next.
  struct Frame {
    const XMLElement* element;
    const XMLNode* next;
  };
  std::vector<Frame> frames;
  TreeWriter writer(out, document.indentation(), document.maxLineLength());
  const XMLNode* root = document.root();
  if (writer.openNode(root, 0)) frames.push_back({static_cast<const XMLElement*>(root), root->firstChild()});
  while (!frames.empty()) {
    Frame& top = frames.back();
    size_t depth = frames.size();
    if (top.next == nullptr) {
      writer.closeElement(top.element, depth - 1);
      frames.pop_back();
      continue;
    }
    const XMLNode* node = top.next;
    top.next = node->nextSibling();
    if (writer.openNode(node, depth)) frames.push_back({static_cast<const XMLElement*>(node), node->firstChild()});
    block.maybeFlush();
  }
}

}  // namespace regmill
