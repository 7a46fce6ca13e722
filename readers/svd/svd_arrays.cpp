#include "readers/svd/svd_arrays.h"

#include "base/parse_number.h"
#include "base/text.h"
#include "readers/svd/svd_text.h"

namespace regmill {

DimIndex parseDimIndex(std::string_view text) {
  DimIndex index;
  if (text.empty()) return index;
  std::vector<std::string_view> range = splitSkippingEmpty(text, '-');
  if (range.size() == 2) {
    index.isRange_ = true;
    index.first_ = decimalNumber(range[0]).value_or(0);
    index.last_ = decimalNumber(range[1]).value_or(0);
    return index;
  }
  for (std::string_view part : splitSkippingEmpty(text, ',')) index.parts_.emplace_back(part);
  return index;
}

size_t DimIndex::size() const {
  if (!isRange_) return parts_.size();
  return last_ < first_ ? 0 : static_cast<size_t>(last_ - first_ + 1);
}

std::string DimIndex::entryOr(int64_t i) const {
  if (i < 0 || static_cast<uint64_t>(i) >= size()) return decimalText(i);
  return isRange_ ? decimalText(first_ + i) : parts_[static_cast<size_t>(i)];
}

RegisterArray readRegisterArray(const Derivation& reg) {
  RegisterArray array;
  const XMLElement* dim = reg.element(SVDTag::Dim);
  if (dim == nullptr) return array;
  array.count = prefixedNumber(TextValue(dim).view()).value_or(0);
  if (const XMLElement* increment = reg.element(SVDTag::DimIncrement))
    array.increment = prefixedNumber(TextValue(increment).view()).value_or(0);
  if (const XMLElement* index = reg.element(SVDTag::DimIndex))
    array.indices = parseDimIndex(TextValue(index).view());
  return array;
}

std::string registerInstanceName(std::string_view name, const RegisterArray& array, int64_t i) {
  if (array.increment == 0) return std::string(name);
  return replaceFirstPlaceholder(name, array.indices.entryOr(i));
}

void appendRegisterInstanceStart(std::string& out, const std::optional<std::string>& addressPrefix,
                                 std::string_view offset, int32_t increment, int64_t i) {
  out += '+';
  if (addressPrefix) out.append(*addressPrefix).append("+");
  out.append(offset);
  if (increment != 0) {
    out += '+';
    appendDecimal(out, i * increment);
  }
}

ClusterArray readClusterArray(const ChildTable& cluster) {
  ClusterArray array;
  TextValue dim = cluster.text(SVDTag::Dim);
  if (!dim.empty()) array.count = prefixedNumber(dim.view()).value_or(0);
  array.increment = cluster.text(SVDTag::DimIncrement);
  if (const XMLElement* index = cluster.find(SVDTag::DimIndex))
    array.indices = parseDimIndex(TextValue(index).view());
  return array;
}

std::string clusterInstanceName(std::string_view name, const ClusterArray& array, int64_t i) {
  return replaceFirstPlaceholder(name, array.indices.entryOr(i));
}

std::string clusterAddressPrefix(std::string_view offset, const ClusterArray& array, int64_t i) {
  std::string prefix(offset);
  if (!array.increment.empty()) {
    prefix += '+';
    appendDecimal(prefix, i);
    prefix += '*';
    prefix.append(array.increment.view());
  }
  return prefix;
}

}  // namespace regmill
