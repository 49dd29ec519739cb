// Rows of text as lines with aligned columns, which fit a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cadrova::tools {

// The number of columns in which a terminal shows `text`: two for a CJK character or an emoji, none
// for a combining mark. Several emoji that are joined into one are counted separately.
std::size_t DisplayWidth(std::string_view text);

// `text` as lines that are at most `width` columns wide, if its words are not wider. It is broken
// at blanks, and after an element of a list; within quotes only if the quoted text does not fit.
std::vector<std::string> Wrapped(std::string_view text, std::size_t width);

struct TableCell {
  TableCell() = default;
  TableCell(const char* content) : text(content) {}
  TableCell(std::string content, std::string its_color = "")
      : text(std::move(content)), color(std::move(its_color)) {}

  std::string text;
  std::string color = {};  // for `Colored`, or "" for none
  bool is_whole = false;   // not broken
};

using Row = std::vector<TableCell>;

constexpr std::size_t kAnyWidth = -1;

// All rows have the same number of cells. If a line would be wider than `width`, cells continue
// below in the same column; the widest columns become narrower first. If the columns do not fit
// that way, only the first ones are aligned: the other cells follow each other, and continue on
// indented lines. So do all cells of a row that does not fit alone. With kAnyWidth, each row is one
// line.
std::vector<std::string> AlignedLines(const std::vector<Row>& rows, std::size_t width = kAnyWidth);

// The same as one text; each line ends in a newline.
std::string Table(const std::vector<Row>& rows, std::size_t width = kAnyWidth);

// Whether all rows can be aligned in lines that are at most `width` columns wide.
bool IsAlignable(const std::vector<Row>& rows, std::size_t width);

}  // namespace cadrova::tools
