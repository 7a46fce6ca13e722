#include "project/dom_preprocessor.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <QXmlStreamReader>

#include "project/diagnostics.h"
#include "project/macro_expander.h"

namespace regmill {

namespace {

const QString kPrefix = QStringLiteral("XmlPP::processConditionals(): ");
constexpr int kMaximumIncludeDepth = 16;
constexpr int kMaximumNesting = 256;

QStringList commaList(const QString& text) { return text.split(u',', Qt::SkipEmptyParts); }

QString expandLocal(const MacroMap& map, const QString& text) { return macroExpander().expand(map, text, false, false); }

// The children of `from` move in front of `before`, in order.
void moveChildrenBefore(QDomNode from, QDomNode before) {
  QDomNode parent = before.parentNode();
  while (!from.firstChild().isNull()) parent.insertBefore(from.firstChild(), before);
}

}  // namespace

bool readDomDocument(const QByteArray& text, QDomDocument& document, QString& error, int& line, int& column) {
  QXmlStreamReader reader(text);
  reader.setNamespaceProcessing(false);
  // A default document has no body to append to until it has held content.
  document = QDomDocument();
  document.setContent(QByteArray("<x/>"));
  document.removeChild(document.documentElement());
  QDomNode current = document;
  // The DOM frees its nodes recursively: a deeper text is refused.
  constexpr int kMaximumDepth = 1024;
  int depth = 0;
  while (!reader.atEnd()) {
    switch (reader.readNext()) {
      case QXmlStreamReader::StartElement: {
        if (++depth > kMaximumDepth) reader.raiseError(QString("elements nested deeper than %1 levels").arg(kMaximumDepth));
        QDomElement element = document.createElement(reader.qualifiedName().toString());
        for (const QXmlStreamAttribute& attribute : reader.attributes())
          element.setAttribute(attribute.qualifiedName().toString(), attribute.value().toString());
        current = current.appendChild(element);
        break;
      }
      case QXmlStreamReader::EndElement:
        current = current.parentNode();
        --depth;
        break;
      case QXmlStreamReader::Characters:
        if (current.isElement())
          current.appendChild(reader.isCDATA() ? QDomNode(document.createCDATASection(reader.text().toString()))
                                               : QDomNode(document.createTextNode(reader.text().toString())));
        break;
      case QXmlStreamReader::Comment: current.appendChild(document.createComment(reader.text().toString())); break;
      case QXmlStreamReader::ProcessingInstruction:
        if (current.isElement())
          current.appendChild(document.createProcessingInstruction(reader.processingInstructionTarget().toString(),
                                                                   reader.processingInstructionData().toString()));
        break;
      default: break;
    }
  }
  if (!reader.hasError()) return true;
  error = reader.errorString();
  line = int(reader.lineNumber());
  column = int(reader.columnNumber());
  return false;
}

// One walk of a document; the map it is given is shared by every level.
class XmlPP::Walker {
 public:
  Walker(QDomDocument& document, MacroMap& macros) : document_(document), macros_(macros) {}
  void walkSiblings(QDomNode first, const QString& fileName, bool expand, int depth);

 private:
  QDomNode processElement(QDomElement element, const QString& fileName, bool expand, int depth);
  QDomNode hoist(QDomElement directive, QDomElement chosen, const QString& fileName, bool expand, int depth);
  QDomNode drop(QDomElement element);
  QDomNode condition(QDomElement element, const QString& fileName, bool expand, int depth, bool wanted);
  QDomNode switchOn(QDomElement element, const QString& fileName, bool expand, int depth);
  QDomNode defineMacro(QDomElement element);
  QDomNode expandDefinition(QDomElement element);
  QDomNode include(QDomElement element, const QString& fileName, bool expand, int depth);
  QDomNode includeText(QDomElement element, const QString& path);

