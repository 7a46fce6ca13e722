// The type part of the grammar: the types of casts, sizeof and struct members.
#include "base/parse_number.h"
#include "expr/c_style_lexer.h"
#include "expr/expression_grammar.h"
#include "expr/expression_parser.h"

namespace regmill {

namespace {

int intValue(const QString& text) {
  QByteArray bytes = text.toLatin1();
  return parseNumber(std::string_view(bytes.constData(), bytes.size()));
}

}  // namespace

// Reads C type words by their text, whatever token they are. "long" twice is
// long long; a size word ends the type; a lone specifier (unsigned, const, ...)
// means int, or long after one "long". Without any type word there is no type,
// and nothing has been read.
ExpressionGrammar::Type ExpressionGrammar::parseType() {
  bool longSeen = false;
  bool unsignedSeen = false;
  bool specifierSeen = false;
  for (;;) {
    const QString word = lexer_.text();
    Type type;
    if (word == QLatin1String("long")) {
      if (longSeen) type = std::make_unique<SimpleType>(SimpleType::LongLong, unsignedSeen);
      longSeen = specifierSeen = true;
    } else if (word == QLatin1String("int")) {
      type = std::make_unique<SimpleType>(SimpleType::Int, unsignedSeen);
    } else if (word == QLatin1String("short")) {
      type = std::make_unique<SimpleType>(SimpleType::Short, unsignedSeen);
    } else if (word == QLatin1String("char")) {
      type = std::make_unique<SimpleType>(SimpleType::Char, unsignedSeen);
    } else if (word == QLatin1String("unsigned")) {
      unsignedSeen = specifierSeen = true;
    } else if (word == QLatin1String("signed") || word == QLatin1String("const") ||
               word == QLatin1String("volatile")) {
      specifierSeen = true;
    } else if (parser_.isTypeName(word)) {
      type = std::make_unique<UserType>(word);
    } else if (parser_.isTemplateName(word)) {
      QString name = word;
      if (!parseTemplateName(name)) break;
      type = std::make_unique<UserType>(name);
    } else {
      break;
    }
    lexer_.next();
    if (type) return type;
    if (current() != CToken::Identifier || !specifierSeen) break;
  }
  if (!specifierSeen) return nullptr;
  return std::make_unique<SimpleType>(longSeen ? SimpleType::Long : SimpleType::Int, unsignedSeen);
}

// Collects a template name such as "map<int, vector<char> >" token by token
// until the parser knows it as a type. True with the lexer on the name's last
// token; false with it on the token that ended the name.
bool ExpressionGrammar::parseTemplateName(QString& name) {
  bool lastWasIdentifier = current() == CToken::Identifier;
  for (;;) {
    lexer_.next();
    const CToken token = current();
    switch (token) {
      case CToken::Greater:
        name += name.endsWith(QLatin1Char('>')) ? QStringLiteral(" >") : QStringLiteral(">");
        break;
      case CToken::ShiftRight:
        name += QStringLiteral("> >");
        break;
      case CToken::Comma:
        name += QStringLiteral(", ");
        break;
      case CToken::Identifier:
        if (lastWasIdentifier) name += QLatin1Char(' ');
        name += lexer_.text();
        break;
      case CToken::Less:
      case CToken::ScopeSeparator:
      case CToken::Star:
      case CToken::Ampersand:
      case CToken::DecimalInteger:
        name += lexer_.text();
        break;
      default:
        return false;
    }
    lastWasIdentifier = token == CToken::Identifier;
    if (parser_.isTypeName(name)) return true;
  }
}

// Pointer stars first, then array sizes: int*[4] is an array of pointers.
ExpressionGrammar::Type ExpressionGrammar::parseTypeSuffix(Type type) {
  while (current() == CToken::Star) {
    type = bounded(std::make_unique<PointerType>(std::move(type)));
    lexer_.next();
  }
  while (current() == CToken::LeftBracket) {
    lexer_.next();
    Node size = parseBinary(-4);
    expect(CToken::RightBracket, "']' expected");
    type = bounded(std::make_unique<ArrayType>(std::move(type), std::move(size)));
  }
  return type;
}

// After "struct": a known struct name, or a member list in braces.
ExpressionGrammar::Type ExpressionGrammar::parseStruct() {
  if (current() == CToken::Identifier) {
    QString name = QStringLiteral("struct ") + lexer_.text();
    if (!parser_.isTypeName(name)) fail("struct type not found");
    lexer_.next();
    return std::make_unique<UserType>(name);
  }
  if (current() != CToken::LeftBrace) fail("'{' expected");
  lexer_.next();
  auto structType = std::make_unique<StructType>();
  while (current() != CToken::RightBrace) {
    StructType::Member member;
    member.type = parseType();
    if (!member.type) fail("struct parse error");
    if (current() == CToken::Identifier) {
      member.name = lexer_.text();
      lexer_.next();
    }
    if (current() == CToken::Colon) {
      lexer_.next();
      if (current() != CToken::DecimalInteger) fail("integer must follow ':'");
      member.bitWidth = intValue(lexer_.text());
      lexer_.next();
    }
    expect(CToken::Semicolon, "';' expected");
    structType->addMember(std::move(member));
  }
  lexer_.next();
  return structType;
}

// After "register": the size in bytes, then fields of name, bit offset and bit
// size with nothing between them, up to ";". A name in quotes keeps its quotes.
ExpressionGrammar::Type ExpressionGrammar::parseRegisterType() {
  if (current() != CToken::DecimalInteger) fail("size expected");
  auto registerType = std::make_unique<RegisterType>(intValue(lexer_.text()));
  lexer_.next();
  while (current() != CToken::Semicolon) {
    RegisterType::Field field;
    if (current() != CToken::Identifier && current() != CToken::StringLiteral) fail("fieldname expected");
    field.name = lexer_.text();
    lexer_.next();
    if (current() != CToken::DecimalInteger) fail("bitoffset expected");
    field.bitOffset = intValue(lexer_.text());
    lexer_.next();
    if (current() != CToken::DecimalInteger) fail("bitsize expected");
    field.bitSize = intValue(lexer_.text());
    lexer_.next();
    registerType->addField(std::move(field));
  }
  lexer_.next();
  return registerType;
}

}  // namespace regmill
