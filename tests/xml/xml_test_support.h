// Helpers shared by the XML tests: a one-line text form of a tree, so that expected
// trees are written by hand, in-memory writing and a scratch folder.
#pragma once
#include <string>

#include "xml/xml_document.h"

namespace regmill::test {

// An element is "(tag @name=\"value\" @nullname child ...)", a text node "\"text\"",
// a comment "#\"text\"", a CDATA section "$\"text\"". Inside quotes '"' and '\' are
// escaped with a backslash, line feed, carriage return and tab are \n, \r and \t,
// any other byte outside 0x20-0x7E is \xNN (upper case).
std::string dumpTree(const XMLNode* node);
std::string dumpRoot(const XMLDocument& document);  // "null" without a root

std::string writeToString(XMLDocument& document, unsigned indentation, unsigned maxLineLength);

char* owned(const char* text);  // an owned copy of a literal, for the node model

class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  std::string file(const std::string& name) const { return path_ + "/" + name; }
  std::string write(const std::string& name, const std::string& contents) const;  // gives the path
  std::string read(const std::string& name) const;

 private:
  std::string path_;
};

}  // namespace regmill::test
