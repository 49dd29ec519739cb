#include "output/long_values.h"

#include <algorithm>

#include "output/console.h"
#include "output/table.h"

namespace cadrova::tools {
namespace {

std::string Number(std::size_t position) { return '(' + std::to_string(position + 1) + ')'; }

}  // namespace

std::string LongValues::NumberOf(const std::string& value) {
  auto found = std::ranges::find(values_, value);
  if (found == values_.end()) found = values_.insert(found, value);
  return Number(static_cast<std::size_t>(found - values_.begin()));
}

std::string LongValues::List() const {
  std::vector<Row> rows;
  for (std::size_t i = 0; i < values_.size(); ++i) rows.push_back({Number(i), values_[i]});
  return rows.empty() ? "" : '\n' + Table(rows, TerminalWidth());
}

}  // namespace cadrova::tools
