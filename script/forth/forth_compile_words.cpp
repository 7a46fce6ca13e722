// The words that define words and compile control structures, and the codes that
// the compiled structures run.
#include "script/forth/forth_words.h"

namespace regmill::forth {
namespace {

using Control = CoreWords::Control;

// A place in a chain that branches land on; does nothing itself.
class PLabel : public pcode {
 public:
  void execute(ForthInterpreter&) override {}
};

// Goes to `target`, always or when the popped flag is zero.
class PBranch : public pcode {
 public:
  explicit PBranch(bool onZero, pcode* to = nullptr) : target(to), onZero_(onZero) {}
  void execute(ForthInterpreter& interpreter) override {
    if (!onZero_ || interpreter.popInteger() == 0) interpreter.ip = target;
  }
  pcode* target;

 private:
  bool onZero_;
};

// A code that may go past the LOOP of its DO, which is compiled after it.
class PJumpPastLoop : public pcode {
 public:
  pcode* pastLoop = nullptr;
};

// ( limit start -- ) puts limit and index on the second stack. ?DO first goes past the
// loop when they are equal.
class PDo : public PJumpPastLoop {
 public:
  explicit PDo(bool skipsEmpty) : skipsEmpty_(skipsEmpty) {}
  void execute(ForthInterpreter& interpreter) override {
    const int64_t start = interpreter.popInteger();
    const int64_t limit = interpreter.popInteger();
    if (skipsEmpty_ && start == limit) {
      interpreter.ip = pastLoop;
      return;
    }
    interpreter.second.push(Cell::ofInteger(limit));
    interpreter.second.push(Cell::ofInteger(start));
  }

 private:
  bool skipsEmpty_;
};

// LOOP and +LOOP: the loop ends when the index crosses the line between limit - 1 and
// limit, in either direction for +LOOP; then its parameters leave the second stack.
class PLoop : public pcode {
 public:
  PLoop(bool takesStep, pcode* body) : body_(body), takesStep_(takesStep) {}
  void execute(ForthInterpreter& interpreter) override {
    const int64_t step = takesStep_ ? interpreter.popInteger() : 1;
    if (interpreter.second.count() < 2) throw ForthException{-26};
    Cell& index = interpreter.second.fromTop(0);
    const uint64_t limit = static_cast<uint64_t>(interpreter.second.fromTop(1).integer);
    // The index counted from the limit: the line lies between -1 and 0.
    const int64_t before = static_cast<int64_t>(static_cast<uint64_t>(index.integer) - limit);
    const int64_t after = static_cast<int64_t>(static_cast<uint64_t>(before) + static_cast<uint64_t>(step));
    index.integer = static_cast<int64_t>(static_cast<uint64_t>(index.integer) + static_cast<uint64_t>(step));
    const bool crossed = step >= 0 ? before < 0 && after >= 0 : before >= 0 && after < 0;
    if (!crossed) {
      interpreter.ip = body_;
      return;
    }
    interpreter.second.pop();
    interpreter.second.pop();
  }

 private:
  pcode* body_;
  bool takesStep_;
};

// Drops the loop's parameters and goes past its LOOP.
class PLeave : public PJumpPastLoop {
 public:
  void execute(ForthInterpreter& interpreter) override {
    if (interpreter.second.count() < 2) throw ForthException{-26};
    interpreter.second.pop();
    interpreter.second.pop();
    interpreter.ip = pastLoop;
  }
};

// Writes the text it holds in `more`.
class PPrintText : public pcode {
 public:
  explicit PPrintText(const QString& text) { more = text; }
  void execute(ForthInterpreter& interpreter) override { interpreter.write(more.toUtf8().toStdString()); }
};

// A word made by CREATE or VARIABLE: pushes the address of its data field.
class PDataWord : public pcode {
 public:
  PDataWord(QString wordName, int64_t address) : pcode(std::move(wordName), kHasPfa) { pfa = address; }
  void execute(ForthInterpreter& interpreter) override { interpreter.pushInteger(getPfa()); }
};

// Ends the definition that runs it. It is compiled in place rather than called, as
// a call keeps the caller's place aside and would only end itself.
class PExit : public pcode {
 public:
  void execute(ForthInterpreter& interpreter) override { interpreter.ip = nullptr; }
};

// A CONSTANT or VALUE: pushes its cell; TO gives a VALUE a new one.
class PConstant : public pcode {
 public:
  PConstant(QString wordName, Cell value, bool changeable)
      : pcode(std::move(wordName)), cell_(std::move(value)), changeable_(changeable) {}
  void execute(ForthInterpreter& interpreter) override { interpreter.data.push(cell_); }
  void store(ForthInterpreter& interpreter) override {
    if (!changeable_) return pcode::store(interpreter);
    cell_ = interpreter.data.pop();
  }

