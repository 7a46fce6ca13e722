// The lexer on its own: operators longest first, the number state machine,
// string escapes, keywords, comments and line ends.
#include <gtest/gtest.h>

#include "script/es_engine.h"
#include "script/es_lexer.h"

namespace regmill::script {
namespace {

// Tokens of the text, each as its name, a number as its value and an identifier
// or string as [text]; "!message" for an error.
std::string tokens(const char* source) {
  ESEngine engine;
  QString text = QString::fromUtf8(source);
  ESLexer lexer(engine, text);
  std::string out;
  try {
    for (ESToken token = lexer.next(); token.type != Token::End; token = lexer.next()) {
      if (!out.empty()) out += ' ';
      if (token.newlineBefore) out += "\\n ";
      if (token.type == Token::Number)
        out += QString::number(token.number, 'g', 17).toStdString();
      else if (token.type == Token::Identifier || token.type == Token::String)
        out += "[" + token.atom->text.toStdString() + "]";
      else
        out += tokenName(token.type).toStdString();
    }
  } catch (const CompileError& error) {
    out += "!" + error.message.toStdString() + " @" + std::to_string(error.line);
  }
  return out;
}

TEST(ESLexer, SplitsTextIntoTokens) {
  const std::pair<const char*, const char*> cases[] = {
      {">>>= >>> >>= >> >= > === == = !== != !", ">>>= >>> >>= >> >= > === == = !== != !"},
      {"a+++b", "[a] ++ + [b]"},
      {"x<<=1|=2", "[x] <<= 1 |= 2"},
      {"$a_1 _ instanceof in", "[$a_1] [_] [instanceof] in"},
      {"class const debugger enum", "class const debugger enum"},
      // A `/` is always a division: there are no expression literals.
      {"a/b/c", "[a] / [b] / [c]"},
      {"a // comment\nb", "[a] \\n [b]"},
      {"a /* one\ntwo */ b", "[a] [b]"},     // a block comment sets no line-end flag
      {"a\rb", "[a] \\n [b]"},
      {"a /* open", "[a]"},                   // an unterminated comment just ends the input
  };
  for (const auto& [source, expected] : cases) EXPECT_EQ(tokens(source), expected) << source;
}

TEST(ESLexer, ScansNumbersByItsStateMachine) {
  const std::pair<const char*, const char*> cases[] = {
      {"0 10 1.5 .5 5. 1e3 1E-2 2.5e+1", "0 10 1.5 0.5 5 1000 0.01 25"},
      {"010 0x1F 0XfF 0x", "8 31 255 0"},
      {"09", "0 9"},                          // a leading 0 starts an octal number
      {"1e", "1 [e]"},                        // a dangling exponent is given back
      {"1e+", "1 [e] +"},
      {"1.5.5", "1.5 0.5"},
      {"1e400", "inf"},
      {"a.b", "[a] . [b]"},
  };
  for (const auto& [source, expected] : cases) EXPECT_EQ(tokens(source), expected) << source;
}

TEST(ESLexer, DecodesStringEscapes) {
  const std::pair<const char*, const char*> cases[] = {
      {R"('a\tb' "q\"")", "[a\tb] [q\"]"},
      {R"("\x41\u0042\101")", "[ABA]"},
      {R"("\477")", "['7]"},                  // a third octal digit only while the value is at most 31
      {R"("\37" "\q")", "[\037] [q]"},
      {"\"a\\\nb\" c", "[a\nb] [c]"},        // an escaped line end stands for itself
  };
  for (const auto& [source, expected] : cases) EXPECT_EQ(tokens(source), expected) << source;
}

TEST(ESLexer, ReportsMalformedTextWithItsLine) {
  const std::pair<const char*, const char*> cases[] = {
      {"\n\n@", "!unknown character '@' @3"},
      {"\"abc", "!end of file in string constant @1"},
      {"\"ab\ncd\"", "!newline in string constant @1"},
      {R"("\x4g")", "!malformed hex escape sequence @1"},
      {R"("\u12")", "!malformed hex escape sequence @1"},
      {"a \xc3\xa9", "[a]!unknown character '\xc3\xa9' @1"},  // a letter outside ASCII is in no class
  };
  for (const auto& [source, expected] : cases) EXPECT_EQ(tokens(source), expected) << source;
}

}  // namespace
}  // namespace regmill::script
