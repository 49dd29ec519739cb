#include "output/change_printer.h"

#include <algorithm>
#include <map>

#include "common/json_text.h"
#include "common/text.h"
#include "lookup/data_source.h"
#include "output/console.h"
#include "output/json.h"

namespace cadrova::tools {
namespace {

// The codes at the positions in `chosen`, or "every region except ..." if that is shorter.
std::string ChosenCodes(const std::vector<std::size_t>& chosen,
                        const std::vector<std::string>& codes, const std::string& what) {
  if (chosen.size() == codes.size() && codes.size() > 1) return "every " + what;
  const bool are_most = codes.size() > 4 && 2 * chosen.size() > codes.size();
  std::vector<std::string> listed;
  for (std::size_t code = 0; code < codes.size(); ++code) {
    if (std::ranges::binary_search(chosen, code) != are_most) listed.push_back(codes[code]);
  }
  return (are_most ? "every " + what + " except " : "") + Join(listed, ", ", DisplayName);
}

std::string DevicesText(const Change& change, const Fleet& fleet) {
  using Positions = std::vector<std::size_t>;
  std::map<std::size_t, Positions> regions_of;
  for (const auto& [region, carrier] : change.devices) regions_of[carrier].push_back(region);
  std::map<Positions, Positions> carriers_in;
  for (const auto& [carrier, regions] : regions_of) carriers_in[regions].push_back(carrier);
  return Join(carriers_in, "; ", [&](const auto& entry) {
    const auto& [regions, carriers] = entry;
    return ChosenCodes(carriers, fleet.carriers, "carrier") + " in " +
           ChosenCodes(regions, fleet.regions, "region");
  });
}

std::string Count(std::size_t count, const std::string& singular, const std::string& plural) {
  return std::to_string(count) + ' ' + (count == 1 ? singular : plural);
}

bool AreSame(const std::vector<Change>& changes, const std::vector<Change>& others) {
  const auto is_same_result = [](const Result& one, const Result& other) {
    return one.map == other.map && IsSame(one, other);
  };
  return std::ranges::equal(changes, others, [&](const Change& one, const Change& other) {
    return one.devices == other.devices && is_same_result(*one.before, *other.before) &&
           is_same_result(*one.after, *other.after);
  });
}

// Families with the same changes are listed together.
struct Group {
  std::string families;
  const std::vector<Change>* changes;
};

std::vector<Group> GroupFamilies(const std::vector<FamilyChanges>& families) {
  std::vector<Group> groups;
  for (const auto& [family, changes] : families) {
    const auto found = std::ranges::find_if(
        groups, [&](const Group& group) { return AreSame(*group.changes, changes); });
    if (found == groups.end()) {
      groups.push_back({family->name, &changes});
    } else {
      found->families += std::string(", ") + family->name;
    }
  }
  return groups;
}

std::string Location(const host::Contents& contents, const Result& result, const std::string& key) {
  return result.map ? LocationText(contents.file, PlaceOf(contents, *result.map, key)) : "";
}

// "removed 7; added 8, 28", or nothing for other kinds, or if a list is missing.
std::string ElementsText(const Change& change, std::string (*show)(const std::string& element)) {
  if (!change.before->map || !change.after->map) return "";
  const auto elements = CompareElements(change.before->value, change.after->value);
  if (!elements) return "";
  std::vector<std::string> parts;
  if (!elements->removed.empty()) parts.push_back("removed " + Join(elements->removed, ", ", show));
  if (!elements->added.empty()) parts.push_back("added " + Join(elements->added, ", ", show));
  return parts.empty() ? "the same elements in another order" : Join(parts, "; ");
}

class TextPrinter : public ChangePrinter {
 public:
  using ChangePrinter::ChangePrinter;

 private:
  void Print(const Feature& feature, const std::vector<FamilyChanges>& families) override {
    for (const auto& [names, changes] : GroupFamilies(families)) {
      std::string text = Colored(std::string(ToString(feature.kind)) + ' ' +
                                     DisplayName(feature.key) + " by " + names,
                                 kBold) +
                         '\n';
      for (const Change& change : *changes) {
        const std::string elements =
            ElementsText(change, [](const std::string& element) { return element; });
        text += "  " + Colored(ResultText(before_, *change.before, feature), kRed) + " -> " +
                Colored(ResultText(after_, *change.after, feature), kGreen) + ": " +
                DevicesText(change, fleet_) + '\n' +
                (elements.empty() ? "" : "    " + elements + '\n');
      }
      tools::Print(text);
    }
  }

  void PrintTotals(const std::string& totals) override {
    if (!totals.empty()) tools::Print(totals + '\n');
  }

