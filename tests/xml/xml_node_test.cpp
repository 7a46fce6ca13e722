// The node model: linking and unlinking children, attributes, and the helpers over
// chains of siblings.
#include "xml/xml_node.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/scratch_folder.h"
#include "tests/support/tree_dump.h"
#include "xml/qt_xml_document.h"

namespace regmill {
namespace {

using testing::dumpTree;
using testing::owned;

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

// An unlinked chain of siblings: unlinking leaves each node's next sibling as it was.
XMLNode* chainOf(const char* tags) {
  XMLElement holder(owned("h"));
  for (const char* tag = tags; *tag != 0; ++tag) holder.addChild(element(*tag));
  XMLNode* first = holder.firstChild();
  while (holder.firstChild() != nullptr) holder.removeChild(holder.firstChild());
  return first;
}

// The parent's children before, the edit: prepend "x", remove, replace by "x" or insert
// the chain "xyz" behind the child at `at` (-1: a node that is no child), and the
// children after the edit and one more addChild of "n", which shows the chain's end.
struct EditCase { const char* before; char edit; int at; const char* after; };

TEST(XmlNode, ChildEditsKeepTheChainItsParentsAndItsEnd) {
  const EditCase cases[] = {
      {"", 'p', 0, "xn"},         {"ab", 'p', 0, "xabn"},     {"abc", 'r', 0, "bcn"},
      {"abc", 'r', 1, "acn"},     {"abc", 'r', 2, "abn"},     {"ab", 'r', -1, "abn"},
      {"abc", 'x', 0, "xbcn"},    {"abc", 'x', 2, "abxn"},    {"abc", 'i', 1, "abxyzcn"},
      {"ab", 'i', 1, "abxyzn"},   {"", 'i', -1, "xyzn"},  // on no children the chain becomes them
  };
  for (const EditCase& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.before << " " << c.edit << c.at);
    XMLElement parent(owned("p"));
    XMLNode* children[4] = {};
    for (int i = 0; c.before[i] != 0; ++i) parent.addChild(children[i] = element(c.before[i]));
    XMLNode* named = c.at < 0 ? element('s') : children[c.at];
    switch (c.edit) {
      case 'p': EXPECT_EQ(parent.prependChild(element('x')), children[0]); break;
      case 'r': parent.removeChild(named); break;
      case 'x': parent.replaceChild(named, element('x')); break;
      case 'i': parent.insertChildrenAfter(named, chainOf("xyz")); break;
    }
    if (c.edit == 'r') {  // the removed node's own links stay as they were
      EXPECT_EQ(named->parent(), c.at < 0 ? nullptr : &parent);
      EXPECT_EQ(named->nextSibling(), c.at < 0 ? nullptr : children[c.at + 1]);
    }
    parent.addChild(element('n'));
    EXPECT_EQ(childNames(parent), c.after);
    // Nobody else owns a node that was removed, replaced or never a child; deleting it
    // must leave the parent's chain alone.
    if (c.at < 0 || c.edit == 'r' || c.edit == 'x') delete named;
  }
}

TEST(XmlNode, AttributesKeepTheirPlaceAndTellNullFromEmpty) {
  XMLElement node(owned("e"));
  for (const char* name : {"a", "b", "c", "d"}) node.setAttributeCopy(name, name);
  node.setAttribute(owned("c"), owned("new"));  // keeps its place, the count stays
  node.setAttributeCopy("C", nullptr);          // names are case-sensitive
  node.setAttributeCopy("e", "");
  EXPECT_EQ(node.attributeCount(), 6u);
  EXPECT_EQ(dumpTree(&node), "(e @a=\"a\" @b=\"b\" @c=\"new\" @d=\"d\" @C @e=\"\")");
  EXPECT_TRUE(node.hasAttribute("C"));
  EXPECT_EQ(node.getAttribute("C"), nullptr);
  EXPECT_FALSE(node.hasAttribute("absent"));
  EXPECT_EQ(node.getAttribute("absent"), nullptr);
  for (const char* name : {"b", "a", "e", "absent"}) node.removeAttribute(name);  // middle, first, last
  node.setAttributeCopy("a", "again");
  std::string backwards;
  for (const XMLAttribute* a = node.attributes()->next->next->next; a != nullptr; a = a->previous) backwards += a->name;
  EXPECT_EQ(backwards, "aCdc");
  EXPECT_EQ(dumpTree(&node), "(e @c=\"new\" @d=\"d\" @C @a=\"again\")");
}

TEST(XmlNode, AnElementWithVeryManyAttributesStaysFast) {
  // Searching all earlier pairs for each new one would make this quadratic.
  constexpr unsigned kCount = 200000;
  std::string text = "<e";
  for (unsigned i = 0; i < kCount; ++i) text += " n" + std::to_string(i) + "='" + std::to_string(i) + "'";
  XMLDocument document(false);
  ASSERT_TRUE(document.parse((text + " n7='again'/>").c_str()));
  auto* root = static_cast<XMLElement*>(document.root());
  for (unsigned i = 0; i < kCount; i += 2) root->removeAttribute(("n" + std::to_string(i)).c_str());
  EXPECT_EQ(root->attributeCount(), kCount / 2);
  EXPECT_STREQ(root->getAttribute("n7"), "again");
  EXPECT_FALSE(root->hasAttribute("n2"));
}

TEST(XmlNode, ChainHelpersPassOverNodesThatAreNotElements) {
  XMLDocument document(true);
  ASSERT_TRUE(document.parse(
      "<r>t\xC3\xA9<!--f--><f id='1'>one<f id='2'><f id='3'/></f><b/>two</f><x><f id='4'/></x><f id='5'/></r>"));
  XMLNode* children = document.root()->firstChild();
  std::string ids;
  for (bool recursive : {true, false})
    for (const XMLElement* found : collectElements(children, "f", recursive)) ids += found->getAttribute("id");
  EXPECT_EQ(ids, "1234515");  // in document order, each node's children right behind it
  const XMLElement* first = findChild(children, "f");
  EXPECT_STREQ(first->getAttribute("id"), "1");
  EXPECT_STREQ(findChild(first->firstChild(), "b")->getName(), "b");
  EXPECT_EQ(elementText(first), "onetwo");
  EXPECT_EQ(elementText(static_cast<XMLElement*>(document.root())).toLatin1(), "t\xC3\xA9");  // byte for byte
}

}  // namespace
}  // namespace regmill
