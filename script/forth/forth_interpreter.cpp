#include "script/forth/forth_interpreter.h"

#include "script/forth/forth_number.h"

namespace regmill::forth {

void CellStack::push(Cell cell) {
  if (count_ == kCells) throw ForthException{overflow_};
  cells_[count_++] = std::move(cell);
}

Cell CellStack::pop() {
  if (count_ == 0) throw ForthException{underflow_};
  return std::move(cells_[--count_]);
}

Cell& CellStack::fromTop(int index) {
  if (index < 0 || index >= count_) throw ForthException{underflow_};
  return cells_[count_ - 1 - index];
}

ForthInterpreter::ForthInterpreter() = default;
ForthInterpreter::~ForthInterpreter() = default;

WordList* ForthInterpreter::createWordList() {
  wordLists_.push_back(std::make_unique<WordList>());
  return wordLists_.back().get();
}

void ForthInterpreter::pushSearchOrder(WordList* list) {
  if (searchCount_ == kSearchOrderSize) throw ForthException{-49};
  searchOrder_[searchCount_++] = list;
}

void ForthInterpreter::popSearchOrder() {
  if (searchCount_ == 0) throw ForthException{-50};
  searchOrder_[--searchCount_] = nullptr;
}

pcode* ForthInterpreter::findWord(const QString& name) const {
  if (current) {
    if (pcode* word = current->value(name)) return word;
  }
  for (int index = searchCount_ - 1; index >= 0; --index) {
    if (pcode* word = searchOrder_[index]->value(name)) return word;
  }
  return nullptr;
}

namespace {
bool isGraphic(char c) { return c >= '!' && c <= '~'; }
}  // namespace

QString ForthInterpreter::parseWord(char delimiter, bool asName, bool recordLocation) {
  if (!source) return {};
  const std::string_view line = source->text();
  size_t start = position;
  size_t end = start;
  if (delimiter == ' ') {
    while (start < line.size() && !isGraphic(line[start])) ++start;
    end = start;
    while (end < line.size() && isGraphic(line[end])) ++end;
    position = end;
  } else {
    if (start < line.size()) ++start;  // the blank that ends the parsing word
    end = line.find(delimiter, start);
    if (end == std::string_view::npos) end = line.size();
    position = end < line.size() ? end + 1 : end;
  }
  if (recordLocation) {
    wordLine = source->line;
    wordColumn = static_cast<int>(start) + 1;
    wordFile = source->fileName;
  }
  QString word = QString::fromUtf8(line.data() + start, static_cast<qsizetype>(end - start));
  return asName ? word.toUpper() : word;
}

void ForthInterpreter::skipLine() {
  if (source) position = source->text().size();
}

void ForthInterpreter::append(pcode* code) {
  if (!definition) throw ForthException{-256};
  definition->append(code);
}

void ForthInterpreter::runChain(pcode* start) {
  pcode* const saved = ip;
  ip = start;
  while (ip) {
    if (stepBudget_ != 0 && ++steps_ > stepBudget_) throw ForthException{-28};
    pcode* code = ip;
    ip = code->next;
    code->execute(*this);
  }
  ip = saved;
}

void ForthInterpreter::write(std::string_view bytes) {
  written_ += bytes.size();
  if (outputLimit_ != 0 && written_ > outputLimit_) throw ForthException{-20};
  if (output) output(bytes);
}

int64_t ForthInterpreter::popInteger() {
  Cell cell = data.pop();
  if (cell.type != Cell::kInteger) throw ForthException{-12};
  return cell.integer;
}

double ForthInterpreter::popFloating() {
  Cell cell = data.pop();
  if (cell.type != Cell::kFloating) throw ForthException{-12};
  return cell.floating;
}

void ForthInterpreter::interpretWord(const QString& word) {
  if (pcode* found = findWord(word)) {
    if (state == 0 && (found->flags & pcode::kCompileOnly)) throw ForthException{-14, word};
    if (state == 0 || found->immediate())
      runChain(found);
    else
      append(make<PCall>(found));
    return;
  }
  const Number number = convertNumber(word);
  Cell cell;
  switch (number.kind) {
    case Number::Kind::None:
    case Number::Kind::DoubleCell: throw ForthException{-13, word};
    case Number::Kind::Integer:
      // A typed number is a 32-bit value; a compiled one keeps all its bits.
      cell = Cell::ofInteger(state == 0 ? static_cast<int32_t>(number.integer) : number.integer);
      break;
    case Number::Kind::Floating: cell = Cell::ofFloating(number.floating); break;
  }
  if (state != 0)
    append(make<PLiteralChild>(std::move(cell)));
  else
    data.push(std::move(cell));
}

QString ForthInterpreter::interpret(Source& input) {
  source = &input;
  ip = nullptr;
  position = 0;
  try {
    for (;;) {
      const QString word = parseWord(' ', true, true);
      if (!word.isEmpty()) {
        interpretWord(word);
      } else if (input.refill()) {
        position = 0;
      } else {
        break;
      }
    }
  } catch (const ForthException& failure) {
    source = nullptr;
    return report(failure);
  }
  source = nullptr;
  return {};
}

// The second stack is emptied as well: what a failed run left there (loop
// parameters, saved values) belongs to no one any more.
QString ForthInterpreter::report(const ForthException& failure) {
  const QString message = throwText(failure.code, failure.text);
  if (listener) listener->error(message);
  definition = nullptr;
  state = 0;
  ip = nullptr;
  callDepth = 0;
  second.clear();
  return message;
}

}  // namespace regmill::forth
