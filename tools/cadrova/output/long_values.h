// Values that are too wide for the cells of a table. A cell contains a number instead, and the
// values are listed below the table.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "output/table.h"

namespace cadrova::tools {

class LongValues {
 public:
  explicit LongValues(std::size_t widest) : widest_(widest) {}

  // `value`, or "(1)" if it is wider than the widest. Equal values have the same number.
  std::string ToText(const std::string& value);

  // The numbers and the values.
  std::vector<Row> Rows() const;

 private:
  std::size_t widest_;
  std::vector<std::string> values_;
};

}  // namespace cadrova::tools
