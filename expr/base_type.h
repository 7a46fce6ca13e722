// The types that casts, sizeof and struct members name. A type owns the types and
// the size expression it is built from. Only a parser subclass gives them meaning.
#pragma once
#include <QString>
#include <memory>
#include <vector>

namespace regmill {

class Expression;

class BaseType {
 public:
  virtual ~BaseType();
  virtual QString toString() const = 0;
  // Levels of nesting, counting this one; the parser bounds it.
  int height() const { return height_; }

 protected:
  explicit BaseType(int height = 1) : height_(height) {}

 private:
  int height_;
};

class SimpleType : public BaseType {
 public:
  enum SizeClass { Char = 0, Short = 1, Int = 2, Long = 3, LongLong = 4 };
  SimpleType(SizeClass sizeClass, bool isUnsigned) : sizeClass_(sizeClass), unsigned_(isUnsigned) {}
  QString toString() const override;
  SizeClass sizeClass() const { return sizeClass_; }
  bool isUnsigned() const { return unsigned_; }

 private:
  SizeClass sizeClass_;
  bool unsigned_;
};

class UserType : public BaseType {
 public:
  explicit UserType(QString name) : name_(std::move(name)) {}
  QString toString() const override { return name_; }
  const QString& name() const { return name_; }

 private:
  QString name_;
};

class PointerType : public BaseType {
 public:
  explicit PointerType(std::unique_ptr<BaseType> base);
  QString toString() const override;
  const BaseType& base() const { return *base_; }

 private:
  std::unique_ptr<BaseType> base_;
};

class ArrayType : public BaseType {
 public:
  ArrayType(std::unique_ptr<BaseType> element, std::unique_ptr<Expression> size);
  ~ArrayType() override;
  QString toString() const override;
  const BaseType& element() const { return *element_; }
  const Expression& size() const { return *size_; }

 private:
  std::unique_ptr<BaseType> element_;
  std::unique_ptr<Expression> size_;
};

class StructType : public BaseType {
 public:
  struct Member {
    QString name;
    std::unique_ptr<BaseType> type;
    int bitWidth = 0;  // 0 when the member is no bit-field
  };
  StructType() = default;
  void addMember(Member member);
  QString toString() const override;
  const std::vector<Member>& members() const { return members_; }

 private:
  std::vector<Member> members_;
};

class RegisterType : public BaseType {
 public:
  struct Field {
    QString name;
    int bitOffset = 0;
    int bitSize = 0;
  };
  explicit RegisterType(int size) : size_(size) {}
  void addField(Field field) { fields_.push_back(std::move(field)); }
  QString toString() const override;
  int size() const { return size_; }
  const std::vector<Field>& fields() const { return fields_; }

 private:
  int size_;
  std::vector<Field> fields_;
};

}  // namespace regmill
