#include "project/session_file.h"

#include <QDir>
#include <QFileInfo>
#include <cstring>

#include "project/xml_text.h"
#include "xml/qt_xml_document.h"
#include "xml/xml_string.h"

namespace regmill {

namespace {

const char* const kDocumentType = "Larkloom_Session_File";

XMLElement* appendElement(XMLNode* parent, const QString& tag) {
  auto* element = new XMLElement(copyXmlString(tag.toUtf8().toStdString()));
  parent->addChild(element);
  return element;
}

}  // namespace

Status SessionFile::save(const QString& path) {
  QXMLDocument document(false);
  document.setVersion(copyXmlString("1.0"));
  document.setEncoding(copyXmlString("UTF-8"));
  document.setDocumentType(copyXmlString(kDocumentType));
  auto* root = new XMLElement(copyXmlString("session"));
  document.setRoot(root);
  for (SessionParticipant* participant : participants_) participant->saveSession(*appendElement(root, participant->sessionName()));
  XMLElement* files = appendElement(root, "Files");
  const QDir base = QFileInfo(path).absoluteDir();
  for (const SessionOpenFile& open : openFiles_) {
    XMLElement* file = appendElement(files, "File");
    const QString relative = base.relativeFilePath(open.path);
    // Files below the session's folder are kept relative, so that the pair can move.
    const QString stored = relative.startsWith("..") || QDir::isAbsolutePath(relative) ? open.path : relative;
    file->setAttributeCopy("codec", open.codec.toUtf8().constData());
    file->setAttributeCopy("path", stored.toUtf8().constData());
  }
  return document.save(path, 2, 75);
}

Status SessionFile::load(const QString& path) {
  QXMLDocument document(false);
  Status loaded = document.load(path);
  if (!loaded.ok()) return loaded;
  const XMLNode* root = document.root();
  if (document.documentType() == nullptr || std::strcmp(document.documentType(), kDocumentType) != 0 ||
      root == nullptr || std::strcmp(root->getName(), "session") != 0)
    return Status::failure("not a session file", path.toStdString());
  for (SessionParticipant* participant : participants_) {
    const QByteArray name = participant->sessionName().toUtf8();
    if (const XMLElement* element = findChild(root->firstChild(), name.constData())) participant->loadSession(*element);
  }
  openFiles_.clear();
  const QDir base = QFileInfo(path).absoluteDir();
  if (const XMLElement* files = findChild(root->firstChild(), "Files")) {
    for (const XMLNode* node = files->firstChild(); node != nullptr; node = node->nextSibling()) {
      if (!node->isElement() || std::strcmp(node->getName(), "File") != 0) continue;
      const auto* file = static_cast<const XMLElement*>(node);
      const QString stored = attributeText(file, "path");
      if (stored.isEmpty()) continue;
      const QString codec = attributeText(file, "codec");
      openFiles_.append({QDir::cleanPath(base.absoluteFilePath(stored)), codec.isEmpty() ? QString("Latin1") : codec});
    }
  }
  return Status();
}

}  // namespace regmill
