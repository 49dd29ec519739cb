#include "output/html_report.h"

#include <algorithm>
#include <string_view>

#include "common/json_text.h"
#include "common/text.h"
#include "file.h"
#include "html_report_frame.h"
#include "output/map_types.h"

namespace cadrova::tools {
namespace {

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char byte : text) {
    switch (byte) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += byte;
    }
  }
  return escaped;
}

std::string CodeHtml(const std::string& code) {
  return code.empty() ? "<i>unset</i>" : Escaped(DisplayName(code));
}

std::string StyleName(std::size_t map_type) { return 'p' + std::to_string(map_type); }

std::string CellStyle(const Cell& cell, const std::vector<std::string>& styles) {
  return cell.result != nullptr && cell.result->map ? styles[cell.position] : "none";
}

std::string CellHtml(const Cell& cell) {
  if (cell.result == nullptr) return "";
  const auto& [value, map] = *cell.result;
  if (!map) return "<small>no map</small>";
  return Escaped(ToJsonText(value)) + " <small>" + Escaped(DisplayName(*map)) + "</small>";
}

void Replace(std::string& text, std::string_view mark, const std::string& replacement) {
  text.replace(text.find(mark), mark.size(), replacement);
}

}  // namespace

HtmlReport::HtmlReport(const std::string& source, const Fleet& fleet)
    : source_(host::Printable(source)), fleet_(fleet), is_type_used_(MapTypeNames().size()) {}

void HtmlReport::BeginFeature(const std::string& key, Kind kind) {
  sections_.push_back({key, kind, {}});
}

void HtmlReport::Add(const Family& family, const MatrixLayout& layout) {
  const auto styles = StylesOf(family);
  std::string html;
  for (const auto& [regions, carriers, rows] : layout.tables) {
    html += "<table>\n<thead><tr><th scope=col>region";
    for (const CodeGroup& group : carriers) {
      html += "<th scope=col>" + Heading(group, fleet_.carriers, "carrier", CodeHtml);
    }
    html += "</thead>\n<tbody>\n";
    for (std::size_t i = 0; i < rows.size(); ++i) {
      html += "<tr><th scope=row>" + Heading(regions[i], fleet_.regions, "region", CodeHtml);
      for (const Cell& cell : rows[i]) {
        html += "<td class=" + CellStyle(cell, styles) + '>' + CellHtml(cell);
      }
      html += "</tr>\n";
    }
    html += "</table>\n";
  }
  if (!layout.exceptions.empty()) html += "<p>exceptions\n";
  for (const auto& [region, carrier, cell] : layout.exceptions) {
    html += "<span class=" + CellStyle(cell, styles) + "><b>" + CodeHtml(fleet_.regions[region]) +
            ", " + CodeHtml(fleet_.carriers[carrier]) + "</b> " + CellHtml(cell) + "</span>\n";
  }
  auto& tables = sections_.back().tables;
  if (!tables.empty() && tables.back().second == html) {
    tables.back().first += std::string(" and ") + family.name;
  } else {
    tables.emplace_back(family.name, html);
  }
}

std::string HtmlReport::ToHtml() const {
  std::string legend, features;
  for (std::size_t i = 0; i < is_type_used_.size(); ++i) {
    if (!is_type_used_[i]) continue;
    legend += "<li class=" + StyleName(i) + "><small>" + Escaped(MapTypeNames()[i]) + "</small>\n";
  }
  for (const auto& [key, kind, tables] : sections_) {
    features += "<section><h2>" + Escaped(DisplayName(key)) + " <small>" + ToString(kind) +
                "</small></h2>\n";
    for (const auto& [families, html] : tables) {
      features.append("<h3>by ").append(families).append("</h3>\n<div>\n");
      features.append(html).append("</div>\n");
    }
    features += "</section>\n";
  }
  std::string page = kHtmlReportFrame;
  // From the last mark to the first, so that no mark is found in inserted text.
  Replace(page, "{features}", features);
  Replace(page, "{legend}", legend);
  Replace(page, "{carriers}", Join(fleet_.carriers, ", ", CodeHtml));
  Replace(page, "{regions}", Join(fleet_.regions, ", ", CodeHtml));
  Replace(page, "{source}", Escaped(source_));
  Replace(page, "{title}", Escaped(source_));
  return page;
}

// The style of each position in the family's chain.
std::vector<std::string> HtmlReport::StylesOf(const Family& family) {
  std::vector<std::string> styles;
  for (const std::size_t type : MapTypesOf(family)) {
    is_type_used_[type] = true;
    styles.push_back(StyleName(type));
  }
  return styles;
}

}  // namespace cadrova::tools