 private:
  Cell cell_;
  bool changeable_;
};

// TO compiled into a definition: stores into its word when the definition runs.
class PStoreInto : public pcode {
 public:
  explicit PStoreInto(pcode* word) : target_(word) {}
  void execute(ForthInterpreter& interpreter) override { target_->store(interpreter); }

 private:
  pcode* target_;
};

enum class Op {
  Colon, Semicolon, Immediate, Recurse, Exit,
  If, Else, Then, Begin, Until, Again, While, Repeat, Do, QuestionDo, Loop, PlusLoop, Leave,
  DotQuote, DotParen, Paren, Backslash, Char, BracketChar,
  Variable, Constant, Value, To, Create,
};

struct CompilerEntry {
  const char* name;
  Op op;
  uint32_t flags;
};

constexpr uint32_t kImmediate = pcode::kImmediate;
constexpr uint32_t kCompiling = pcode::kImmediate | pcode::kCompileOnly;

constexpr CompilerEntry kCompilerWords[] = {
    {":", Op::Colon, 0}, {";", Op::Semicolon, kCompiling}, {"IMMEDIATE", Op::Immediate, 0},
    {"RECURSE", Op::Recurse, kCompiling}, {"EXIT", Op::Exit, kCompiling},
    {"IF", Op::If, kCompiling}, {"ELSE", Op::Else, kCompiling},
    {"THEN", Op::Then, kCompiling}, {"BEGIN", Op::Begin, kCompiling}, {"UNTIL", Op::Until, kCompiling},
    {"AGAIN", Op::Again, kCompiling}, {"WHILE", Op::While, kCompiling}, {"REPEAT", Op::Repeat, kCompiling},
    {"DO", Op::Do, kCompiling}, {"?DO", Op::QuestionDo, kCompiling}, {"LOOP", Op::Loop, kCompiling},
    {"+LOOP", Op::PlusLoop, kCompiling}, {"LEAVE", Op::Leave, kCompiling},
    {".\"", Op::DotQuote, kImmediate}, {".(", Op::DotParen, kImmediate}, {"(", Op::Paren, kImmediate},
    {"\\", Op::Backslash, kImmediate}, {"CHAR", Op::Char, 0}, {"[CHAR]", Op::BracketChar, kCompiling},
    {"VARIABLE", Op::Variable, 0}, {"CONSTANT", Op::Constant, 0}, {"VALUE", Op::Value, 0},
    {"TO", Op::To, kImmediate}, {"CREATE", Op::Create, 0},
};

class PCompiler : public pcode {
 public:
  PCompiler(const CompilerEntry& entry, CoreWords& words)
      : pcode(QString::fromLatin1(entry.name), entry.flags), op_(entry.op), words_(words) {}
  void execute(ForthInterpreter& interpreter) override;

 private:
  void define(ForthInterpreter& in);
  void conditional(ForthInterpreter& in);
  void loop(ForthInterpreter& in);
  void text(ForthInterpreter& in);
  void data(ForthInterpreter& in);

