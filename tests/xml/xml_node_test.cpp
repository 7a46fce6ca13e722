// The node model: linking and unlinking children, attributes, and the helpers over
// chains of siblings.
#include "xml/xml_node.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/scratch_folder.h"
#include "tests/support/tree_dump.h"

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

// The parent's children before, the child removed (-1: a node that is no child), and
// the children after the removal and one more addChild of "n", which shows the chain's end.
struct RemoveCase { const char* before; int at; const char* after; };

TEST(XmlNode, RemovingAChildKeepsTheChainItsParentsAndItsEnd) {
  const RemoveCase cases[] = {{"abc", 0, "bcn"}, {"abc", 1, "acn"}, {"abc", 2, "abn"}, {"ab", -1, "abn"}};
  for (const RemoveCase& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.before << " " << c.at);
    XMLElement parent(owned("p"));
    XMLNode* children[4] = {};
    for (int i = 0; c.before[i] != 0; ++i) parent.addChild(children[i] = element(c.before[i]));
    XMLNode* named = c.at < 0 ? element('s') : children[c.at];
    parent.removeChild(named);
    // The removed node's own links stay as they were.
    EXPECT_EQ(named->parent(), c.at < 0 ? nullptr : &parent);
    EXPECT_EQ(named->nextSibling(), c.at < 0 ? nullptr : children[c.at + 1]);
    parent.addChild(element('n'));
    EXPECT_EQ(childNames(parent), c.after);
    // Nobody else owns a node that was removed or never a child; deleting it must
    // leave the parent's chain alone.
    delete named;
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
  std::string text;
  appendElementText(first, text);
  EXPECT_EQ(text, "onetwo");
  appendElementText(static_cast<XMLElement*>(document.root()), text);
  EXPECT_EQ(text, "onetwot\xC3\xA9");  // appended, byte for byte
}

}  // namespace
}  // namespace regmill
