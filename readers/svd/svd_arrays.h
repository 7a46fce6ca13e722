// Register and cluster arrays: how many instances a "dim" makes, and the name and
// address text of each instance. Addresses are never computed here: the texts of the
// SVD file are joined into an expression with "+" and "*" for the memory map's own
// evaluator.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "readers/svd/svd_inheritance.h"

namespace regmill {

// The entries of a "dimIndex" text: a range "first-last" of decimal numbers, or else
// a list separated by ",", parts kept as they stand. A range is kept as its two ends,
// so that "0-2147483647" costs no two billion strings.
class DimIndex {
 public:
  DimIndex() = default;  // the empty list
  size_t size() const;
  // Entry i, or i in decimal when the list has no entry i.
  std::string entryOr(int64_t i) const;

 private:
  friend DimIndex parseDimIndex(std::string_view text);
  bool isRange_ = false;
  int64_t first_ = 0;
  int64_t last_ = -1;
  std::vector<std::string> parts_;
};

// Empty parts are dropped in both forms; exactly two parts at "-" make a range, and a
// part that isn't decimal counts as 0 there, so "A-D" is the one entry "0".
DimIndex parseDimIndex(std::string_view text);

struct RegisterArray {
  int32_t count = 1;
  int32_t increment = 0;
  DimIndex indices;
};

// "dim", "dimIncrement" and "dimIndex" of a register, each its own element, else its base's.
RegisterArray readRegisterArray(const Derivation& reg);

// The name of instance i: only with an increment is the first "%s" replaced, so an
// array without "dimIncrement" gives every instance the literal name.
std::string registerInstanceName(std::string_view name, const RegisterArray& array, int64_t i);

// "+", the address prefix and "+" if there is a prefix, the offset as written, and
// "+" with i * increment when the increment isn't 0: "+0x10+8".
void appendRegisterInstanceStart(std::string& out, const std::optional<std::string>& addressPrefix,
                                 std::string_view offset, int32_t increment, int64_t i);

// A cluster's own "dim" (a count of 1 without one), "dimIncrement" as written and
// "dimIndex"; clusters have no base.
struct ClusterArray {
  int32_t count = 1;
  TextValue increment;
  DimIndex indices;
};
ClusterArray readClusterArray(const ChildTable& cluster);

// The cluster's name with its first "%s" replaced by the index of instance i,
// whether or not the cluster has an increment.
std::string clusterInstanceName(std::string_view name, const ClusterArray& array, int64_t i);

// The cluster's offset, and with an increment "+", i, "*" and the increment as
// written: "0x100+1*0x40".
std::string clusterAddressPrefix(std::string_view offset, const ClusterArray& array, int64_t i);

}  // namespace regmill
