#include "output/table.h"

#include <algorithm>
#include <clocale>
#include <cwchar>
#include <limits>
#include <numeric>

#include "common/text.h"
#include "output/console.h"
#include "utf8.h"

namespace cadrova::tools {

// The locale is not the one of the process, which the library's diagnostic lines depend on.
std::size_t DisplayWidth(std::string_view text) {
  static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  std::size_t width = 0;
  while (true) {
    const std::size_t plain = host::kNotPlain.Find(text);
    width += plain;
    text.remove_prefix(plain);
    if (text.empty()) return width;
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
}

namespace {

constexpr std::string_view kGap = "  ";  // between two columns

std::string_view WithoutEnd(std::string_view text) {
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::vector<const Row*> PointersTo(const std::vector<Row>& rows) {
  std::vector<const Row*> pointers(rows.size());
  std::ranges::transform(rows, pointers.begin(), [](const Row& row) { return &row; });
  return pointers;
}

enum class Quotes { kWhole, kBroken };

// The parts between which `text` may be broken. Blanks belong to the part before them.
std::vector<std::string_view> PartsOf(std::string_view text, Quotes quotes) {
  std::vector<std::string_view> parts;
  bool is_quoted = false;
  int depth = 0;  // in lists
  const int deepest = quotes == Quotes::kBroken ? std::numeric_limits<int>::max() : 1;
  std::size_t begin = 0;
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    const char byte = text[i];
    if (is_quoted && byte == '\\') {
      ++i;
      continue;
    }
    if (byte == '"') is_quoted = !is_quoted;
    if (!is_quoted) depth += byte == '[' ? 1 : byte == ']' ? -1 : 0;
    const bool is_after_element = !is_quoted && depth >= 1 && depth <= deepest;
    const bool is_separator = byte == ' '   ? !is_quoted || quotes == Quotes::kBroken
                              : byte == ',' ? is_after_element
                                            : false;
    const bool is_blank = WithoutEnd(text.substr(begin, i + 1 - begin)).empty();
    if (!is_separator || is_blank || text[i + 1] == ' ') continue;
    parts.push_back(text.substr(begin, i + 1 - begin));
    begin = i + 1;
  }
  parts.push_back(text.substr(begin));
  return parts;
}

// The width of the widest part, into which the cell can be broken.
std::size_t LeastWidth(const TableCell& cell) {
  if (cell.is_whole) return DisplayWidth(cell.text);
  std::size_t least = 0;
  for (const std::string_view part : PartsOf(cell.text, Quotes::kBroken)) {
    least = std::max(least, DisplayWidth(WithoutEnd(part)));
  }
  return least;
}

std::size_t SumOf(const std::vector<std::size_t>& widths) {
  const std::size_t gaps = widths.empty() ? 0 : kGap.size() * (widths.size() - 1);
  return std::accumulate(widths.begin(), widths.end(), gaps);
}

std::vector<std::string> LinesOf(const TableCell& cell, std::size_t width) {
  return cell.is_whole ? std::vector{cell.text} : Wrapped(cell.text, width);
}

// The width of each of the first `count` columns, at most `width` together with the gaps, or
// nothing if that is impossible.
std::vector<std::size_t> ColumnWidths(const std::vector<const Row*>& rows, std::size_t count,
                                      std::size_t width) {
  std::vector<std::size_t> widths(count), least(count);
  for (const Row* row : rows) {
    for (std::size_t i = 0; i < widths.size(); ++i) {
      widths[i] = std::max(widths[i], DisplayWidth((*row)[i].text));
    }
  }
  if (SumOf(widths) <= width) return widths;
  for (const Row* row : rows) {
    for (std::size_t i = 0; i < widths.size(); ++i) {
      least[i] = std::max(least[i], LeastWidth((*row)[i]));
    }
  }
  if (SumOf(least) > width) return {};
  for (std::size_t excess = SumOf(widths) - width; excess > 0; --excess) {
    std::size_t widest = 0;
    for (std::size_t i = 0; i < widths.size(); ++i) {
      const bool can_shrink = widths[i] > least[i];
      if (can_shrink && (widths[widest] == least[widest] || widths[i] >= widths[widest])) {
        widest = i;
      }
    }
    --widths[widest];
  }
  // Lines that are broken between words may be shorter.
  std::vector<std::size_t> used(widths.size());
  for (const Row* row : rows) {
    for (std::size_t i = 0; i < widths.size(); ++i) {
      for (const std::string& line : LinesOf((*row)[i], widths[i])) {
        used[i] = std::max(used[i], DisplayWidth(line));
      }
    }
  }
  return used;
}

// The first cells in columns of these widths, then the others.
void AppendRow(std::vector<std::string>& lines, const Row& row,
               const std::vector<std::size_t>& widths, std::size_t width) {
  constexpr std::size_t kIndentation = 4;
  const std::size_t first = lines.size();
  lines.emplace_back();
  std::size_t used = 0;  // of the last line, with the gap
  for (std::size_t i = 0; i < widths.size(); ++i) {
    const auto cell_lines = LinesOf(row[i], widths[i]);
    for (std::size_t line = 0; line < cell_lines.size(); ++line) {
      if (first + line == lines.size()) lines.emplace_back(used, ' ');
      lines[first + line] += Colored(cell_lines[line], row[i].color);
    }
    for (std::size_t line = 0; first + line < lines.size(); ++line) {
      const std::size_t text = line < cell_lines.size() ? DisplayWidth(cell_lines[line]) : 0;
      lines[first + line].append(widths[i] - text, ' ').append(kGap);
    }
    used += widths[i] + kGap.size();
  }
  bool has_room = lines.size() == first + 1;
  for (std::size_t i = widths.size(); i < row.size(); ++i) {
    const std::size_t text = DisplayWidth(row[i].text);
    if (text == 0) continue;
    if (has_room && used + text <= width) {
      lines.back().append(Colored(row[i].text, row[i].color)).append(kGap);
      used += text + kGap.size();
      continue;
    }
    const std::size_t indentation = used == 0 ? 0 : kIndentation;
    if (used == 0) lines.pop_back();
    for (const std::string& line : LinesOf(row[i], width - std::min(indentation, width))) {
      lines.emplace_back(indentation, ' ').append(Colored(line, row[i].color)).append(kGap);
      used = indentation + DisplayWidth(line) + kGap.size();
    }
    has_room = true;
  }
  for (std::size_t i = first; i < lines.size(); ++i) lines[i] = WithoutEnd(lines[i]);
}

}  // namespace

std::vector<std::string> Wrapped(std::string_view text, std::size_t width) {
  std::vector<std::string> lines = {""};
  std::size_t used = 0;
  const auto add = [&](std::string_view part, std::size_t part_width) {
    if (used > 0 && used + part_width > width) {
      lines.back() = WithoutEnd(lines.back());
      lines.emplace_back();
      used = 0;
    }
    lines.back() += part;
    used += DisplayWidth(part);
  };
  if (DisplayWidth(text) <= width) return {std::string(text)};
  for (const std::string_view part : PartsOf(text, Quotes::kWhole)) {
    const std::size_t part_width = DisplayWidth(WithoutEnd(part));
    if (part_width <= width) {
      add(part, part_width);
      continue;
    }
    for (const std::string_view smaller : PartsOf(part, Quotes::kBroken)) {
      add(smaller, DisplayWidth(WithoutEnd(smaller)));
    }
  }
  lines.back() = WithoutEnd(lines.back());
  return lines;
}

bool IsAlignable(const std::vector<Row>& rows, std::size_t width) {
  return rows.empty() || !ColumnWidths(PointersTo(rows), rows[0].size(), width).empty();
}

std::vector<std::string> AlignedLines(const std::vector<Row>& rows, std::size_t width) {
  const std::vector<const Row*> all = PointersTo(rows);
  std::vector<const Row*> aligned = all;
  std::size_t columns = rows.empty() ? 0 : rows[0].size();
  std::vector<std::size_t> widths = ColumnWidths(aligned, columns, width);
  if (widths.empty()) {
    // The others may fit without the rows that do not fit alone.
    std::erase_if(aligned,
                  [&](const Row* row) { return ColumnWidths({row}, columns, width).empty(); });
    if (!aligned.empty()) widths = ColumnWidths(aligned, columns, width);
    if (widths.empty()) aligned = all;
    while (widths.empty() && columns > 0) widths = ColumnWidths(all, --columns, width);
  }
  std::vector<std::string> lines;
  auto next = aligned.begin();
  for (const Row& row : rows) {
    const bool is_aligned = next != aligned.end() && *next == &row;
    AppendRow(lines, row, is_aligned ? widths : std::vector<std::size_t>(), width);
    if (is_aligned) ++next;
  }
  return lines;
}

std::string Table(const std::vector<Row>& rows, std::size_t width) {
  return Join(AlignedLines(rows, width), "", [](const std::string& line) { return line + '\n'; });
}

}  // namespace cadrova::tools
