#include "output/html_report.h"

#include <algorithm>
#include <string_view>

#include "common/json_text.h"
#include "html_report_frame.h"

using cadrova::tools::Named;

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

std::string Element(const std::string& name, const std::string& contents) {
  return '<' + name + '>' + contents + "</" + name.substr(0, name.find(' ')) + '>';
}

std::string Code(const std::string& code) {
  return code.empty() ? Element("i", "unset") : Escaped(Named(code));
}

std::string Codes(const std::vector<std::string>& codes) {
  std::string list;
  for (const std::string& code : codes) list += (list.empty() ? "" : ", ") + Code(code);
  return list;
}

// What the maps in the family's chain are called, which is asked of the library, for a device whose
// codes say what they are.
std::vector<std::string> SortsIn(const std::string& family) {
  const Fleet fleet = {{"‹region›"}, {"‹carrier›"}};
  return Chains(family, fleet).Names();
}

std::string StyleOf(std::size_t sort) { return 'p' + std::to_string(sort); }

std::string Style(const Answer& answer, const std::vector<std::string>& styles) {
  return answer.map ? styles[answer.place] : "none";
}

std::string Contents(const Answer& answer) {
  if (!answer.map) return "<small>no map</small>";
  return Escaped(ToText(answer.value)) + " <small>" + Escaped(Named(*answer.map)) + "</small>";
}

void Replace(std::string& text, std::string_view mark, const std::string& with) {
  text.replace(text.find(mark), mark.size(), with);
}

}  // namespace

Page::Page(std::string source, const Fleet& fleet) : source_(std::move(source)), fleet_(fleet) {
  for (const std::string& name : SortsIn("sim")) sorts_.push_back({name});
}

void Page::Begin(const std::string& key, const std::string& kind) {
  sections_.push_back({key, kind, {}});
}

void Page::Add(const std::string& family, const Grids& made) {
  const auto styles = StylesOf(family);
  std::string html;
  for (const auto& [regions, carriers, rows] : made.grids) {
    html += "<table>\n<thead><tr><th scope=col>region";
    for (const CodeGroup& group : carriers) {
      html += "<th scope=col>" + Label(group, fleet_.carriers, "carrier", Code);
    }
    html += "</thead>\n<tbody>\n";
    for (std::size_t i = 0; i < rows.size(); ++i) {
      html += "<tr><th scope=row>" + Label(regions[i], fleet_.regions, "region", Code);
      for (const Answer* answer : rows[i]) {
        html += "<td class=" + Style(*answer, styles) + '>' + Contents(*answer);
      }
      html += "</tr>\n";
    }
    html += "</table>\n";
  }
  if (!made.singles.empty()) html += "<p>but\n";
  for (const auto& [region, carrier, answer] : made.singles) {
    html += "<span class=" + Style(*answer, styles) + "><b>" + Code(fleet_.regions[region]) + ", " +
            Code(fleet_.carriers[carrier]) + "</b> " + Contents(*answer) + "</span>\n";
  }
  auto& grids = sections_.back().grids;
  if (!grids.empty() && grids.back().second == html) {
    grids.back().first += " and " + family;
  } else {
    grids.emplace_back(family, html);
  }
}

std::string Page::ToHtml() const {
  std::string legend, features;
  for (std::size_t i = 0; i < sorts_.size(); ++i) {
    const auto& [name, is_asked] = sorts_[i];
    if (is_asked) legend += "<li class=" + StyleOf(i) + "><small>" + Escaped(name) + "</small>\n";
  }
  for (const auto& [key, kind, grids] : sections_) {
    features += "<section><h2>" + Escaped(Named(key)) + " <small>" + kind + "</small></h2>\n";
    for (const auto& [families, html] : grids) {
      features.append("<h3>by ").append(families).append("</h3>\n<div>\n");
      features.append(html).append("</div>\n");
    }
    features += "</section>\n";
  }
  std::string page = kPageTemplate;
  // From the last to the first, so that no mark is looked for in what was put in.
  Replace(page, "{features}", features);
  Replace(page, "{legend}", legend);
  Replace(page, "{carriers}", Codes(fleet_.carriers));
  Replace(page, "{regions}", Codes(fleet_.regions));
  Replace(page, "{source}", Escaped(source_));
  Replace(page, "{title}", Escaped(source_));
  return page;
}

// The style of each place in the family's chain.
std::vector<std::string> Page::StylesOf(const std::string& family) {
  std::vector<std::string> styles;
  for (const std::string& name : SortsIn(family)) {
    const auto sort = std::ranges::find(sorts_, name, &Sort::name);
    sort->is_asked = true;
    styles.push_back(StyleOf(static_cast<std::size_t>(sort - sorts_.begin())));
  }
  return styles;
}
