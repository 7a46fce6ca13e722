#include "project/xml_preprocessor.h"

#include <QDir>
#include <QFileInfo>
#include <cstring>
#include <optional>
#include <vector>

#include "base/input_file.h"
#include "expr/parser_exception.h"
#include "expr/simple_expression_parser.h"
#include "project/macro_expander.h"
#include "project/xml_text.h"
#include "xml/xml_parser.h"
#include "xml/xml_string.h"

namespace regmill {

namespace {

const QString kPrefix = QStringLiteral("XmlPP::processConditionals(): ");

// Bounds on work that a file's author controls. Elements nested deeper than this
// are left as they stand; loops stop once they have made this many elements in one
// walk; includes nest this deep at most, so that a file including itself ends.
constexpr int kMaximumNesting = 256;
constexpr size_t kMaximumLoopElements = 100000;
constexpr int kMaximumIncludeDepth = 16;

QStringList commaList(const QString& text) { return text.split(u',', Qt::SkipEmptyParts); }

QString expandLocal(const MacroMap& map, const QString& text) {
  return macroExpander().expand(map, text, false, false);
}

// Expands every attribute value of the element that holds a macro character, and
// writes back only what changed.
void expandAttributesOf(XMLElement* element, const MacroMap& map) {
  for (XMLAttribute* attribute = element->attributes(); attribute != nullptr; attribute = attribute->next) {
    if (attribute->value == nullptr || std::strchr(attribute->value, '$') == nullptr) continue;
    const QString before = QString::fromUtf8(attribute->value);
    const QString after = expandLocal(map, before);
    if (after == before) continue;
    freeXmlString(attribute->value);
    attribute->value = copyXmlString(after.toUtf8().toStdString());
  }
}

// The expression's value, or nothing when it fails to parse or evaluate.
std::optional<ExprValue> evaluate(const QString& text) {
  try {
    ExprValue value = dereferenced(sharedExpressionParser().parse(text));
    switch (value.kind) {
      case ExprKind::Bool:
      case ExprKind::Signed:
      case ExprKind::Unsigned:
      case ExprKind::Float: return value;
      default: return std::nullopt;
    }
  } catch (const ParserException&) {
    return std::nullopt;
  }
}

bool isNonZero(const ExprValue& value) {
  if (value.kind == ExprKind::Bool) return value.boolValue();
  if (value.kind == ExprKind::Float) return value.asFloat() != 0.0;
  return value.asUnsigned() != 0;
}

int64_t integerOf(const ExprValue& value) {
  if (value.kind == ExprKind::Bool) return value.boolValue() ? 1 : 0;
  if (value.kind == ExprKind::Unsigned) return static_cast<int64_t>(value.asUnsigned());
  return value.asSigned();
}

QString hexText(uint64_t value) { return "0x" + QString::number(value, 16).toUpper(); }

// Copies a subtree through the document's element factory. For a loop body only
// elements are copied and every attribute value is expanded with `loopMacros`;
// otherwise everything is copied as it is. Iterative, so that depth costs no stack.
XMLElement* copyTree(XMLPP2& document, const XMLElement* source, const MacroMap* loopMacros) {
  auto copyElement = [&](const XMLElement* from) {
    XMLElement* copy = document.createElement(copyXmlString(from->getName()));
    for (const XMLAttribute* attribute = from->attributes(); attribute != nullptr; attribute = attribute->next) {
      char* value = nullptr;
      if (attribute->value != nullptr) {
        value = loopMacros == nullptr || std::strchr(attribute->value, '$') == nullptr
                    ? copyXmlString(attribute->value)
                    : copyXmlString(expandLocal(*loopMacros, QString::fromUtf8(attribute->value)).toUtf8().toStdString());
      }
      copy->setAttribute(copyXmlString(attribute->name), value);
    }
    return copy;
  };
  XMLElement* top = copyElement(source);
  std::vector<std::pair<const XMLNode*, XMLNode*>> pending{{source, top}};
  for (size_t next = 0; next < pending.size(); ++next) {
    auto [from, to] = pending[next];
    for (const XMLNode* child = from->firstChild(); child != nullptr; child = child->nextSibling()) {
      XMLNode* copy = nullptr;
      switch (child->nodeType()) {
        case XMLNodeType::Element: copy = copyElement(static_cast<const XMLElement*>(child)); break;
        case XMLNodeType::Data: copy = new XMLData(copyXmlString(child->getName())); break;
        case XMLNodeType::Comment: copy = new XMLComment(copyXmlString(child->getName())); break;
        case XMLNodeType::CDATASection: copy = new XMLCDATASection(copyXmlString(child->getName())); break;
      }
      if (loopMacros != nullptr && !child->isElement()) {
        delete copy;  // a loop's clones hold elements only
        continue;
      }
      copy->setLine(child->line());
      to->addChild(copy);
      pending.emplace_back(child, copy);
    }
  }
  return top;
}

// What the walk knows at one sibling list.
struct Scope {
  MacroMap macros;
  bool expandAttributes;
  QString fileName;  // of the file the elements came from; includes are relative to it
  int depth;         // of nesting
  int includeDepth;
};

class ConditionalWalker {
 public:
  explicit ConditionalWalker(XMLPP2& document) : document_(document) {}

