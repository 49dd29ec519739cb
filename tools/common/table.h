// Rows of text as lines with aligned columns.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "utf8.h"

namespace cadrova::tools {

using Row = std::vector<std::string>;

// One line per row. All rows have the same number of cells. The first `right_aligned_columns`
// columns are aligned right, the others left.
inline std::vector<std::string> AlignedLines(const std::vector<Row>& rows,
                                             std::size_t right_aligned_columns = 0) {
  std::vector<std::string> lines(rows.size());
  const std::size_t columns = rows.empty() ? 0 : rows[0].size();
  for (std::size_t column = 0; column < columns; ++column) {
    std::size_t width = 0;
    for (const Row& row : rows) width = std::max(width, host::CharacterCount(row[column]));
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const std::string& cell = rows[i][column];
      const std::string padding(width - host::CharacterCount(cell), ' ');
      lines[i] += column == 0 ? "" : "  ";
      lines[i] += column < right_aligned_columns ? padding + cell : cell + padding;
    }
  }
  for (std::string& line : lines) line.erase(line.find_last_not_of(' ') + 1);
  return lines;
}

// The same as one text; each line ends in a newline.
inline std::string Table(const std::vector<Row>& rows) {
  std::string text;
  for (const std::string& line : AlignedLines(rows)) text += line + '\n';
  return text;
}

}  // namespace cadrova::tools