  QDomDocument& document_;
  MacroMap& macros_;
  int includeDepth_ = 0;
};

void XmlPP::Walker::walkSiblings(QDomNode first, const QString& fileName, bool expand, int depth) {
  if (depth > kMaximumNesting) return;
  for (QDomNode node = first; !node.isNull();)
    node = node.isElement() ? processElement(node.toElement(), fileName, expand, depth) : node.nextSibling();
}

QDomNode XmlPP::Walker::processElement(QDomElement element, const QString& fileName, bool expand, int depth) {
  const QDomNamedNodeMap attributes = element.attributes();
  if (expand) {
    for (int i = 0; i < attributes.count(); ++i) {
      QDomAttr attribute = attributes.item(i).toAttr();
      if (attribute.value().contains(u'$')) attribute.setValue(expandLocal(macros_, attribute.value()));
    }
  } else if (element.hasAttribute("expand_attributes")) {
    const QStringList names = commaList(element.attribute("expand_attributes"));
    element.removeAttribute("expand_attributes");
    for (const QString& name : names)
      if (element.hasAttribute(name)) element.setAttribute(name, expandLocal(macros_, element.attribute(name)));
  }
  const QString tag = element.tagName();
  if (tag == "if" || tag == "ifnot") return condition(element, fileName, expand, depth, tag == "if");
  if (tag == "ifdef" || tag == "ifndef") {
    const bool defined = macros_.contains(element.attribute("name"));
    return defined == (tag == "ifdef") ? hoist(element, element, fileName, expand, depth) : drop(element);
  }
  if (tag == "switch") return switchOn(element, fileName, expand, depth);
  if (tag == "define" || tag == "define_macro") return defineMacro(element);
  if (tag == "expand_definition") return expandDefinition(element);
  if (tag == "include") return include(element, fileName, expand, depth);
  walkSiblings(element.firstChild(), fileName, expand, depth + 1);
  return element.nextSibling();
}

QDomNode XmlPP::Walker::hoist(QDomElement directive, QDomElement chosen, const QString& fileName, bool expand,
                              int depth) {
  walkSiblings(chosen.firstChild(), fileName, expand, depth + 1);
  QDomNode next = directive.nextSibling();
  moveChildrenBefore(chosen, directive);
  directive.parentNode().removeChild(directive);
  return next;
}

QDomNode XmlPP::Walker::drop(QDomElement element) {
  QDomNode next = element.nextSibling();
  element.parentNode().removeChild(element);
  return next;
}

QDomNode XmlPP::Walker::condition(QDomElement element, const QString& fileName, bool expand, int depth, bool wanted) {
  const QDomNamedNodeMap attributes = element.attributes();
  if (attributes.count() != 1) {
    reportWarning(kPrefix + "one condition required for <if[not]>");
    walkSiblings(element.firstChild(), fileName, expand, depth + 1);
    return element.nextSibling();
  }
  const QDomAttr attribute = attributes.item(0).toAttr();
  auto found = macros_.find(attribute.name());
  if (found == macros_.end()) found = macros_.insert(attribute.name(), QString(""));
  const bool listed = commaList(attribute.value()).contains(found.value());
  return listed == wanted ? hoist(element, element, fileName, expand, depth) : drop(element);
}

QDomNode XmlPP::Walker::switchOn(QDomElement element, const QString& fileName, bool expand, int depth) {
  const QString name = element.attribute("name");
  auto found = macros_.find(name);
  if (found == macros_.end()) found = macros_.insert(name, QString(""));
  QDomElement chosen;
  QDomElement fallback;
  for (QDomElement child = element.firstChildElement(); !child.isNull() && chosen.isNull(); child = child.nextSiblingElement()) {
    if (child.tagName() == "case" && commaList(child.attribute("value")).contains(found.value()))
      chosen = child;
    else if (child.tagName() == "default" && fallback.isNull())
      fallback = child;
  }
  if (chosen.isNull()) chosen = fallback;
  return chosen.isNull() ? drop(element) : hoist(element, chosen, fileName, expand, depth);
}

QDomNode XmlPP::Walker::defineMacro(QDomElement element) {
  if (element.hasAttribute("name") && element.hasAttribute("value"))
    macros_.insert(element.attribute("name"), element.attribute("value"));
  else
    reportWarning(kPrefix + "missing name and/or value in <define_macro>");
  return drop(element);
}

QDomNode XmlPP::Walker::expandDefinition(QDomElement element) {
  const QString name = element.attribute("name");
  QString text = macros_.contains(name) ? macros_.value(name) : macroExpander().dateMacroValue(name);
  if (text.isEmpty()) text = element.attribute("default");
  if (text.isEmpty()) return drop(element);
  if (element.hasAttribute("lowercase")) text = text.toLower();
  if (element.hasAttribute("underscore_spaces")) text.replace(u' ', u'_');
  QDomNode next = element.nextSibling();
  element.parentNode().replaceChild(document_.createTextNode(text), element);
  return next;
}

QDomNode XmlPP::Walker::includeText(QDomElement element, const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    reportErrorMessage(QString("XmlPP::processConditionals could not open include file %1").arg(path));
    return element.nextSibling();
  }
  const QByteArray bytes = file.readAll();
  const QString encoding = element.attribute("encoding");
  QString content = QString::fromUtf8(bytes);
  if (!encoding.isEmpty()) {
    QStringDecoder decoder(encoding.toLatin1().constData());
    if (decoder.isValid()) content = decoder(bytes);
  }
  QDomElement replacement = document_.createElement(element.attribute("tag").isEmpty() ? QString("pre") : element.attribute("tag"));
  for (const char* copied : {"class", "id", "style"})
    if (!element.attribute(copied).isEmpty()) replacement.setAttribute(copied, element.attribute(copied));
  replacement.appendChild(document_.createTextNode(content));
  QDomNode next = element.nextSibling();
  element.parentNode().replaceChild(replacement, element);
  return next;
}

