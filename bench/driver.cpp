// Runs one case many times, for callgrind to count and hyperfine to time.
//
//   driver --list              the cases
//   driver CASE CALLS          calls it so often, with its lines going to standard output
//   driver --allocations CASE  prints its heap allocations a call
//
// A case is FAMILY KIND PATH LENGTH, joined with slashes: the item is found in the family's first
// map or only in its last; keys and codes fit the short-string buffer or don't.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "cadrova/cadrova.h"
#include "device.h"

namespace {

std::size_t allocations = 0;

struct Case {
  std::string name;
  std::function<void(const std::string& text)> call;
};

std::vector<Case> Cases() {
  using namespace android;
  using Text = const std::string&;
  return {
      {"bridge/int", [](Text text) { getIntFromRust(text, text, 7); }},
      {"bridge/string-array", [](Text text) { getStringArrayFromRust(text, text); }},
      {"default/int", [](Text text) { getCustIntFeature(text, 7); }},
      {"default/string", [](Text text) { getCustStringFeature(text, text); }},
      {"region/int", [](Text text) { getRegionCustIntFeature(text, 7); }},
      {"region/float", [](Text text) { getRegionCustFloatFeature(text, 0.5F); }},
      {"region/string", [](Text text) { getRegionCustStringFeature(text, text); }},
      {"region/string-array", [](Text text) { getRegionCustStringArrayFeature(text); }},
      {"region/map-array", [](Text text) { getRegionCustMapArrayFeature(text); }},
      {"carrier/int", [](Text text) { getCotaCustIntFeature(text, 7); }},
      {"carrier/float", [](Text text) { getCotaCustFloatFeature(text, 0.5F); }},
      {"carrier/string", [](Text text) { getCotaCustStringFeature(text, text); }},
      {"carrier/string-array", [](Text text) { getCotaCustStringArrayFeature(text); }},
      {"carrier/map-array", [](Text text) { getCotaCustMapArrayFeature(text); }},
      {"carrier-region/int", [](Text text) { getCotaRegionCustIntFeature(text, 7); }},
      {"carrier-region/float", [](Text text) { getCotaRegionCustFloatFeature(text, 0.5F); }},
      {"carrier-region/string", [](Text text) { getCotaRegionCustStringFeature(text, text); }},
      {"carrier-region/string-array", [](Text text) { getCotaRegionCustStringArrayFeature(text); }},
      {"carrier-region/map-array", [](Text text) { getCotaRegionCustMapArrayFeature(text); }},
      {"sim/int", [](Text text) { getSimCustIntFeature(text, 7); }},
      {"sim/string", [](Text text) { getSimCustStringFeature(text); }},
      {"sim/string-array", [](Text text) { getSimCustStringArrayFeature(text); }},
      {"sim/map-array", [](Text text) { getSimCustMapArrayFeature(text); }},
  };
}

// The bridge and the default map have one map to ask.
bool HasPaths(const std::string& name) {
  return !name.starts_with("bridge/") && !name.starts_with("default/");
}

[[noreturn]] void Fail(const char* what) {
  std::fprintf(stderr, "bench driver: %s\n", what);
  std::exit(2);
}

}  // namespace

void* operator new(std::size_t size) {
  ++allocations;
  void* const block = std::malloc(size);
  if (block == nullptr) std::abort();
  return block;
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

int main(int argc, char** argv) {
  const std::string first = argc > 1 ? argv[1] : "";
  const bool lists = first == "--list";
  const bool counts = first == "--allocations";
  if (argc != (lists ? 2 : 3)) Fail("use --list, CASE CALLS or --allocations CASE");
  const std::string wanted = counts ? argv[2] : first;
  for (const Case& one : Cases()) {
    for (const char* path : {"first", "last"}) {
      if (!HasPaths(one.name) && std::strcmp(path, "last") == 0) continue;
      for (const char* length : {"short", "long"}) {
        const std::string name =
            one.name + (HasPaths(one.name) ? std::string("/") + path : "") + "/" + length;
        if (lists) std::puts(name.c_str());
        if (name != wanted) continue;
        const bool is_long = std::strcmp(length, "long") == 0;
        const std::string text = is_long ? "camera.feature.with.a.rather.long.name" : "camera.key";
        bench::device.region = is_long ? "REGION_BEYOND_THE_SHORT_STRING_BUFFER" : "EU";
        bench::device.carrier = is_long ? "CARRIER_BEYOND_THE_SHORT_STRING_BUFFER" : "X1";
        bench::device.element = text;
        bench::device.first_has_it = std::strcmp(path, "first") == 0;
        if (counts) {
          one.call(text);
          const std::size_t before = allocations;
          one.call(text);
          std::fprintf(stderr, "%zu\n", allocations - before);
          return 0;
        }
        for (long calls = std::atol(argv[2]); calls > 0; --calls) one.call(text);
        return 0;
      }
    }
  }
  if (!lists) Fail("no such case; see --list");
}
