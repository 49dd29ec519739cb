// The results of all devices as one HTML page that needs no other file.
#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fleet/feature_index.h"
#include "fleet/matrix_layout.h"

namespace cadrova::tools {

// What the report shows.
struct ReportSource {
  std::string name;                      // of the customization file, or of the core
  std::optional<std::time_t> time = {};  // of the last change
  std::optional<std::string> revision = {};
};

class HtmlReport {
 public:
  HtmlReport(ReportSource source, const Fleet& fleet);

  // Begins a feature. `Add` adds layouts to it.
  void BeginFeature(const std::string& key, Kind kind);
  void Add(const Family& family, const MatrixLayout& layout);

  std::string ToHtml() const;

 private:
  struct Section {
    std::string key;
    Kind kind;
    std::vector<std::pair<std::string, std::string>> tables;  // names of families, and HTML
    std::optional<Result> first_result = {};
    bool is_constant = true;  // so far, every device has the first result
  };

  std::vector<std::string> StylesOf(const Family& family);
  std::string ExceptionsHtml(const MatrixLayout& layout, const std::vector<std::string>& styles);
  void Compare(const Cell& cell);

  ReportSource source_;
  const Fleet& fleet_;
  std::vector<bool> is_type_used_;  // by type of map: by a family of the report
  std::vector<Section> sections_;
};

}  // namespace cadrova::tools
