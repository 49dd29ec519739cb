// cadrova matrix: what every device is answered, side by side.

#include <cerrno>
#include <fstream>
#include <memory>
#include <system_error>

#include "commands/commands.h"
#include "commands/options.h"
#include "common/json_text.h"
#include "common/table.h"
#include "fleet/matrix_layout.h"
#include "lookup/data_source.h"
#include "output/console.h"
#include "output/html_report.h"
#include "output/json.h"

using namespace cadrova::tools;

namespace {

// Long values stand below the grid.
class Cells {
 public:
  std::string Of(const Answer& answer) {
    if (!answer.map) return "no map";
    std::string value = ToText(answer.value);
    if (Width(value) > kLong) value = Number(value);
    return value + ' ' + Named(*answer.map);
  }

  // The long ones.
  std::string Below() const {
    std::string lines;
    for (std::size_t i = 0; i < long_.size(); ++i) {
      lines += (i == 0 ? "\n(" : "(") + std::to_string(i + 1) + ")  " + long_[i] + '\n';
    }
    return lines;
  }

 private:
  static constexpr std::size_t kLong = 16;

  std::string Number(const std::string& value) {
    std::size_t i = 0;
    while (i < long_.size() && long_[i] != value) ++i;
    if (i == long_.size()) long_.push_back(value);
    return '(' + std::to_string(i + 1) + ')';
  }

  std::vector<std::string> long_;
};

std::string AsText(const Fleet& fleet, const Grids& made) {
  std::string text;
  Cells cells;
  for (const auto& [regions, carriers, answers] : made.grids) {
    std::vector<Row> rows(2, Row(carriers.size() + 1));
    rows[0][1] = "carrier";
    rows[1][0] = "region";
    for (std::size_t i = 0; i < carriers.size(); ++i) {
      rows[1][i + 1] = Label(carriers[i], fleet.carriers, "carrier", Named);
    }
    for (std::size_t i = 0; i < regions.size(); ++i) {
      Row& row = rows.emplace_back(Row{Label(regions[i], fleet.regions, "region", Named)});
      for (const Answer* answer : answers[i]) row.push_back(cells.Of(*answer));
    }
    text += (text.empty() ? "" : "\n") + Table(rows);
  }
  if (!made.singles.empty()) {
    std::vector<Row> rows = {{"region", "carrier", "but these"}};
    for (const auto& [region, carrier, answer] : made.singles) {
      rows.push_back(
          {Named(fleet.regions[region]), Named(fleet.carriers[carrier]), cells.Of(*answer)});
    }
    text += '\n' + Table(rows);
  }
  return text + cells.Below();
}

// What `use` makes of each device and its answer.
void ForEachDevice(const Chains& chains, const Answers& answers, auto use) {
  const auto& [regions, carriers] = chains.fleet();
  for (std::size_t i = 0; i < regions.size(); ++i) {
    for (std::size_t j = 0; j < carriers.size(); ++j) {
      use(regions[i], carriers[j], answers.Of(chains.Of(i, j)));
    }
  }
}

void PrintJson(const Chains& chains, const Answers& answers) {
  JsonArray array;
  ForEachDevice(chains, answers, [&](auto& region, auto& carrier, const Answer& answer) {
    array.Add({{"region", region},
               {"carrier", carrier},
               {"value", ToJson(answer.value)},
               {"map", answer.map ? Json(*answer.map) : Json()}});
  });
}

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char byte : text) quoted += byte == '"' ? "\"\"" : std::string(1, byte);
  return quoted + '"';
}

// A text and a list stand between quotes; so does a map, as one without a name is not none.
std::string AsCsv(const Chains& chains, const Answers& answers) {
  std::string lines = "region,carrier,value,map\n";
  ForEachDevice(chains, answers, [&](auto& region, auto& carrier, const Answer& answer) {
    const auto* string = std::get_if<std::string>(&answer.value);
    std::string value = ToText(answer.value);
    if (string != nullptr) value = Quoted(*string);
    if (value[0] == '[') value = Quoted(value);
    lines += Quoted(region) + ',' + Quoted(carrier) + ',' + value + ',' +
             (answer.map ? Quoted(*answer.map) : "") + '\n';
  });
  return lines;
}

struct Arguments {
  std::string family, kind;
  std::optional<std::string> key, data, html;
  bool json = false, csv = false;
};

void WritePage(const Page& page, const std::string& file) {
  std::ofstream stream(file, std::ios::binary);
  stream << page.ToHtml();
  if (!stream.flush()) Fail("--html " + file + ": " + std::generic_category().message(errno));
}

void WritePageOfAll(const std::string& file, const FleetArguments& fleets) {
  const auto inventory = List();
  const Fleet fleet = fleets.Take(MapsOf(inventory));
  const auto features = FeaturesOf(inventory);
  const Chains by_carrier_region("carrier-region", fleet), by_sim("sim", fleet);
  Page page(inventory.file, fleet);
  Progress progress("asking each feature");
  for (std::size_t i = 0; i < features.size(); ++i) {
    progress.Show(i, features.size());
    const auto& [key, kind, maps] = features[i];
    page.Begin(key, kind);
    for (const Chains* chains : {&by_carrier_region, &by_sim}) {
      if (!HasLookup(chains->family(), kind)) continue;
      page.Add(chains->family(), ToGrids(*chains, chains->Ask(kind, key, &maps)));
    }
  }
  WritePage(page, file);
}

void Run(const Arguments& given, const FleetArguments& fleets) {
  const auto& [family, kind, key, data, html, json, csv] = given;
  if (json + csv + (html ? 1 : 0) > 1) Fail("--json, --csv and --html exclude each other");
  if (data) AnswerFromFile(*data);
  if (!key) {
    if (!family.empty() || !html) Fail("name FAMILY, KIND and KEY; or none of them, with --html");
    return WritePageOfAll(*html, fleets);
  }
  const Fleet fleet = fleets.Take(fleets.are_given() ? std::vector<std::string>() : MapsOf(List()));
  const Chains chains(family, fleet);
  const Answers answers = chains.Ask(kind, *key);
  if (json) {
    PrintJson(chains, answers);
  } else if (csv) {
    Print(AsCsv(chains, answers));
  } else if (html) {
    Page page(CanList() ? List().file : "", fleet);
    page.Begin(*key, kind);
    page.Add(family, ToGrids(chains, answers));
    WritePage(page, *html);
  } else {
    Print(AsText(fleet, ToGrids(chains, answers)));
  }
  if (!answers.are_held()) Fail("no map holds " + Named(*key) + " as " + kind, 1);
}

}  // namespace

void AddMatrix(CLI::App& app) {
  CLI::App& matrix = *app.add_subcommand("matrix", "Show what every device gets, side by side");
  const auto given = std::make_shared<Arguments>();
  AddFeature(matrix, given->family, given->kind, given->key);
  AddData(matrix, given->data);
  const auto fleets = std::make_shared<FleetArguments>(matrix);
  matrix.add_flag("--json", given->json,
                  "Print a JSON array of objects: region, carrier, value, map");
  matrix.add_flag("--csv", given->csv, "Print the same as comma-separated values");
  AddArgument(matrix, "--html", given->html, "FILE",
              "Write a page; of every feature, where none is named");
  matrix.footer(
      "As: cadrova matrix carrier-region int calling.ring_seconds\n"
      "    cadrova matrix --html devices.html\n");
  matrix.callback([=] { Run(*given, *fleets); });
}
