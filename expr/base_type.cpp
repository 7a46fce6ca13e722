#include "expr/base_type.h"

#include <algorithm>

#include "expr/expression.h"

namespace regmill {

BaseType::~BaseType() = default;

QString SimpleType::toString() const {
  static const char* const names[] = {"char", "short", "int", "long", "long long"};
  QString text = unsigned_ ? QStringLiteral("unsigned ") : QString();
  return text + QLatin1String(names[sizeClass_]);
}

PointerType::PointerType(std::unique_ptr<BaseType> base) : BaseType(base->height() + 1), base_(std::move(base)) {}

QString PointerType::toString() const { return base_->toString() + QLatin1Char('*'); }

ArrayType::ArrayType(std::unique_ptr<BaseType> element, std::unique_ptr<Expression> size)
    : BaseType(std::max(element->height(), size->height()) + 1), element_(std::move(element)), size_(std::move(size)) {}

ArrayType::~ArrayType() = default;

QString ArrayType::toString() const {
  return element_->toString() + QLatin1Char('[') + size_->toString() + QLatin1Char(']');
}

void StructType::addMember(Member member) { members_.push_back(std::move(member)); }

QString StructType::toString() const {
  QString text;
  for (const Member& member : members_) {
    text += member.type->toString() + QLatin1Char(' ') + member.name;
    if (member.bitWidth != 0) text += QLatin1Char(':') + QString::number(member.bitWidth);
    text += QLatin1Char(';');
  }
  return text;
}

QString RegisterType::toString() const {
  QString text = QString::number(size_);
  for (const Field& field : fields_) {
    text += QLatin1Char(' ') + field.name + QLatin1Char(' ') + QString::number(field.bitOffset) + QLatin1Char(' ') +
            QString::number(field.bitSize);
  }
  return text;
}

}  // namespace regmill
