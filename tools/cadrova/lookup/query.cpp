#include "lookup/query.h"

#include <tuple>
#include <utility>

#include "cadrova/cadrova.h"
#include "lookup/kind.h"
#include "output/console.h"

using namespace cadrova::tools;

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
void RefuseWhatTheFamilyLacks(const std::string& family, const std::string& kind,
                              bool has_default) {
  if (!HasLookup(family, kind)) {
    Fail("the sim family has no float: SIM data holds none; ask carrier-region");
  }
  if (family == "sim" && kind == "string" && has_default) {
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

bool HasLookup(const std::string& family, const std::string& kind) {
  return family != "sim" || kind != "float";
}

Question ToQuestion(const std::string& family, const std::string& kind, const std::string& key,
                    const std::optional<std::string>& default_value) {
  const Family& of = FindByName(kFamilies, "family", family);
  const auto& [word, zero, name] = FindByName(kKinds, "kind", kind);
  RefuseWhatTheFamilyLacks(family, kind, default_value.has_value());
  const Value value = default_value ? ParseDefault(*default_value, zero) : zero;
  return {.function = std::string("get") + of.word + word + "Feature",
          .key = key,
          .default_value = value,
          .has_default = default_value.has_value(),
          .ask = Asking(of, key, value)};
}

ExistenceTest* TestOf(const Value& value, bool is_sim) {
  return std::visit(
      [=]<class Kind>(const Kind&) -> ExistenceTest* {
        using Row = android::cadrova_cpp::KindTraits<Kind>;
        if constexpr (requires { Row::exists_in_sim; }) {
          if (is_sim) return Row::exists_in_sim;
        }
        return Row::exists;
      },
      value);
}
