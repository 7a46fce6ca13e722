#include "readers/svd/svd_reader.h"

#include "readers/svd/svd_child_table.h"
#include "readers/svd/svd_device_info.h"
#include "readers/svd/svd_peripheral.h"
#include "readers/svd/svd_read_context.h"
#include "xml/xml_document.h"

namespace regmill {

namespace {

MemoryMapElement* makeProcessorRoot(SVDFile& file) {
  MemoryMapElement* root = file.newElement("Processor");
  file.setRoot(root);
  return root;
}

void readDeviceTexts(SVDReadContext& context, const ChildTable& device) {
  MemoryMapElement* root = context.file.root();
  setText(root, "name", device.text(SVDTag::Name).view());
  std::string description = context.description(device.text(SVDTag::Description));
  if (!description.empty()) setText(root, "description", description);
  context.defaults = {device.text(SVDTag::Width), device.text(SVDTag::Size), device.text(SVDTag::Access),
                      device.text(SVDTag::ResetValue), device.text(SVDTag::ResetMask)};
}

void readPeripherals(SVDReadContext& context, const XMLElement* peripherals) {
  // There is no peripheral array, and a derived peripheral doesn't get its base's interrupts.
  for (const XMLElement* peripheral = findChild(peripherals->firstChild(), "peripheral");
       peripheral != nullptr && !context.output.refused();
       peripheral = findChild(peripheral->nextSibling(), "peripheral"))
    readPeripheral(context, peripheral);
}

}  // namespace

Status readDevice(SVDFile& file, const XMLNode* firstTopLevelNode, uint32_t flags, const char* ignoreName,
                  size_t elementLimit) {
  const XMLElement* device = findChild(firstTopLevelNode, "device");
  if (device == nullptr) return Status::failure("no device element");
  if (file.root() == nullptr) makeProcessorRoot(file);
  SVDReadContext context(file, firstTopLevelNode, flags, ignoreName, elementLimit);
  ChildTable children(device);
  readDeviceTexts(context, children);
  if (const XMLElement* peripherals = children.find(SVDTag::Peripherals)) readPeripherals(context, peripherals);
  if (const XMLElement* cpu = children.find(SVDTag::Cpu); cpu != nullptr && !context.has(SVDReaderFlag::KeepCoreInfo))
    readCoreValues(file, cpu);
  if (context.output.refused()) return Status::failure("the arrays ask for more elements than a read may make");
  return Status();
}

Status loadSVDFromText(SVDFile& file, const char* text, uint32_t flags, const char* ignoreName,
                       size_t elementLimit) {
  makeProcessorRoot(file);
  // The SVD text is parsed, read and thrown away, so its tree lives in an arena.
  XMLDocument svd(true, XMLStorage::Arena);
  if (Status parsed = svd.parse(text); !parsed) return parsed;
  return readDevice(file, svd.root(), flags, ignoreName, elementLimit);
}

Status loadSVD(SVDFile& file, const QString& path, uint32_t flags, const char* ignoreName) {
  makeProcessorRoot(file);
  XMLDocument svd(true, XMLStorage::Arena);
  if (Status loaded = svd.load(path.toLocal8Bit().constData()); !loaded) return loaded;
  return readDevice(file, svd.root(), flags, ignoreName).inFile(path.toStdString());
}

}  // namespace regmill
