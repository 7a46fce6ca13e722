#include "xml/xml_document.h"


#include <cstdio>
#include <string>

#include "base/input_file.h"
#include "xml/xml_parser.h"
#include "xml/xml_string.h"
#include "xml/xml_writer.h"

namespace regmill {

XMLDocument::XMLDocument(bool textNodes, XMLStorage storage)
    : textNodes_(textNodes), arena_(storage == XMLStorage::Arena ? std::make_unique<XMLArena>() : nullptr) {}

XMLDocument::~XMLDocument() {
  // The nodes of an arena document go with the arena's blocks.
  if (arena_ == nullptr) delete root_;
  freeXmlString(documentType_);
  freeXmlString(version_);
  freeXmlString(encoding_);
}

XMLElement* XMLDocument::createElement(char* tag) {
  return arena_ != nullptr ? arena_->make<XMLElement>(tag) : new XMLElement(tag);
}

void XMLDocument::setRoot(XMLNode* root) {
  if (root_ != root && arena_ == nullptr) delete root_;
  root_ = root;
}

void XMLDocument::setDocumentType(char* text) {
  freeXmlString(documentType_);
  documentType_ = text;
}

void XMLDocument::setVersion(char* text) {
  freeXmlString(version_);
  version_ = text;
}

void XMLDocument::setEncoding(char* text) {
  freeXmlString(encoding_);
  encoding_ = text;
}

Status XMLDocument::fail(const char* file, uint32_t line, const char* format, const char* argument) {
  std::snprintf(errorText_, sizeof errorText_, format, argument);
  errorLine_ = line;
  return Status::failure(errorText_, file == nullptr ? std::string() : file, line + 1);
}

Status XMLDocument::load(const char* path) {
  Expected<std::string> contents = readInputFile(path);
  if (!contents.ok()) {
    fail(path, 0, "couldn't read %s", path).ignore();
    return contents.status();
  }
  return parseContents(*contents, path);
}

// A stream is read from its start, within the same bound as a file.
Status XMLDocument::load(std::FILE* stream) {
  std::rewind(stream);
  Expected<std::string> contents = readInputStream(stream, "stream");
  if (!contents.ok()) return Status::failure(fail(nullptr, 0, "couldn't read %s", "stream").reason());
  return parseContents(*contents, nullptr);
}

Status XMLDocument::parseContents(const std::string& contents, const char* name) {
  const char* text = contents.c_str();
  if (contents.size() >= 3 && static_cast<unsigned char>(text[0]) == 0xEF &&
      static_cast<unsigned char>(text[1]) == 0xBB && static_cast<unsigned char>(text[2]) == 0xBF)
    text += 3;
  return parseText(text, name);
}

Status XMLDocument::parse(const char* text) { return parseText(text, nullptr); }

Status XMLDocument::parseText(const char* text, const char* name) {
  XMLParseResult result = parseXML(*this, text);
  // A document is loaded once; should it be loaded again, the new tree takes the
  // root's place and the old one is freed.
  setRoot(result.root);
  switch (result.status) {
    case XMLParseStatus::Ok: return Status();
    case XMLParseStatus::BadAttributeName: return fail(name, result.line, "%s", "bad tagName");
    case XMLParseStatus::EndTagMismatch: return fail(name, result.line, "%s", "tagName mismatch");
  }
  return Status();
}

Status XMLDocument::write(std::FILE* stream, unsigned indentation, unsigned maxLineLength) {
  indentation_ = indentation;
  maxLineLength_ = maxLineLength;
  writeXML(*this, stream);
  if (std::fflush(stream) != 0 || std::ferror(stream) != 0) return Status::failure("write failed");
  return Status();
}

}  // namespace regmill
