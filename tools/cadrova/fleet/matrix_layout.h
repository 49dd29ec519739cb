// The results of all devices as tables in which equal rows and equal columns are merged.
#pragma once

#include <string>
#include <vector>

#include "fleet/results.h"

namespace cadrova::tools {

// What one device gets, and from which position of its chain.
struct Cell {
  const Result* result;
  std::size_t position;

  auto operator<=>(const Cell&) const = default;
};

// Region or carrier codes of equal rows or columns.
struct CodeGroup {
  std::vector<std::size_t> codes;  // positions in the fleet
  bool is_rest = false;            // the largest group, if it is too long to be listed
};

// Regions are rows, carriers are columns.
struct MatrixTable {
  std::vector<CodeGroup> regions, carriers;
  std::vector<std::vector<Cell>> rows;
};

struct MatrixLayout {
  // Several, if not all columns fit side by side. Columns in which regions differ come first.
  std::vector<MatrixTable> tables;

  // If the tables would still be too large, exceptions of single devices are listed here. The
  // tables then contain what these devices would get otherwise.
  struct Exception {
    std::size_t region, carrier;
    Cell cell;
  };
  std::vector<Exception> exceptions;
};

// The layout refers to `results`.
MatrixLayout LayOut(const FleetChains& chains, const Results& results);

// The heading of a row or column: its codes, each through `show`; or "every region", or "9 others".
std::string Heading(const CodeGroup& group, const std::vector<std::string>& codes,
                    const std::string& what, std::string (*show)(const std::string& code));

}  // namespace cadrova::tools
