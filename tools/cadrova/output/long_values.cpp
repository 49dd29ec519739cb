#include "output/long_values.h"

#include <algorithm>

namespace cadrova::tools {
namespace {

std::string Number(std::size_t position) { return '(' + std::to_string(position + 1) + ')'; }

}  // namespace

std::string LongValues::ToText(const std::string& value) {
  if (DisplayWidth(value) <= widest_) return value;
  auto found = std::ranges::find(values_, value);
  if (found == values_.end()) found = values_.insert(found, value);
  return Number(static_cast<std::size_t>(found - values_.begin()));
}

std::vector<Row> LongValues::Rows() const {
  std::vector<Row> rows;
  rows.reserve(values_.size());
  for (const std::string& value : values_) rows.push_back({Number(rows.size()), value});
  return rows;
}

}  // namespace cadrova::tools
