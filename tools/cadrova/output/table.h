// Rows of text as lines with aligned columns.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cadrova::tools {

// The number of columns in which a terminal shows `text`: two for a CJK character or an emoji, none
// for a combining mark. Several emoji that are joined into one are counted separately.
std::size_t DisplayWidth(std::string_view text);

using Row = std::vector<std::string>;

// One line per row. All rows have the same number of cells.
std::vector<std::string> AlignedLines(const std::vector<Row>& rows);

// The same as one text; each line ends in a newline.
std::string Table(const std::vector<Row>& rows);

}  // namespace cadrova::tools
