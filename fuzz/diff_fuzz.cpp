// Two texts split from one input at its first zero byte, compared by lines and by
// characters and shown as a comparison display. The fast search must give exactly
// the hunks of the search as written; nothing may crash or hang.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "editor/diff_display.h"
#include "editor/text_diff.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // The search as written costs a product of the sides' lengths; keep runs short.
  if (size > 1024) return 0;
  const char* bytes = reinterpret_cast<const char*>(data);
  const void* zero = std::memchr(bytes, 0, size);
  const size_t split = zero == nullptr ? size / 2 : size_t(static_cast<const char*>(zero) - bytes);
  const QString left = QString::fromLatin1(bytes, qsizetype(split));
  const QString right = QString::fromLatin1(bytes + split + (zero ? 1 : 0), qsizetype(size - split - (zero ? 1 : 0)));

  const QStringList leftLines = regmill::splitDiffLines(left), rightLines = regmill::splitDiffLines(right);
  const auto fast = regmill::TextDiff().diff(leftLines, rightLines);
  if (fast != regmill::TextDiff(regmill::TextDiff::Search::AsWritten).diff(leftLines, rightLines)) std::abort();
  if (fast != regmill::TextDiff().diffTexts(left, right)) std::abort();
  if (regmill::TextDiff().diff(left, right) != regmill::TextDiff(regmill::TextDiff::Search::AsWritten).diff(left, right))
    std::abort();
  regmill::DiffDisplay display;
  display.compareLists(leftLines, rightLines);
  return 0;
}
