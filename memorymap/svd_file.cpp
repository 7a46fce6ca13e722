#include "memorymap/svd_file.h"

namespace regmill {

SVDFile::~SVDFile() {
  for (XMLNode* node : unlinked_) delete node;
}

void SVDFile::setInterruptTableSize(int32_t count) {
  interruptNames.assign(count > 0 ? static_cast<size_t>(count) : 0, std::nullopt);
  interruptTableSize = count > 0 ? count : 0;
  highestInterrupt = -1;
}

void SVDFile::setCoreInfo(int32_t core, bool withVTOR, uint32_t prioBits, bool withMPU, bool withFPU) {
  coreNumber = core;
  hasVTOR = withVTOR;
  nvicPrioBits = prioBits;
  mpuPresent = withMPU;
  fpuPresent = withFPU;
}

void SVDFile::setInterruptNames(const QStringList& names) {
  for (qsizetype i = 0; i < names.size() && i < interruptTableSize; ++i) {
    if (names[i].isEmpty() || interruptNames[static_cast<size_t>(i)].has_value()) continue;
    QByteArray bytes = names[i].toLatin1();
    interruptNames[static_cast<size_t>(i)] = std::string(bytes.constData(), static_cast<size_t>(bytes.size()));
    if (i > highestInterrupt) highestInterrupt = static_cast<int32_t>(i);
  }
}

void SVDFile::storeInterruptName(int32_t index, std::string name) {
  if (index < 0 || index >= interruptTableSize) return;
  interruptNames[static_cast<size_t>(index)] = std::move(name);
  if (index > highestInterrupt) highestInterrupt = index;
}

const char* SVDFile::interruptName(int32_t index) const {
  if (index < 0 || index >= interruptTableSize) return nullptr;
  const auto& entry = interruptNames[static_cast<size_t>(index)];
  return entry ? entry->c_str() : nullptr;
}

void SVDFile::removeGroups(const QStringList& names) {
  XMLNode* root = MemoryMap::root();
  if (root == nullptr) return;
  XMLNode* child = root->firstChild();
  while (child != nullptr) {
    // removeChild leaves the next sibling member as it was, so the walk goes on from it.
    XMLNode* next = child->nextSibling();
    if (child->isElement()) {
      const char* name = static_cast<XMLElement*>(child)->getAttribute("name");
      if (name != nullptr && names.contains(QString::fromLatin1(name))) {
        root->removeChild(child);
        unlinked_.push_back(child);
      }
    }
    child = next;
  }
}

}  // namespace regmill
