// The node model: linking and unlinking children, attributes, and the helpers over
// chains of siblings.
#include "xml/xml_node.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/xml/xml_test_support.h"
#include "xml/xml_document.h"
#include "xml/xml_string.h"

namespace regmill {
namespace {

using test::dumpTree;
using test::owned;

XMLElement* element(char tag) {
  const char text[2] = {tag, 0};
  return new XMLElement(owned(text));
}

// The children's tags in chain order; a child whose parent is wrong shows as "!".
std::string childNames(const XMLNode& parent) {
  std::string names;
  for (const XMLNode* child = parent.firstChild(); child != nullptr; child = child->nextSibling())
    names += child->parent() == &parent ? child->getName() : "!";
  return names;
}

// A parent with one child element per letter of `tags`.
struct Family {
  explicit Family(const char* tags) : parent(owned("p")) {
    for (size_t i = 0; tags[i] != 0; ++i) parent.addChild(children[i] = element(tags[i]));
  }
  XMLElement parent;
  XMLNode* children[8] = {};
};

// An unlinked chain of siblings: unlinking leaves each node's next sibling as it was.
XMLNode* chainOf(const char* tags) {
  Family holder(tags);
  for (size_t i = 0; tags[i] != 0; ++i) holder.parent.removeChild(holder.children[i]);
  return holder.children[0];
}

TEST(XmlNode, AddAndPrependLinkAtEitherEnd) {
  XMLElement parent(owned("p"));
  EXPECT_EQ(parent.prependChild(element('b')), nullptr);
  XMLNode* b = parent.firstChild();
  EXPECT_EQ(parent.prependChild(element('a')), b);
  parent.addChild(element('c'));  // behind the node that the first prepend made last
  parent.addChild(new XMLData(owned("d")));
  EXPECT_EQ(childNames(parent), "abcd");
  EXPECT_EQ(b->nextSibling()->nextSibling()->nextSibling(), nullptr);
}

TEST(XmlNode, RemoveChildUnlinksButLeavesTheNodesOwnLinks) {
  for (int removed = 0; removed < 3; ++removed) {
    Family family("abc");
    XMLNode* node = family.children[removed];
    family.parent.removeChild(node);
    EXPECT_EQ(node->parent(), &family.parent);
    EXPECT_EQ(node->nextSibling(), family.children[removed + 1]);
    family.parent.addChild(element('n'));
    EXPECT_EQ(childNames(family.parent), std::string("abc").erase(removed, 1) + "n");
    delete node;  // nobody owns it now; deleting it must leave the chain alone
  }
  Family only("a");
  only.parent.removeChild(only.children[0]);
  XMLElement stranger(owned("s"));
  only.parent.removeChild(&stranger);  // passed over
  only.parent.addChild(element('e'));
  EXPECT_EQ(childNames(only.parent), "e");
  delete only.children[0];
}

TEST(XmlNode, ReplaceChildTakesOverPlaceNextSiblingAndParent) {
  for (int replaced = 0; replaced < 3; ++replaced) {
    Family family("abc");
    XMLNode* old = family.children[replaced];
    XMLElement* x = element('x');
    family.parent.replaceChild(old, x);
    EXPECT_EQ(x->nextSibling(), family.children[replaced + 1]);
    family.parent.addChild(element('n'));  // a replaced last child is no longer last
    EXPECT_EQ(childNames(family.parent), std::string("abc").replace(replaced, 1, "x") + "n");
    delete old;  // not destroyed by the replace
  }
}

TEST(XmlNode, InsertChildrenAfterSplicesTheWholeChain) {
  Family middle("abc");
  middle.parent.insertChildrenAfter(middle.children[1], chainOf("xyz"));
  EXPECT_EQ(childNames(middle.parent), "abxyzc");

  Family last("ab");
  last.parent.insertChildrenAfter(last.children[1], chainOf("xy"));
  last.parent.addChild(element('n'));
  EXPECT_EQ(childNames(last.parent), "abxyn");

  // On a node without children the chain becomes the children, whatever child is named.
  XMLElement empty(owned("p"));
  XMLElement unrelated(owned("u"));
  empty.insertChildrenAfter(&unrelated, chainOf("xy"));
  empty.addChild(element('n'));
  EXPECT_EQ(childNames(empty), "xyn");
}

TEST(XmlNode, SetNameLeavesTheFormerTextToTheCaller) {
  XMLElement node(owned("old"));
  char* former = const_cast<char*>(node.getName());
  node.setName(owned("new"));
  EXPECT_STREQ(node.getName(), "new");
  EXPECT_STREQ(former, "old");  // still alive
  freeXmlString(former);
}

TEST(XmlNode, SetAttributeTwiceKeepsThePlaceAndTheNewerValue) {
  XMLElement node(owned("e"));
  node.setAttribute(owned("a"), owned("1"));
  node.setAttribute(owned("b"), owned("2"));
  node.setAttribute(owned("a"), owned("3"));
  node.setAttribute(owned("A"), owned("4"));  // names are case-sensitive
  EXPECT_EQ(node.attributeCount(), 3u);
  EXPECT_EQ(dumpTree(&node), "(e @a=\"3\" @b=\"2\" @A=\"4\")");
  char* value = owned("5");  // the same value given again is neither freed nor lost
  node.setAttribute(owned("b"), value);
  node.setAttribute(owned("b"), value);
  EXPECT_STREQ(node.getAttribute("b"), "5");
  EXPECT_FALSE(node.hasAttribute("B"));
}

TEST(XmlNode, NullAndEmptyValuesAreDifferent) {
  XMLElement node(owned("e"));
  node.setAttribute(owned("null"), nullptr);
  node.setAttribute(owned("empty"), owned(""));
  EXPECT_TRUE(node.hasAttribute("null"));
  EXPECT_EQ(node.getAttribute("null"), nullptr);
  EXPECT_STREQ(node.getAttribute("empty"), "");
  EXPECT_FALSE(node.hasAttribute("absent"));
  EXPECT_EQ(node.getAttribute("absent"), nullptr);
  node.setAttribute(owned("null"), owned("now"));
  node.setAttribute(owned("empty"), nullptr);
  EXPECT_EQ(dumpTree(&node), "(e @null=\"now\" @empty)");
}

TEST(XmlNode, RemoveAttributeKeepsTheListWholeBothWays) {
  for (int count : {4, 40}) {  // with and without an index of names
    XMLElement node(owned("e"));
    for (int i = 0; i < count; ++i) node.setAttributeCopy(("n" + std::to_string(i)).c_str(), "v");
    for (int i = 0; i + 1 < count; ++i) node.removeAttribute(("n" + std::to_string(i)).c_str());
    node.removeAttribute("absent");
    node.removeAttribute(("n" + std::to_string(count - 1)).c_str());  // the last
    EXPECT_EQ(node.attributes(), nullptr);
    for (const char* name : {"a", "b", "c", "d"}) node.setAttributeCopy(name, name);
    node.removeAttribute("b");
    node.removeAttribute("a");
    node.removeAttribute("d");
    node.setAttributeCopy("e", nullptr);
    node.setAttributeCopy("a", "again");
    node.setAttributeCopy("c", "new");
    EXPECT_EQ(node.attributeCount(), 3u);
    EXPECT_EQ(dumpTree(&node), "(e @c=\"new\" @e @a=\"again\")");
    const XMLAttribute* last = node.attributes();
    while (last->next != nullptr) last = last->next;
    std::string backwards;
    for (const XMLAttribute* a = last; a != nullptr; a = a->previous) backwards += a->name;
    EXPECT_EQ(backwards, "aec");
  }
}

TEST(XmlNode, ChainHelpersPassOverNodesThatAreNotElements) {
  XMLDocument document(true);
  ASSERT_TRUE(document.parse(
      "<r>text<!--f--><f id='1'>one<f id='2'><g/><f id='3'/></f><b>x</b>two</f><x><f id='4'/></x><f id='5'/></r>"));
  auto ids = [](const std::vector<XMLElement*>& found) {
    std::string text;
    for (const XMLElement* e : found) text += e->getAttribute("id");
    return text;
  };
  XMLNode* children = document.root()->firstChild();
  EXPECT_EQ(ids(collectElements(children, "f", true)), "12345");
  EXPECT_EQ(ids(collectElements(children, "f", false)), "15");
  EXPECT_TRUE(collectElements(children, "F", true).empty());
  XMLElement* first = findChild(children, "f");
  EXPECT_STREQ(first->getAttribute("id"), "1");
  EXPECT_EQ(findChild(children, "g"), nullptr);
  EXPECT_EQ(findChildInEither(children, first->firstChild(), "f"), first);
  EXPECT_STREQ(findChildInEither(children, first->firstChild(), "b")->getName(), "b");
  EXPECT_EQ(findChildInEither(children, nullptr, "none"), nullptr);
  EXPECT_EQ(elementText(first), "onetwo");
  EXPECT_TRUE(elementText(collectElements(children, "g", true).at(0)).isEmpty());

  XMLDocument high(true);  // every byte survives the QString
  ASSERT_TRUE(high.parse("<r>\xC3\xA9&#xff;</r>"));
  EXPECT_EQ(elementText(static_cast<XMLElement*>(high.root())).toLatin1(), QByteArray("\xC3\xA9\xFF"));
}

TEST(XmlNode, DeepTreesAreDestroyedWithoutRecursion) {
  // A recursive destructor would exhaust the stack long before this depth.
  constexpr size_t kDepth = 200000;
  XMLElement* root = element('d');
  XMLNode* innermost = root;
  for (size_t i = 0; i < kDepth; ++i) {
    XMLElement* child = element('d');
    child->setAttributeCopy("n", "v");
    innermost->addChild(child);
    innermost->addChild(new XMLData(owned("t")));
    innermost = child;
  }
  EXPECT_EQ(collectElements(root, "d", true).size(), kDepth + 1);
  delete root;
}

class DefinitionsDocument : public XMLPP2 {
 public:
  void reportError(const QString&) override {}
};

TEST(XmlNode, PreprocessorDocumentsHaveNoTextNodesAndOwnTheirDefinitions) {
  DefinitionsDocument document;
  EXPECT_FALSE(document.textNodes());
  XMLElement* first = element('f');
  first->addChild(element('i'));
  document.addDefinition("one", first);
  document.addDefinition("one", element('r'));  // the former subtree is freed
  EXPECT_STREQ(document.definition("one")->getName(), "r");
  EXPECT_EQ(document.definition("two"), nullptr);
}

}  // namespace
}  // namespace regmill
