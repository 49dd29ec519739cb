#include "commands/options.h"

#include <algorithm>
#include <utility>

#include "cadrova/cadrova.h"
#include "lookup/data_source.h"
#include "lookup/recording.h"
#include "output/console.h"

namespace {

std::vector<std::string> Split(const std::string& text) {
  std::vector<std::string> codes;
  std::size_t begin = 0;
  for (std::size_t comma = 0; comma != std::string::npos; begin = comma + 1) {
    comma = text.find(',', begin);
    std::string code = text.substr(begin, comma - begin);
    if (std::ranges::find(codes, code) == codes.end()) codes.push_back(std::move(code));
  }
  return codes;
}

}  // namespace

void AddData(CLI::App& command, std::optional<std::string>& data) {
  AddArgument(command, "--data", data, "FILE", "The customization file of the stand-in core");
}

QuestionArguments::QuestionArguments(CLI::App& command) {
  AddFeature(command, family_, kind_, key_);
  for (CLI::Option* argument : command.get_options()) {
    if (argument->get_positional()) argument->required();
  }
  AddArgument(command, "DEFAULT", default_, "",
              "For a missing item; left out: false, 0, 0 or empty");
  AddData(command, data_);
  AddArgument(command, "--region", region_, "CODE",
              "The region code; left out, what the property store holds");
  AddArgument(command, "--carrier", carrier_, "CODE",
              "The carrier code; left out, what the property store holds");
  AddArgument(command, "--sim", sim_items_, "KEY=VALUE",
              "Handed over for the SIM first; may be repeated")
      ->expected(1)
      ->allow_extra_args(false)  // What follows is not for the SIM.
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

Question QuestionArguments::Take() const {
  const Question question = ToQuestion(family_, kind_, key_, default_);
  if (data_) AnswerFromFile(*data_);
  if (region_) OverrideProperty(kRegionCode, *region_);
  if (carrier_) OverrideProperty(kCarrierCode, *carrier_);
  for (const std::string& item : sim_items_) {
    const std::size_t equals = item.find('=');
    if (equals == std::string::npos) Fail("--sim '" + item + "' is no KEY=VALUE");
    android::setSimCadrova(item.substr(0, equals), item.substr(equals + 1));
  }
  return question;
}

FleetArguments::FleetArguments(CLI::App& command) {
  AddArgument(command, "--regions", regions_, "CODES",
              "The devices' regions, with commas; left out, those of the maps");
  AddArgument(command, "--carriers", carriers_, "CODES", "Their carriers, likewise");
}

Fleet FleetArguments::Take(const std::vector<std::string>& maps) const {
  Fleet fleet = FleetOf(maps);
  if (regions_) fleet.regions = Split(*regions_);
  if (carriers_) fleet.carriers = Split(*carriers_);
  return fleet;
}
