// Rows of text as lines in which the columns of each stand below those of the others.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace cadrova::tools {

using Row = std::vector<std::string>;

// In characters, where it is UTF-8.
inline std::size_t Width(std::string_view text) {
  return static_cast<std::size_t>(
      std::ranges::count_if(text, [](char byte) { return (byte & 0xC0) != 0x80; }));
}

// The lines of `rows`, which are equally long; the first `numbers` columns are flush right.
inline std::vector<std::string> Aligned(const std::vector<Row>& rows, std::size_t numbers = 0) {
  std::vector<std::string> lines(rows.size());
  for (std::size_t column = 0; column < rows[0].size(); ++column) {
    std::size_t width = 0;
    for (const Row& row : rows) width = std::max(width, Width(row[column]));
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const std::string& cell = rows[i][column];
      const std::string blanks(width - Width(cell), ' ');
      lines[i] += column == 0 ? "" : "  ";
      lines[i] += column < numbers ? blanks + cell : cell + blanks;
    }
  }
  for (std::string& line : lines) line.erase(line.find_last_not_of(' ') + 1);
  return lines;
}

// The same as one text.
inline std::string Table(const std::vector<Row>& rows) {
  if (rows.empty()) return "";
  std::string text;
  for (const std::string& line : Aligned(rows)) text += line + '\n';
  return text;
}

}  // namespace cadrova::tools
