#include "output/table.h"

#include <algorithm>
#include <clocale>
#include <cwchar>

#include "utf8.h"

namespace cadrova::tools {

// The locale is not the one of the process, which the library's diagnostic lines depend on.
std::size_t DisplayWidth(std::string_view text) {
  static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  std::size_t width = 0;
  while (!text.empty()) {
    const auto [code, size] = host::FirstCharacter(text);
    text.remove_prefix(size);
    if (code < 0x80 || utf8 == nullptr) {
      ++width;
      continue;
    }
    const locale_t previous = uselocale(utf8);
    const int columns = wcwidth(static_cast<wchar_t>(code));
    uselocale(previous);
    width += columns < 0 ? 1U : static_cast<std::size_t>(columns);
  }
  return width;
}

std::vector<std::string> AlignedLines(const std::vector<Row>& rows) {
  std::vector<std::string> lines(rows.size());
  const std::size_t columns = rows.empty() ? 0 : rows[0].size();
  for (std::size_t column = 0; column < columns; ++column) {
    std::size_t width = 0;
    for (const Row& row : rows) width = std::max(width, DisplayWidth(row[column]));
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const std::string& cell = rows[i][column];
      lines[i] += column == 0 ? "" : "  ";
      lines[i].append(cell).append(width - DisplayWidth(cell), ' ');
    }
  }
  for (std::string& line : lines) line.erase(line.find_last_not_of(' ') + 1);
  return lines;
}

std::string Table(const std::vector<Row>& rows) {
  std::string text;
  for (const std::string& line : AlignedLines(rows)) text += line + '\n';
  return text;
}

}  // namespace cadrova::tools
