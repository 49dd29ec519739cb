#include "question.h"

#include <tuple>
#include <utility>

#include "cadrova/cadrova.h"
#include "cadrova/host.h"
#include "console.h"
#include "file.h"
#include "hearing.h"

using namespace cadrova::watch;

// There where the core is the stand-in one, which reads a file.
namespace cadrova::host {
[[gnu::weak]] std::optional<Mistake> AnswerFromFile(const std::string& path);
}

namespace {

template <class Kind>
using WithDefault = Kind (*)(std::string key, Kind default_value);
template <class Kind>
using WithoutDefault = Kind (*)(std::string key);

struct Family {
  const char* name;
  const char* word;  // in the names of its functions
  std::tuple<WithDefault<bool>, WithDefault<int>, WithDefault<float>, WithDefault<std::string>,
             WithoutDefault<StringArray>, WithoutDefault<IntArray>, WithoutDefault<MapArray>>
      lookups;
};

const Family kFamilies[] = {
    {"default",
     "Cust",
     {android::getCustBooleanFeature, android::getCustIntFeature, android::getCustFloatFeature,
      android::getCustStringFeature, android::getCustStringArrayFeature,
      android::getCustIntArrayFeature, android::getCustMapArrayFeature}},
    {"region",
     "RegionCust",
     {android::getRegionCustBooleanFeature, android::getRegionCustIntFeature,
      android::getRegionCustFloatFeature, android::getRegionCustStringFeature,
      android::getRegionCustStringArrayFeature, android::getRegionCustIntArrayFeature,
      android::getRegionCustMapArrayFeature}},
    {"carrier",
     "CotaCust",
     {android::getCotaCustBooleanFeature, android::getCotaCustIntFeature,
      android::getCotaCustFloatFeature, android::getCotaCustStringFeature,
      android::getCotaCustStringArrayFeature, android::getCotaCustIntArrayFeature,
      android::getCotaCustMapArrayFeature}},
    {"carrier-region",
     "CotaRegionCust",
     {android::getCotaRegionCustBooleanFeature, android::getCotaRegionCustIntFeature,
      android::getCotaRegionCustFloatFeature, android::getCotaRegionCustStringFeature,
      android::getCotaRegionCustStringArrayFeature, android::getCotaRegionCustIntArrayFeature,
      android::getCotaRegionCustMapArrayFeature}},
    {"sim",
     "SimCust",
     {android::getSimCustBooleanFeature, android::getSimCustIntFeature, nullptr,
      [](std::string key, std::string) { return android::getSimCustStringFeature(key); },
      android::getSimCustStringArrayFeature, android::getSimCustIntArrayFeature,
      android::getSimCustMapArrayFeature}},
};

struct Kind {
  const char* word;  // in the names of functions
  Value zero;        // stands in where no default is given
  const char* name = kKindNames[zero.index()];
};

const Kind kKinds[] = {
    {"Boolean", false},
    {"Int", 0},
    {"Float", 0.0F},
    {"String", std::string()},
    {"StringArray", StringArray()},
    {"IntArray", IntArray()},
    {"MapArray", MapArray()},
};

const auto& FindByName(const auto& table, const std::string& what, const std::string& name) {
  std::string names;
  for (const auto& entry : table) {
    if (entry.name == name) return entry;
    names += (names.empty() ? "" : ", ") + std::string(entry.name);
  }
  Fail("'" + name + "' is no " + what + "; use one of: " + names);
}

// Whether the family leaves out a kind, or a kind's default, and why.
void RefuseWhatTheFamilyLacks(const Family& family, const Kind& kind, bool has_default) {
  if (std::string(family.name) != "sim") return;
  if (std::holds_alternative<float>(kind.zero)) {
    Fail("the sim family has no float: SIM data holds none; ask carrier-region");
  }
  if (std::holds_alternative<std::string>(kind.zero) && has_default) {
    Fail("the sim family takes no default for a string: a missing one is empty");
  }
}

std::function<Value()> Asking(const Family& family, const std::string& key,
                              const Value& default_value) {
  return std::visit(
      [&]<class Kind>(const Kind& given) -> std::function<Value()> {
        if constexpr (kIsList<Kind>) {
          return
              [=, lookup = std::get<WithoutDefault<Kind>>(family.lookups)] { return lookup(key); };
        } else {
          return [=, lookup = std::get<WithDefault<Kind>>(family.lookups)] {
            return lookup(key, given);
          };
        }
      },
      default_value);
}

}  // namespace

QuestionArguments::QuestionArguments(CLI::App& command) {
  const auto add = [&](const std::string& name, auto& into, const std::string& type,
                       const std::string& what) {
    return command.add_option(name, into, what)
        ->type_name(type)
        ->check([name](const std::string& given) {
          // A value that was forgotten would be taken for the next option's name.
          return name[0] == '-' && given.starts_with("--") ? "'" + given + "' is an option" : "";
        });
  };
  add("FAMILY", family_, "", "default, region, carrier, carrier-region or sim")->required();
  add("KIND", kind_, "", "bool, int, float, string, string-array, int-array or map-array")
      ->required();
  add("KEY", key_, "", "The feature key")->required();
  add("DEFAULT", default_, "", "For a missing item; left out: false, 0, 0 or empty");
  add("--data", data_, "FILE", "The customization file of the stand-in core");
  add("--region", region_, "CODE", "The region code; left out, what the property store holds");
  add("--carrier", carrier_, "CODE", "The carrier code; left out, what the property store holds");
  add("--sim", sim_items_, "KEY=VALUE", "Handed over for the SIM first; may be repeated")
      ->expected(1)
      ->allow_extra_args(false)  // What follows is not for the SIM.
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

Question QuestionArguments::Take() const {
  const Family& family = FindByName(kFamilies, "family", family_);
  const Kind& kind = FindByName(kKinds, "kind", kind_);
  RefuseWhatTheFamilyLacks(family, kind, default_.has_value());
  const Value default_value = default_ ? ParseDefault(*default_, kind.zero) : kind.zero;
  if (data_) {
    if (data_->empty()) Fail("--data names no file");
    if (cadrova::host::AnswerFromFile == nullptr) {
      Fail("--data: this parser core reads no file of ours");
    }
    if (const auto mistake = cadrova::host::AnswerFromFile(*data_)) {
      cadrova::host::Stop(*mistake);
    }
  }
  if (region_) OverrideProperty("ro.orvel.region", *region_);
  if (carrier_) OverrideProperty("persist.sys.cota.carrier", *carrier_);
  for (const std::string& item : sim_items_) {
    const std::size_t equals = item.find('=');
    if (equals == std::string::npos) Fail("--sim '" + item + "' is no KEY=VALUE");
    android::setSimCadrova(item.substr(0, equals), item.substr(equals + 1));
  }
  return {.function = std::string("get") + family.word + kind.word + "Feature",
          .key = key_,
          .default_value = default_value,
          .has_default = default_.has_value(),
          .ask = Asking(family, key_, default_value)};
}