QDomNode XmlPP::Walker::include(QDomElement element, const QString& fileName, bool expand, int depth) {
  const bool expandMacros = element.hasAttribute("expand_macros");
  QString path = expandMacros ? macroExpander().expand(macros_, element.attribute("filename"), true, true)
                              : macroExpander().expandGlobal(element.attribute("filename"));
  if (QFileInfo(path).isRelative()) path = QFileInfo(fileName).dir().filePath(path);
  auto leaveInPlace = [&] {
    walkSiblings(element.firstChild(), fileName, expand, depth + 1);
    return element.nextSibling();
  };
  if (includeDepth_ >= kMaximumIncludeDepth) {
    reportErrorMessage(QString("XmlPP::processConditionals(): includes nested deeper than %1 levels at include file %2")
                           .arg(kMaximumIncludeDepth).arg(path));
    return leaveInPlace();
  }
  if (element.attribute("type") == "text") return includeText(element, path);
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    reportErrorMessage(QString("XmlPP::processConditionals could not open include file %1").arg(path));
    return leaveInPlace();
  }
  QDomDocument included;
  QString error;
  int line = 0;
  int column = 0;
  if (!readDomDocument(file.readAll(), included, error, line, column)) {
    reportErrorMessage(QString("XmlPP: error reading XML - %1 on line %2 column %3").arg(error).arg(line).arg(column));
    return leaveInPlace();
  }
  QDomElement root = document_.importNode(included.documentElement(), true).toElement();
  if (root.isNull()) return leaveInPlace();
  QDomNode next = element.nextSibling();
  element.parentNode().replaceChild(root, element);
  // Included content: with the include's own macros and expansion when asked for.
  const bool expandContent = expand || expandMacros;
  // The include's own macros hold for its content only; what the content defines
  // holds on, as every definition of this form does.
  MacroMap given;
  MacroMap hidden;
  if (expandContent && element.hasAttribute("macros")) {
    QString definitions = element.attribute("macros");
    definitions.remove(u'\n').remove(u'\r');
    given = parseMacroString(definitions);
    for (auto entry = given.constBegin(); entry != given.constEnd(); ++entry) {
      if (macros_.contains(entry.key())) hidden.insert(entry.key(), macros_.value(entry.key()));
      macros_.insert(entry.key(), entry.value());
    }
  }
  if (expandContent) {
    const QDomNamedNodeMap attributes = root.attributes();
    for (int i = 0; i < attributes.count(); ++i) {
      QDomAttr attribute = attributes.item(i).toAttr();
      attribute.setValue(expandLocal(macros_, attribute.value()));
    }
  }
  ++includeDepth_;
  walkSiblings(root.firstChild(), path, expandContent, depth + 1);
  --includeDepth_;
  for (auto entry = given.constBegin(); entry != given.constEnd(); ++entry) {
    if (macros_.value(entry.key()) != entry.value()) continue;  // redefined by the content
    if (hidden.contains(entry.key()))
      macros_.insert(entry.key(), hidden.value(entry.key()));
    else
      macros_.remove(entry.key());
  }
  for (const QString& inherited : element.attribute("inherit_attributes").split(u';', Qt::SkipEmptyParts))
    if (element.hasAttribute(inherited)) root.setAttribute(inherited, element.attribute(inherited));
  if (root.tagName() == "envelope" || element.hasAttribute("no_root")) {
    moveChildrenBefore(root, root);
    root.parentNode().removeChild(root);
  }
  return next;
}

