// The results of all devices as one HTML page that needs no other file.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "fleet/feature_index.h"
#include "fleet/matrix_layout.h"

namespace cadrova::tools {

class HtmlReport {
 public:
  // `source` is the name of the customization file, or of the core.
  HtmlReport(const std::string& source, const Fleet& fleet);

  // Begins a feature. `Add` adds layouts to it.
  void BeginFeature(const std::string& key, Kind kind);
  void Add(const Family& family, const MatrixLayout& layout);

  std::string ToHtml() const;

 private:
  struct Section {
    std::string key;
    Kind kind;
    std::vector<std::pair<std::string, std::string>> tables;  // names of families, and HTML
  };

  std::vector<std::string> StylesOf(const Family& family);

  std::string source_;
  const Fleet& fleet_;
  std::vector<bool> is_type_used_;  // by type of map: by a family of the report
  std::vector<Section> sections_;
};

}  // namespace cadrova::tools
