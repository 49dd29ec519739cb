// Values that are too long for the cells of a table. A cell contains a number instead, and the
// values are listed below the table.
#pragma once

#include <string>
#include <vector>

namespace cadrova::tools {

class LongValues {
 public:
  // "(1)". Equal values have the same number.
  std::string NumberOf(const std::string& value);

  // An empty line, and the values with their numbers; or nothing.
  std::string List() const;

 private:
  std::vector<std::string> values_;
};

}  // namespace cadrova::tools