  // 25 COTA_X1 (old.toml:12)
  static std::string ResultText(const host::Contents& contents, const Result& result,
                                const Feature& feature) {
    if (!result.map) return "no map";
    const std::string location = Location(contents, result, feature.key);
    return ToJsonText(result.value) + ' ' + DisplayName(*result.map) +
           (location.empty() ? "" : " (" + location + ')');
  }
};

// A table with one row per change.
class MarkdownPrinter : public ChangePrinter {
 public:
  using ChangePrinter::ChangePrinter;

 private:
  void Print(const Feature& feature, const std::vector<FamilyChanges>& families) override {
    if (is_first_) {
      tools::Print("| feature | family | old | new | devices |\n| --- | --- | --- | --- | --- |\n");
    }
    is_first_ = false;
    for (const auto& [names, changes] : GroupFamilies(families)) {
      for (const Change& change : *changes) {
        const std::string elements = ElementsText(change, Code);
        tools::Print("| " + Code(DisplayName(feature.key)) + ' ' + ToString(feature.kind) + " | " +
                     names + " | " + ResultText(before_, *change.before, feature) + " | " +
                     ResultText(after_, *change.after, feature) +
                     (elements.empty() ? "" : "<br>" + elements) + " | " +
                     Escaped(DevicesText(change, fleet_)) + " |\n");
      }
    }
  }

  void PrintTotals(const std::string& totals) override {
    tools::Print(totals.empty() ? "No device changes.\n" : '\n' + totals + ".\n");
  }

  static std::string ResultText(const host::Contents& contents, const Result& result,
                                const Feature& feature) {
    if (!result.map) return "no map";
    const std::string location = Location(contents, result, feature.key);
    return Code(ToJsonText(result.value)) + ' ' + Code(DisplayName(*result.map)) +
           (location.empty() ? "" : "<br>" + Code(location));
  }

  // A "|" would end the cell, and a "`" the code.
  static std::string Code(const std::string& text) {
    const bool is_plain = text.find_first_of("|`") == std::string::npos;
    return is_plain ? '`' + text + '`' : "<code>" + Escaped(text) + "</code>";
  }

  // Text in which no character has a meaning in Markdown or HTML.
  static std::string Escaped(const std::string& text) {
    // ":" and "." are parts of an address, which would become a link.
    constexpr std::string_view kSpecial = "&<>|\\`*_[]#~@:.";
    std::string escaped;
    for (const char byte : text) {
      if (kSpecial.find(byte) == std::string_view::npos) {
        escaped += byte;
      } else {
        escaped += "&#" + std::to_string(static_cast<int>(byte)) + ';';
      }
    }
    return escaped;
  }

  bool is_first_ = true;
};

class JsonPrinter : public ChangePrinter {
 public:
  using ChangePrinter::ChangePrinter;

 private:
  void Print(const Feature& feature, const std::vector<FamilyChanges>& families) override {
    for (const auto& [family, changes] : families) {
      for (const Change& change : changes) {
        AddChange(array_, {feature, *family, fleet_, before_, after_}, change);
      }
    }
  }
  void PrintTotals(const std::string&) override { array_.Finish(); }

  JsonArrayPrinter array_;
};

}  // namespace

std::unique_ptr<ChangePrinter> ChangePrinter::Make(const std::string& format,
                                                   const host::Contents& before,
                                                   const host::Contents& after,
                                                   const Fleet& fleet) {
  if (format == "json") return std::make_unique<JsonPrinter>(before, after, fleet);
  if (format == "markdown") return std::make_unique<MarkdownPrinter>(before, after, fleet);
  return std::make_unique<TextPrinter>(before, after, fleet);
}

void ChangePrinter::Add(const Feature& feature, const std::vector<FamilyChanges>& families) {
  ++features_;
  for (const auto& [family, changes] : families) {
    for (const Change& change : changes) {
      for (const auto& [region, carrier] : change.devices) {
        is_changed_[region * fleet_.carriers.size() + carrier] = true;
      }
    }
  }
  Print(feature, families);
}

bool ChangePrinter::Finish() {
  const auto changed = std::ranges::count(is_changed_, true);
  std::size_t all = is_changed_.size();
  if (!fleet_.has_device.empty()) {
    all = static_cast<std::size_t>(std::ranges::count(fleet_.has_device, true));
  }
  PrintTotals(features_ == 0
                  ? ""
                  : Count(features_, "feature changes", "features change") + ", on " +
                        std::to_string(changed) + " of " + Count(all, "device", "devices"));
  return features_ != 0;
}

}  // namespace cadrova::tools