const MacroMap& XmlPP::builtInMacros() {
  // The values of this build; the workbench's Windows build names its host "win".
  static const MacroMap macros{
      {"ide", "loom"},
      {"ide_branding", "Larkloom"},
      {"ide_owner", "Larkloom"},
      {"ide_url", "https://larkloom.example"},
      {"ide_product_generic_name", "Larkloom Workbench"},
      {"ide_major_version", "1"},
      {"ide_minor_version", "0"},
      {"platform", "linux"},
      {"release", "1.0"},
      {"host_os", "linux"},
      {"build", "RELEASE"},
      {"host", "LINUX"},
  };
  return macros;
}

XmlPP::XmlPP() : macros_(builtInMacros()) {}

XmlPP::~XmlPP() = default;

void XmlPP::processConditionals(QDomNode first, const QString& fileName, MacroMap& macros, bool expandAttributes) {
  Walker walker(document_, macros);
  // The document element walks under its document, so that it may be replaced.
  walker.walkSiblings(first, fileName, expandAttributes, 0);
}

bool XmlPP::load(const QString& file, const QString& macroString) {
  QFile in(file);
  if (!in.open(QIODevice::ReadOnly)) {
    reportErrorMessage(QString("XmlPP::processConditionals could not open include file %1").arg(file));
    return false;
  }
  QString error;
  int line = 0;
  int column = 0;
  if (!readDomDocument(in.readAll(), document_, error, line, column)) {
    reportErrorMessage(QString("XmlPP: error reading XML - %1 on line %2 column %3").arg(error).arg(line).arg(column));
    return false;
  }
  if (macroString.isEmpty()) {
    processConditionals(document_.documentElement(), file, macros_, false);
    return true;
  }
  MacroMap merged = macros_;
  const MacroMap given = parseMacroString(macroString);
  for (auto entry = given.constBegin(); entry != given.constEnd(); ++entry) merged.insert(entry.key(), entry.value());
  processConditionals(document_.documentElement(), file, merged, false);
  return true;
}

std::unique_ptr<XmlPP> XmlPP::forPage(const QString& file, int mode) {
  auto page = std::make_unique<XmlPP>();
  page->macros_.insert("output", mode == 1 ? "print" : "html");
  if (!page->load(file)) return nullptr;
  return page;
}

}  // namespace regmill
