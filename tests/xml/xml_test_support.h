// Helpers shared by the XML tests: a one-line text form of a tree, so that expected
// trees are written by hand, in-memory writing and a scratch folder.
#pragma once
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "xml/xml_document.h"

namespace regmill::test {

// An element is "(tag @name=\"value\" @nullname child ...)", a text node "\"text\"",
// a comment "#\"text\"", a CDATA section "$\"text\"". Inside quotes '"' and '\' are
// escaped with a backslash, line feed and carriage return are \n and \r, any other
// byte outside 0x20-0x7E is \xNN (upper case).
std::string dumpTree(const XMLNode* node);
std::string dumpRoot(const XMLDocument& document);  // "null" without a root

std::string writeToString(XMLDocument& document, unsigned indentation, unsigned maxLineLength);

char* owned(const char* text);  // an owned copy of a literal, for the node model

// A scratch folder, removed with everything in it at the end of the test.
class TempFolder {
 public:
  TempFolder() : path_((std::filesystem::temp_directory_path() / "regmill-xml-XXXXXX").string()) {
    if (mkdtemp(path_.data()) == nullptr) std::abort();
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  std::string file(const std::string& name) const { return path_ + "/" + name; }
  std::string write(const std::string& name, const std::string& contents) const {  // gives the path
    std::ofstream(file(name), std::ios::binary) << contents;
    return file(name);
  }
  std::string read(const std::string& name) const {
    std::ostringstream contents;
    contents << std::ifstream(file(name), std::ios::binary).rdbuf();
    return contents.str();
  }

 private:
  std::string path_;
};

}  // namespace regmill::test
