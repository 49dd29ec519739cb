#include "output/html_report.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <map>
#include <string_view>
#include <variant>

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

// The empty code is "unset", so a code of that name is quoted.
std::string CodeText(const std::string& code) {
  if (code.empty()) return "unset";
  return code == "unset" ? ToJsonText(code) : DisplayName(code);
}

std::string CodeHtml(const std::string& code) {
  return code.empty() ? "<i>unset</i>" : Escaped(CodeText(code));
}

std::string CodesHtml(const CodeGroup& group, const std::vector<std::string>& codes) {
  return Join(group.codes, ", ", [&](std::size_t code) { return CodeHtml(codes[code]); });
}

std::string OptionsHtml(const std::vector<std::string>& codes) {
  return Join(codes, "", [](const std::string& code) {
    const std::string text = Escaped(CodeText(code));
    return "<option value=\"" + text + "\">" + text;
  });
}

// The heading of a row or column. The script reads from `data-of` which codes it has; a heading
// without it has those that no other heading has.
std::string HeadingHtml(const std::string& scope, const CodeGroup& group,
                        const std::vector<std::string>& codes, const std::string& what) {
  const std::string text = Heading(group, codes, what, CodeHtml);
  std::string html = "<th scope=" + scope;
  if (group.codes.size() == codes.size()) return html + '>' + text;
  if (group.is_rest) {
    return html + "><details><summary>" + text + "</summary>" + CodesHtml(group, codes) +
           "</details>";
  }
  return html + " data-of=\"" +
         Join(group.codes, " ", [](std::size_t code) { return std::to_string(code); }) + "\">" +
         text;
}

std::string ElementText(const auto& element) { return ToJsonText(element); }
std::string ElementText(const std::pair<std::string, std::string>& pair) {
  return ToJsonText(pair.first) + " = " + ToJsonText(pair.second);
}

// Lists have one line per element. Each line but the first begins with `indent`.
std::string ValueHtml(const Value& value, const std::string& indent = "") {
  const auto to_text = [&]<class T>(const T& contents) {
    if constexpr (kIsList<T>) {
      if (!contents.empty()) {
        return Join(contents, '\n' + indent,
                    [](const auto& element) { return ElementText(element); });
      }
    }
    return ToJsonText(contents);
  };
  return Escaped(std::visit(to_text, value));
}

std::string StyleName(std::size_t map_type) { return 'p' + std::to_string(map_type); }

std::string CellStyle(const Cell& cell, const std::vector<std::string>& styles) {
  return cell.result != nullptr && cell.result->map ? styles[cell.position] : "none";
}

std::string MapHtml(const Cell& cell) {
  return cell.result->map ? Escaped(DisplayName(*cell.result->map)) : "no map";
}

// "! EU: string, not int", or nothing.
std::string PassedOverHtml(const Cell& cell) {
  if (cell.passed_over == nullptr) return "";
  return "! " + Escaped(DisplayName(cell.passed_over->map)) + ": " + cell.passed_over->kinds;
}

std::string CellHtml(const Cell& cell) {
  if (cell.result == nullptr) return "";
  const std::string value = cell.result->map ? ValueHtml(cell.result->value) + ' ' : "";
  const std::string passed_over = PassedOverHtml(cell);
  return value + "<small>" + MapHtml(cell) + "</small>" +
         (passed_over.empty() ? "" : " <em>" + passed_over + "</em>");
}

// One line per device: "<region>, <carrier>: <value> <map>". More lines of a value are indented.
std::string ExceptionHtml(const Fleet& fleet, const MatrixLayout::Exception& exception) {
  const auto& [region, carrier, cell] = exception;
  return CodeHtml(fleet.regions[region]) + ", " + CodeHtml(fleet.carriers[carrier]) + ": " +
         (cell.result->map ? ValueHtml(cell.result->value, "  ") + ' ' : "") + MapHtml(cell) +
         (cell.passed_over == nullptr ? "" : ' ' + PassedOverHtml(cell)) + '\n';
}