  QString newName(ForthInterpreter& in);
  void addWord(pcode* word);
  Control popControl(Control::Kind kind);
  pcode* appendLabel(ForthInterpreter& in);

  Op op_;
  CoreWords& words_;
};

void PCompiler::execute(ForthInterpreter& in) {
  if (op_ <= Op::Exit) return define(in);
  if (op_ <= Op::Repeat) return conditional(in);
  if (op_ <= Op::Leave) return loop(in);
  if (op_ <= Op::BracketChar) return text(in);
  data(in);
}

QString PCompiler::newName(ForthInterpreter& in) {
  QString name = in.parseWord();
  if (name.isEmpty()) throw ForthException{-16 /* attempt to use a zero-length name */, this->name};
  return name;
}

void PCompiler::addWord(pcode* word) {
  words_.interpreter.current->insert(word->name, word);
  words_.lastDefined = word;
}

Control PCompiler::popControl(Control::Kind kind) {
  if (words_.controls.empty() || words_.controls.back().kind != kind) throw ForthException{-22, name};
  Control control = std::move(words_.controls.back());
  words_.controls.pop_back();
  return control;
}

pcode* PCompiler::appendLabel(ForthInterpreter& in) {
  pcode* label = in.make<PLabel>();
  in.append(label);
  return label;
}

// A definition becomes visible at ';', so that a word may be defined in terms of an
// older word of the same name; RECURSE calls the definition itself.
void PCompiler::define(ForthInterpreter& in) {
  switch (op_) {
    case Op::Colon: {
      if (in.definition) throw ForthException{-22, name};
      in.definition = in.make<PDefinition>(newName(in));
      words_.controls.clear();
      in.state = 1;
      return;
    }
    case Op::Semicolon: {
      if (!in.definition) throw ForthException{-256};
      if (!words_.controls.empty()) throw ForthException{-22, name};
      in.definition->sealed = true;
      addWord(in.definition);
      in.definition = nullptr;
      in.state = 0;
      return;
    }
    case Op::Immediate:
      if (!words_.lastDefined) throw ForthException{-256};
      words_.lastDefined->flags |= pcode::kImmediate;
      return;
    case Op::Recurse:
      if (!in.definition) throw ForthException{-256};
      in.append(in.make<PCall>(in.definition));
      return;
    case Op::Exit: in.append(in.make<PExit>()); return;
    default: return;
  }
}

void PCompiler::conditional(ForthInterpreter& in) {
  using Kind = Control::Kind;
  std::vector<Control>& controls = words_.controls;
  switch (op_) {
    case Op::If: {
      auto* branch = in.make<PBranch>(true);
      in.append(branch);
      words_.pushControl(Kind::Orig, branch);
      return;
    }
    case Op::Else: {
      Control taken = popControl(Kind::Orig);
      auto* skip = in.make<PBranch>(false);
      in.append(skip);
      static_cast<PBranch*>(taken.code)->target = appendLabel(in);
      words_.pushControl(Kind::Orig, skip);
      return;
    }
    case Op::Then: {
      Control taken = popControl(Kind::Orig);
      static_cast<PBranch*>(taken.code)->target = appendLabel(in);
      return;
    }
    case Op::Begin: words_.pushControl(Kind::Dest, appendLabel(in)); return;
    case Op::Until:
    case Op::Again: {
      Control begin = popControl(Kind::Dest);
      in.append(in.make<PBranch>(op_ == Op::Until, begin.code));
      return;
    }
    case Op::While: {
      if (controls.empty() || controls.back().kind != Kind::Dest) throw ForthException{-22, name};
      auto* exit = in.make<PBranch>(true);
      in.append(exit);
      words_.pushControl(Kind::While, exit);
      return;
    }
    case Op::Repeat: {
      Control exit = popControl(Kind::While);
      Control begin = popControl(Kind::Dest);
      in.append(in.make<PBranch>(false, begin.code));
      static_cast<PBranch*>(exit.code)->target = appendLabel(in);
      return;
    }
    default: return;
  }
}

void PCompiler::loop(ForthInterpreter& in) {
  using Kind = Control::Kind;
  std::vector<Control>& controls = words_.controls;
  switch (op_) {
    case Op::Do:
    case Op::QuestionDo: {
      auto* start = in.make<PDo>(op_ == Op::QuestionDo);
      in.append(start);
      words_.pushControl(Kind::Do, appendLabel(in));
      if (op_ == Op::QuestionDo) controls.back().leaves.push_back(&start->pastLoop);
      return;
    }
    case Op::Loop:
    case Op::PlusLoop: {
      if (controls.empty() || controls.back().innermostDo < 0) throw ForthException{-264};
      Control loop = popControl(Kind::Do);
      in.append(in.make<PLoop>(op_ == Op::PlusLoop, loop.code));
      pcode* past = appendLabel(in);
      for (pcode** place : loop.leaves) *place = past;
      return;
    }
    case Op::Leave: {
      if (controls.empty() || controls.back().innermostDo < 0) throw ForthException{-257};
      auto* leave = in.make<PLeave>();
      in.append(leave);
      controls[static_cast<size_t>(controls.back().innermostDo)].leaves.push_back(&leave->pastLoop);
      return;
    }
    default: return;
  }
}

// Text words work alike while interpreting and compiling: ." prints at once or
// compiles its text; the comment words skip. A comment ends at the end of its line.
void PCompiler::text(ForthInterpreter& in) {
  switch (op_) {
    case Op::DotQuote: {
      const QString text = in.parseWord('"', false);
      if (in.state != 0)
        in.append(in.make<PPrintText>(text));
      else
        in.write(text.toUtf8().toStdString());
      return;
    }
    case Op::DotParen: in.write(in.parseWord(')', false).toUtf8().toStdString()); return;
    case Op::Paren: in.parseWord(')', false); return;
    case Op::Backslash: in.skipLine(); return;
    case Op::Char:
    case Op::BracketChar: {
      const QByteArray word = in.parseWord(' ', false).toUtf8();
      if (word.isEmpty()) throw ForthException{-16, name};
      Cell code = Cell::ofInteger(static_cast<unsigned char>(word[0]));
      if (op_ == Op::BracketChar)
        in.append(in.make<PLiteralChild>(code));
      else
        in.data.push(code);
      return;
    }
    default: return;
  }
}

void PCompiler::data(ForthInterpreter& in) {
  switch (op_) {
    case Op::Variable:
    case Op::Create: {
      const QString wordName = newName(in);
      const int64_t address = op_ == Op::Variable ? words_.allot(CoreWords::kCellBytes) : words_.here();
      addWord(in.make<PDataWord>(wordName, address));
      return;
    }
    case Op::Constant:
    case Op::Value: {
      const QString wordName = newName(in);
      addWord(in.make<PConstant>(wordName, in.data.pop(), op_ == Op::Value));
      return;
    }
    case Op::To: {
      const QString wordName = in.parseWord();
      pcode* word = in.findWord(wordName);
      if (!word) throw ForthException{-13, wordName};
      if (in.state != 0)
        in.append(in.make<PStoreInto>(word));
      else
        word->store(in);
      return;
    }
    default: return;
  }
}

}  // namespace

// Each structure knows the DO it stands in, so that LEAVE and LOOP find it at once
// however deep the structures nest.
void CoreWords::pushControl(Control::Kind kind, pcode* code) {
  int innermostDo = controls.empty() ? -1 : controls.back().innermostDo;
  if (kind == Control::Kind::Do) innermostDo = static_cast<int>(controls.size());
  controls.push_back({kind, code, {}, innermostDo});
}

void CoreWords::installCompilerWords(WordList& list) {
  for (const CompilerEntry& entry : kCompilerWords) {
    pcode* word = interpreter.make<PCompiler>(entry, *this);
    list.insert(word->name, word);
  }
}

}  // namespace regmill::forth