  // The map is copied: what the list defines is gone when the call returns.
  void walkSiblings(XMLNode* first, Scope scope);

 private:
  XMLNode* processElement(XMLElement* element, Scope& scope);
  XMLNode* walkChildrenInPlace(XMLElement* element, const Scope& scope);
  XMLNode* drop(XMLElement* element);
  XMLNode* hoist(XMLElement* directive, XMLElement* chosen, const Scope& scope);
  void replaceByChildren(XMLElement* element);

  XMLNode* condition(XMLElement* element, Scope& scope, bool wanted);
  XMLNode* conditionOnDefinition(XMLElement* element, Scope& scope, bool wanted);
  XMLNode* conditionOnExpression(XMLElement* element, Scope& scope);
  XMLNode* switchOn(XMLElement* element, Scope& scope);
  XMLNode* define(XMLElement* element, Scope& scope);
  XMLNode* countedLoop(XMLElement* element, Scope& scope);
  XMLNode* cartesianLoop(XMLElement* element, Scope& scope);
  XMLNode* storeFragment(XMLElement* element, Scope& scope);
  XMLNode* putFragment(XMLElement* element, Scope& scope);
  XMLNode* include(XMLElement* element, Scope& scope);

  // Inserts a clone of the body's elements for each map behind the loop, then drops
  // the loop; the walk goes on with the first clone.
  XMLNode* unroll(XMLElement* loop, const std::vector<MacroMap>& iterations);
  // Walks included content (an included root, or a copied fragment) by the rule for
  // both: expanded with the `macros` attribute merged in when the directive asks for
  // it or the walk expands anyway, else with the current map as it is.
  void walkIncludedContent(XMLElement* directive, XMLElement* content, const Scope& scope, const QString& fileName);
  // The included file's root, or null after reporting why there is none.
  XMLElement* readIncludedFile(const QString& path);
  void report(const QString& message) { document_.reportError(message); }

