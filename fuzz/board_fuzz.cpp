// Parses arbitrary bytes as XML and hands the tree to the TCF and RDT readers, then
// prints what they built. An RDT input names instance files that the reader loads
// relative to the working folder (the fuzzer's corpus folder); inputs whose values
// hold a "/" are skipped, so that no name reaches a device node, whose reading
// never ends.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "memorymap/svd_file.h"
#include "readers/rdt_reader.h"
#include "readers/tcf_reader.h"
#include "xml/xml_document.h"

namespace {

bool namesAPath(const regmill::XMLNode* root) {
  std::vector<const regmill::XMLNode*> pending{root};
  while (!pending.empty()) {
    const regmill::XMLNode* node = pending.back();
    pending.pop_back();
    if (node == nullptr) continue;
    pending.push_back(node->nextSibling());
    pending.push_back(node->firstChild());
    if (!node->isElement()) continue;
    for (auto* a = static_cast<const regmill::XMLElement*>(node)->attributes(); a != nullptr; a = a->next)
      if (a->value != nullptr && std::strchr(a->value, '/') != nullptr) return true;
  }
  return false;
}

void printTo(regmill::XMLDocument& document) {
  if (std::FILE* sink = std::fopen("/dev/null", "wb")) {
    document.write(sink, 2, 0).ignore();
    std::fclose(sink);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string text(reinterpret_cast<const char*>(data), size);
  regmill::XMLDocument input(false, regmill::XMLStorage::Arena);
  input.parse(text.c_str()).ignore();
  if (namesAPath(input.root())) return 0;

  regmill::SVDFile fromTCF;
  // A smaller element budget than a run's keeps each input quick.
  constexpr size_t kElementLimit = size_t{1} << 16;
  regmill::readTCF(input.root(), fromTCF, kElementLimit).ignore();
  printTo(fromTCF);
  regmill::SVDFile fromRDT;
  regmill::readRDT(input.root(), fromRDT, kElementLimit).ignore();
  printTo(fromRDT);
  return 0;
}