// "<name>, changed <time>, revision <text>", as far as known.
std::string SourceHtml(const ReportSource& source) {
  std::string html = "<b>" + Escaped(host::Printable(source.name)) + "</b>";
  if (source.time) {
    std::tm utc = {};
    char text[80] = "";
    gmtime_r(&*source.time, &utc);
    std::strftime(text, sizeof text, "<time datetime=%FT%TZ>%F %T UTC</time>", &utc);
    html += std::string(", changed ") + text;
  }
  if (source.revision)
    html += ", revision <b>" + Escaped(host::Printable(*source.revision)) + "</b>";
  return html;
}

void Replace(std::string& text, std::string_view mark, const std::string& replacement) {
  text.replace(text.find(mark), mark.size(), replacement);
}

}  // namespace

HtmlReport::HtmlReport(ReportSource source, const Fleet& fleet)
    : source_(std::move(source)), fleet_(fleet), is_type_used_(MapTypeNames().size()) {}

void HtmlReport::BeginFeature(const std::string& key, Kind kind) {
  sections_.push_back({key, kind, {}});
}

void HtmlReport::Add(const Family& family, const MatrixLayout& layout) {
  const auto styles = StylesOf(family);
  std::string html;
  for (const auto& [regions, carriers, rows] : layout.tables) {
    html += "<table>\n<thead><tr><th scope=col>region";
    for (const CodeGroup& group : carriers) {
      html += HeadingHtml("col", group, fleet_.carriers, "carrier");
    }
    html += "</thead>\n<tbody>\n";
    for (std::size_t i = 0; i < rows.size(); ++i) {
      html += "<tr>" + HeadingHtml("row", regions[i], fleet_.regions, "region");
      for (const Cell& cell : rows[i]) {
        Compare(cell);
        html += "<td class=" + CellStyle(cell, styles) + '>' + CellHtml(cell);
      }
      html += "</tr>\n";
    }
    html += "</table>\n";
  }
  if (!layout.exceptions.empty()) html += ExceptionsHtml(layout, styles);
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
  for (const auto& [key, kind, tables, result, is_constant] : sections_) {
    const std::string id = PercentEncoded(key) + ':' + ToString(kind);
    features.append("<section id=\"").append(id).append(is_constant ? "\" class=constant" : "\"");
    features.append("><h2><a href=\"#").append(id).append("\">").append(Escaped(DisplayName(key)));
    features.append("</a> <small>").append(ToString(kind)).append("</small></h2>\n");
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
  Replace(page, "{carrier options}", OptionsHtml(fleet_.carriers));
  Replace(page, "{region options}", OptionsHtml(fleet_.regions));
  Replace(page, "{carriers}", Join(fleet_.carriers, ", ", CodeHtml));
  Replace(page, "{regions}", Join(fleet_.regions, ", ", CodeHtml));
  Replace(page, "{source}", SourceHtml(source_));
  Replace(page, "{title}",
          Escaped(host::Printable(std::filesystem::path(source_.name).filename().string())));
  return page;
}

// The exceptions by the type of their map. There may be thousands, so they are plain lines.
std::string HtmlReport::ExceptionsHtml(const MatrixLayout& layout,
                                       const std::vector<std::string>& styles) {
  std::map<std::string, std::string> lines;
  for (const auto& exception : layout.exceptions) {
    Compare(exception.cell);
    lines[CellStyle(exception.cell, styles)] += ExceptionHtml(fleet_, exception);
  }
  std::string html = "<details><summary>exceptions of single devices: <b>" +
                     std::to_string(layout.exceptions.size()) + "</b></summary>\n";
  for (const auto& [style, text] : lines) {
    html.append("<pre class=").append(style).append(">").append(text).append("</pre>\n");
  }
  return html + "</details>\n";
}

void HtmlReport::Compare(const Cell& cell) {
  if (cell.result == nullptr) return;
  auto& [key, kind, tables, first, is_constant] = sections_.back();
  if (!first) first = *cell.result;
  is_constant = is_constant && IsSame(*first, *cell.result);
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