  XMLPP2& document_;
  size_t loopElements_ = 0;
  bool reportedNesting_ = false;
  bool reportedLoopBound_ = false;
};

void ConditionalWalker::walkSiblings(XMLNode* first, Scope scope) {
  if (scope.depth > kMaximumNesting) {
    if (!reportedNesting_) report(kPrefix + QString("elements nested deeper than %1 levels are left as they are").arg(kMaximumNesting));
    reportedNesting_ = true;
    return;
  }
  // The next sibling is read when an element is done, so that what a directive put
  // behind itself is walked in its turn.
  for (XMLNode* node = first; node != nullptr;)
    node = node->isElement() ? processElement(static_cast<XMLElement*>(node), scope) : node->nextSibling();
}

XMLNode* ConditionalWalker::processElement(XMLElement* element, Scope& scope) {
  if (scope.expandAttributes) expandAttributesOf(element, scope.macros);
  const char* tag = element->getName();
  auto is = [tag](const char* name) { return std::strcmp(tag, name) == 0; };
  if (is("if")) return condition(element, scope, true);
  if (is("ifnot")) return condition(element, scope, false);
  if (is("ifdef")) return conditionOnDefinition(element, scope, true);
  if (is("ifndef")) return conditionOnDefinition(element, scope, false);
  if (is("ifex")) return conditionOnExpression(element, scope);
  if (is("switch")) return switchOn(element, scope);
  if (is("define")) return define(element, scope);
  if (is("for")) return countedLoop(element, scope);
  if (is("foreach")) return cartesianLoop(element, scope);
  if (is("xmldef")) return storeFragment(element, scope);
  if (is("xmlput")) return putFragment(element, scope);
  if (is("include")) return include(element, scope);
  return walkChildrenInPlace(element, scope);
}

XMLNode* ConditionalWalker::walkChildrenInPlace(XMLElement* element, const Scope& scope) {
  Scope inner = scope;
  ++inner.depth;
  walkSiblings(element->firstChild(), std::move(inner));
  return element->nextSibling();
}

XMLNode* ConditionalWalker::drop(XMLElement* element) {
  XMLNode* next = element->nextSibling();
  element->parent()->detachChild(element);
  delete element;
  return next;
}

XMLNode* ConditionalWalker::hoist(XMLElement* directive, XMLElement* chosen, const Scope& scope) {
  Scope inner = scope;
  ++inner.depth;
  walkSiblings(chosen->firstChild(), std::move(inner));
  // The hoisted children have been walked: the walk goes on behind them.
  XMLNode* next = directive->nextSibling();
  directive->parent()->insertChildrenAfter(directive, chosen->takeChildren());
  drop(directive);
  return next;
}

// The element's children take its place among its siblings, in order; the element goes.
void ConditionalWalker::replaceByChildren(XMLElement* element) {
  XMLNode* parent = element->parent();
  parent->insertChildrenAfter(element, element->takeChildren());
  parent->detachChild(element);
  delete element;
}

XMLNode* ConditionalWalker::condition(XMLElement* element, Scope& scope, bool wanted) {
  if (element->attributeCount() != 1) {
    report(kPrefix + "one condition required for <if[not]>");
    return walkChildrenInPlace(element, scope);
  }
  const XMLAttribute* attribute = element->attributes();
  const QString name = QString::fromUtf8(attribute->name);
  // A macro asked about is defined from here on, empty if it was not.
  auto found = scope.macros.find(name);
  if (found == scope.macros.end()) found = scope.macros.insert(name, QString(""));
  const bool listed = commaList(QString::fromUtf8(attribute->value == nullptr ? "" : attribute->value)).contains(found.value());
  return listed == wanted ? hoist(element, element, scope) : drop(element);
}

XMLNode* ConditionalWalker::conditionOnDefinition(XMLElement* element, Scope& scope, bool wanted) {
  const bool defined = scope.macros.contains(attributeText(element, "name"));
  return defined == wanted ? hoist(element, element, scope) : drop(element);
}

XMLNode* ConditionalWalker::conditionOnExpression(XMLElement* element, Scope& scope) {
  const QString expression = attributeText(element, "expression");
  if (expression.isEmpty()) return walkChildrenInPlace(element, scope);
  std::optional<ExprValue> value = evaluate(expandLocal(scope.macros, expression));
  return value && isNonZero(*value) ? hoist(element, element, scope) : drop(element);
}

XMLNode* ConditionalWalker::switchOn(XMLElement* element, Scope& scope) {
  const QString name = attributeText(element, "name");
  auto found = scope.macros.find(name);
  if (found == scope.macros.end()) found = scope.macros.insert(name, QString(""));
  XMLElement* chosen = nullptr;
  XMLElement* fallback = nullptr;
  for (XMLNode* child = element->firstChild(); child != nullptr && chosen == nullptr; child = child->nextSibling()) {
    if (!child->isElement()) continue;
    auto* candidate = static_cast<XMLElement*>(child);
    if (std::strcmp(candidate->getName(), "case") == 0 &&
        commaList(attributeText(candidate, "value")).contains(found.value()))
      chosen = candidate;
    else if (std::strcmp(candidate->getName(), "default") == 0 && fallback == nullptr)
      fallback = candidate;
  }
  if (chosen == nullptr) chosen = fallback;
  return chosen == nullptr ? drop(element) : hoist(element, chosen, scope);
}

XMLNode* ConditionalWalker::define(XMLElement* element, Scope& scope) {
  const QString name = attributeText(element, "name");
  if (name.isNull()) {
    report(kPrefix + "missing name in <define>");
    return drop(element);
  }
  if (element->hasAttribute("value")) {
    scope.macros.insert(name, attributeText(element, "value"));
  } else if (element->hasAttribute("expression") || element->hasAttribute("hex_expression")) {
    const bool hex = !element->hasAttribute("expression");
    const QString text = attributeText(element, hex ? "hex_expression" : "expression");
    if (std::optional<ExprValue> value = evaluate(expandLocal(scope.macros, text))) {
      const int64_t number = integerOf(*value);
      scope.macros.insert(name, hex ? hexText(static_cast<uint64_t>(number)) : QString::number(number));
    }
  } else {
    report(kPrefix + "missing value or expression in <define>");
  }
  return drop(element);
}

XMLNode* ConditionalWalker::countedLoop(XMLElement* element, Scope& scope) {
  for (const char* needed : {"index", "start", "end", "incr"}) {
    if (element->hasAttribute(needed) && element->firstChild() != nullptr) continue;
    report(kPrefix + "<for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">");
    return drop(element);
  }
  // Each number is macro-expanded and evaluated; one that fails counts as 0.
  auto number = [&](const char* name, int64_t otherwise) {
    if (!element->hasAttribute(name)) return otherwise;
    std::optional<ExprValue> value = evaluate(expandLocal(scope.macros, attributeText(element, name)));
    return value ? integerOf(*value) : 0;
  };
  const QString index = attributeText(element, "index");
  const auto start = static_cast<uint32_t>(number("start", 0));
  const auto end = static_cast<uint32_t>(number("end", 0));
  const auto step = static_cast<uint32_t>(number("incr", 0));
  if (step == 0 && start < end) {
    // A step of 0 would never end: the loop is refused.
    report(kPrefix + "<for> with incr=\"0\" never ends and is left out");
    return drop(element);
  }
  const int64_t offset = element->hasAttribute("add") ? number("add", 0) : -number("sub", 0);
  const int64_t factor = number("mul", 1);
  // p is counted in 64 bits and wraps as unsigned numbers do.
  uint64_t p = uint64_t(start) * uint64_t(factor) + uint64_t(offset);
  std::vector<MacroMap> iterations;
  for (uint32_t i = start; i < end; p += uint64_t(step) * uint64_t(factor)) {
    const uint64_t code = uint64_t(i) + 65;
    const char32_t letter = code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF) ? char32_t(code) : U'\uFFFD';
    iterations.push_back({{index, QString::number(i)},
                          {index + "_alpha", QString::fromUcs4(&letter, 1)},
                          {index + "_hex", hexText(i)},
                          {index + "_ap", QString::number(static_cast<int64_t>(p))},
                          {index + "_ap_hex", hexText(p)}});
    if (iterations.size() > kMaximumLoopElements || uint32_t(i + step) < i) break;  // bounded; no wrap-around
    i += step;
  }
  return unroll(element, iterations);
}

XMLNode* ConditionalWalker::cartesianLoop(XMLElement* element, Scope& scope) {
  // Every combination, the first attribute varying slowest.
  std::vector<MacroMap> combinations{MacroMap()};
  for (const XMLAttribute* attribute = element->attributes(); attribute != nullptr; attribute = attribute->next) {
    QString values = QString::fromUtf8(attribute->value == nullptr ? "" : attribute->value);
    values.remove(u'\n');
    const QStringList entries = commaList(values);
    std::vector<MacroMap> grown;
    for (const MacroMap& combination : combinations) {
      for (const QString& entry : entries) {
        if (grown.size() > kMaximumLoopElements) break;
        grown.push_back(combination);
        grown.back().insert(QString::fromUtf8(attribute->name), entry);
      }
    }
    combinations = std::move(grown);
  }
  return unroll(element, combinations);
}

XMLNode* ConditionalWalker::unroll(XMLElement* loop, const std::vector<MacroMap>& iterations) {
  // The clones are made under a holder first, so that they go in behind the loop
  // in one splice.
  XMLElement holder(copyXmlString(""));
  for (const MacroMap& iteration : iterations) {
    for (XMLNode* child = loop->firstChild(); child != nullptr; child = child->nextSibling()) {
      if (!child->isElement()) continue;
      if (++loopElements_ > kMaximumLoopElements) {
        if (!reportedLoopBound_)
          report(kPrefix + QString("loops made more than %1 elements; the rest is left out").arg(kMaximumLoopElements));
        reportedLoopBound_ = true;
        break;
      }
      holder.addChild(copyTree(document_, static_cast<XMLElement*>(child), &iteration));
    }
  }
  loop->parent()->insertChildrenAfter(loop, holder.takeChildren());
  return drop(loop);
}

XMLNode* ConditionalWalker::storeFragment(XMLElement* element, Scope& scope) {
  const QString name = attributeText(element, "name");
  if (name.isNull()) return walkChildrenInPlace(element, scope);
  XMLNode* next = element->nextSibling();
  element->parent()->detachChild(element);
  document_.storeFragment(name, element);
  return next;
}

XMLNode* ConditionalWalker::putFragment(XMLElement* element, Scope& scope) {
  const QString name = attributeText(element, "name");
  if (name.isNull()) return walkChildrenInPlace(element, scope);
  const XMLElement* stored = document_.fragment(name);
  if (stored == nullptr) {
    report(kPrefix + "xmlput cannot fine xmldef named " + name);
    return walkChildrenInPlace(element, scope);
  }
  XMLElement* copy = copyTree(document_, stored, nullptr);
  walkIncludedContent(element, copy, scope, scope.fileName);
  XMLNode* next = element->nextSibling();
  element->parent()->insertChildrenAfter(element, copy->takeChildren());
  delete copy;
  drop(element);
  return next;
}

void ConditionalWalker::walkIncludedContent(XMLElement* directive, XMLElement* content, const Scope& scope,
                                            const QString& fileName) {
  Scope inner{scope.macros, false, fileName, scope.depth + 1, scope.includeDepth};
  if (scope.expandAttributes || directive->hasAttribute("expand_macros")) {
    QString definitions = attributeText(directive, "macros");
    definitions.remove(u'\n').remove(u'\r');
    const MacroMap merged = parseMacroString(definitions);
    for (auto entry = merged.constBegin(); entry != merged.constEnd(); ++entry) inner.macros.insert(entry.key(), entry.value());
    expandAttributesOf(content, inner.macros);
    inner.expandAttributes = true;
  }
  walkSiblings(content->firstChild(), std::move(inner));
}

XMLNode* ConditionalWalker::include(XMLElement* element, Scope& scope) {
  const QString name = attributeText(element, "filename");
  if (name.isNull()) {
    report(kPrefix + "missing filename in <include>");
    return walkChildrenInPlace(element, scope);
  }
  QString path = macroExpander().expandGlobal(name);
  if (QFileInfo(path).isRelative()) path = QFileInfo(scope.fileName).dir().filePath(path);
  if (scope.includeDepth >= kMaximumIncludeDepth) {
    report(kPrefix + QString("includes nested deeper than %1 levels at include file %2").arg(kMaximumIncludeDepth).arg(path));
    return walkChildrenInPlace(element, scope);
  }
  XMLElement* root = readIncludedFile(path);
  if (root == nullptr) return walkChildrenInPlace(element, scope);

  XMLNode* next = element->nextSibling();
  XMLNode* parent = element->parent();
  parent->replaceChild(element, root);
  Scope included = scope;
  ++included.includeDepth;
  walkIncludedContent(element, root, included, path);
  for (const QString& inherited : attributeText(element, "inherit_attributes").split(u';', Qt::SkipEmptyParts)) {
    const QByteArray attribute = inherited.toUtf8();
    if (element->hasAttribute(attribute.constData()))
      setAttributeText(root, attribute.constData(), attributeText(element, attribute.constData()));
  }
  if (std::strcmp(root->getName(), "envelope") == 0 || element->hasAttribute("no_root")) replaceByChildren(root);
  delete element;  // with the include's own children
  return next;
}

XMLElement* ConditionalWalker::readIncludedFile(const QString& path) {
  auto failed = [&](const QString& error, uint32_t line) {
    report(kPrefix + "error \"" + error + "\" in include file " + path + " line:" + QString::number(line));
    return nullptr;
  };
  Expected<std::string> contents = readInputFile(path.toLocal8Bit().toStdString());
  if (!contents.ok()) return failed("couldn't read " + path, 0);
  const char* text = contents->c_str();
  if (std::strncmp(text, "\xEF\xBB\xBF", 3) == 0) text += 3;
  // The included file's prolog must not replace the document's own.
  auto keep = [](const char* value) { return value == nullptr ? nullptr : copyXmlString(value); };
  char* documentType = keep(document_.documentType());
  char* version = keep(document_.version());
  char* encoding = keep(document_.encoding());
  XMLParseResult parsed = parseXML(document_, text);
  document_.setDocumentType(documentType);
  document_.setVersion(version);
  document_.setEncoding(encoding);
  if (parsed.status != XMLParseStatus::Ok) {
    delete parsed.root;
    return failed(parsed.status == XMLParseStatus::BadAttributeName ? "bad tagName" : "tagName mismatch", parsed.line);
  }
  if (parsed.root == nullptr || !parsed.root->isElement()) {
    delete parsed.root;
    report(kPrefix + QString("error: include file '%1' is empty").arg(path));
    return nullptr;
  }
  return static_cast<XMLElement*>(parsed.root);
}

}  // namespace

void processConditionals(XMLPP2& document, XMLNode* first, const QString& fileName, MacroMap macros,
                         bool expandAttributes) {
  if (first == nullptr) return;
  ConditionalWalker walker(document);
  Scope scope{std::move(macros), expandAttributes, fileName, 0, 0};
  if (first->parent() != nullptr) {
    walker.walkSiblings(first, std::move(scope));
    return;
  }
  if (first != document.root()) return;
  // The root walks under a holder, so that a directive at the top can be dropped,
  // hoisted or replaced like any other; the first element left becomes the root.
  XMLElement holder(copyXmlString(""));
  holder.addChild(document.releaseRoot());
  walker.walkSiblings(holder.firstChild(), std::move(scope));
  for (XMLNode* node = holder.firstChild(); node != nullptr; node = node->nextSibling()) {
    if (!node->isElement()) continue;
    holder.detachChild(node);
    document.setRoot(node);
    break;
  }
}

}  // namespace regmill
