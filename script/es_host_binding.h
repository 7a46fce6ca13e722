// A helper for the native operations of a host class, beside the conversions,
// calls and the error test (isError) of ESContext: reading a script array of
// integers, such as a thread's register block, and the texts of error reports.
#pragma once
#include <QString>
#include <cstdint>
#include <vector>

#include "script/es_context.h"

namespace regmill::script {

// A register block has a few dozen entries; a longer array (a script can set
// `length` to four thousand million) is refused rather than read element by element.
constexpr uint32_t kMaxIntegerArrayLength = 1u << 20;

// The elements of an `Array` by ToInt32, in index order; a missing element reads
// as undefined and gives 0. Raises Error "array argument expected" for any other
// value, and RangeError "array argument too long" beyond kMaxIntegerArrayLength.
std::vector<int32_t> readIntegerArray(ESContext& context, ESValue value);

// ToString for a host's reports, which must not fail themselves: a value whose
// conversion throws (an object without a primitive value) stands as its type.
QString reportText(ESContext& context, ESValue value);
// A property of an error object as report text; a missing one is empty.
QString errorField(ESContext& context, ESObject* error, ESAtom* name);

}  // namespace regmill::script
