#include "xml/xml_document.h"

#include <sys/stat.h>

#include <cstdio>
#include <string>

#include "xml/xml_parser.h"
#include "xml/xml_string.h"
#include "xml/xml_writer.h"

namespace regmill {

XMLDocument::XMLDocument(bool textNodes) : textNodes_(textNodes) {}

XMLDocument::~XMLDocument() {
  delete root_;
  freeXmlString(documentType_);
  freeXmlString(version_);
  freeXmlString(encoding_);
}

XMLElement* XMLDocument::createElement(char* tag) { return new XMLElement(tag); }

void XMLDocument::setRoot(XMLNode* root) {
  if (root_ != root) delete root_;
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

void XMLDocument::setError(uint32_t line, const char* format, const char* argument) {
  std::snprintf(errorText_, sizeof errorText_, format, argument);
  errorLine_ = line;
}

namespace {

// Reads a stream whole from its start. The length is taken from the file system,
// not from seeking, which gives nonsense for a folder; a folder is no readable file,
// and reading in blocks also serves pipes.
bool readWholeStream(std::FILE* stream, std::string& contents) {
  contents.clear();
  struct stat info;
  if (fstat(fileno(stream), &info) == 0) {
    if (S_ISDIR(info.st_mode)) return false;
    if (S_ISREG(info.st_mode)) contents.reserve(static_cast<size_t>(info.st_size) + 1);
  }
  std::rewind(stream);
  char block[65536];
  size_t got;
  while ((got = std::fread(block, 1, sizeof block, stream)) > 0) contents.append(block, got);
  return std::ferror(stream) == 0;
}

}  // namespace

bool XMLDocument::load(const char* path) {
  std::FILE* stream = std::fopen(path, "rb");
  if (stream == nullptr) {
    setError(0, "couldn't read %s", path);
    return false;
  }
  bool loaded = loadNamed(stream, path);
  std::fclose(stream);
  return loaded;
}

bool XMLDocument::load(std::FILE* stream) { return loadNamed(stream, "stream"); }

bool XMLDocument::loadNamed(std::FILE* stream, const char* name) {
  std::string contents;
  if (!readWholeStream(stream, contents)) {
    setError(0, "couldn't read %s", name);
    return false;
  }
  const char* text = contents.c_str();
  if (contents.size() >= 3 && static_cast<unsigned char>(text[0]) == 0xEF &&
      static_cast<unsigned char>(text[1]) == 0xBB && static_cast<unsigned char>(text[2]) == 0xBF)
    text += 3;
  return parseText(text);
}

bool XMLDocument::parse(const char* text) { return parseText(text); }

bool XMLDocument::parseText(const char* text) {
  XMLParseResult result = parseXML(*this, text);
  // A document is loaded once; should it be loaded again, the new tree takes the
  // root's place and the old one is freed.
  setRoot(result.root);
  if (result.status == XMLParseStatus::BadAttributeName) setError(result.line, "%s", "bad tagName");
  if (result.status == XMLParseStatus::EndTagMismatch) setError(result.line, "%s", "tagName mismatch");
  return result.status == XMLParseStatus::Ok;
}

bool XMLDocument::write(std::FILE* stream, unsigned indentation, unsigned maxLineLength) {
  indentation_ = indentation;
  maxLineLength_ = maxLineLength;
  writeXML(*this, stream);
  return true;
}

bool QXMLDocument::load(const QString& path) {
  QByteArray encoded = path.toLocal8Bit();
  std::FILE* stream = std::fopen(encoded.constData(), "rb");
  if (stream == nullptr) {
    setError(0, "couldn't read %s", encoded.constData());
    return false;
  }
  bool loaded = loadNamed(stream, encoded.constData());
  std::fclose(stream);
  return loaded;
}

bool QXMLDocument::save(const QString& path, unsigned indentation, unsigned maxLineLength) {
  std::FILE* stream = std::fopen(path.toLocal8Bit().constData(), "wb");
  if (stream == nullptr) {
    setError(errorLine(), "couldn't write %s", path.toLatin1().constData());
    return false;
  }
  write(stream, indentation, maxLineLength);
  std::fclose(stream);
  return true;
}

XMLPP2::~XMLPP2() {
  for (auto& [name, subtree] : definitions_) delete subtree;
}

void XMLPP2::addDefinition(const QString& name, XMLNode* subtree) {
  XMLNode*& slot = definitions_[name];
  if (slot != subtree) delete slot;
  slot = subtree;
}

XMLNode* XMLPP2::definition(const QString& name) const {
  auto found = definitions_.find(name);
  return found == definitions_.end() ? nullptr : found->second;
}

}  // namespace regmill
