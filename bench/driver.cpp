// Runs one case many times, so that callgrind can count its instructions. Prints the heap
// allocations per call to standard error. Linked once with the library and once with the floor.
//
//   driver --list        prints the cases
//   driver CASE CALLS    the lookups print their lines to standard output
//
// A case is FAMILY/KIND/PATH/LENGTH. With PATH "first", the first map of the chain contains the
// item; with "last", no map does and "DEFAULT" is read. With LENGTH "short", key, codes and texts
// fit the short-string buffer; with "long", they don't.

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <utility>

#include "cadrova/cadrova.h"
#include "device.h"

namespace {

using namespace android;
using Text = const std::string&;

const std::pair<std::string, std::function<void(Text text)>> kCases[] = {
    {"default/int/first", [](Text text) { getCustIntFeature(text, 7); }},
    {"region/int/first", [](Text text) { getRegionCustIntFeature(text, 7); }},
    {"region/int/last", [](Text text) { getRegionCustIntFeature(text, 7); }},
    {"region/string/first", [](Text text) { getRegionCustStringFeature(text, text); }},
    {"region/string/last", [](Text text) { getRegionCustStringFeature(text, text); }},
    {"carrier/int/first", [](Text text) { getCotaCustIntFeature(text, 7); }},
    {"carrier/int/last", [](Text text) { getCotaCustIntFeature(text, 7); }},
    {"carrier/string-array/first", [](Text text) { getCotaCustStringArrayFeature(text); }},
    {"carrier-region/int/first", [](Text text) { getCotaRegionCustIntFeature(text, 7); }},
    {"carrier-region/int/last", [](Text text) { getCotaRegionCustIntFeature(text, 7); }},
    {"sim/int/first", [](Text text) { getSimCustIntFeature(text, 7); }},
    {"sim/int/last", [](Text text) { getSimCustIntFeature(text, 7); }},
};

std::size_t allocations = 0;

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
  const std::string wanted = argc > 1 ? argv[1] : "";
  for (const auto& [name, call] : kCases) {
    for (const std::string length : {"/short", "/long"}) {
      if (wanted == "--list") std::puts((name + length).c_str());
      if (wanted != name + length || argc != 3) continue;
      const bool is_long = length == "/long";
      const std::string text = is_long ? "camera.feature.with.a.rather.long.name" : "camera.key";
      bench::device = {.region = is_long ? "REGION_BEYOND_THE_SHORT_STRING_BUFFER" : "EU",
                       .carrier = is_long ? "CARRIER_BEYOND_THE_SHORT_STRING_BUFFER" : "X1",
                       .element = text,
                       .contains_item = name.ends_with("/first")};
      std::size_t before = 0;
      for (long calls = std::atol(argv[2]); calls > 0; --calls) {
        before = allocations;
        call(text);
      }
      std::fprintf(stderr, "%zu\n", allocations - before);
      return 0;
    }
  }
  if (wanted == "--list") return 0;
  std::fprintf(stderr, "usage: %s --list | CASE CALLS, with a case that --list prints\n", argv[0]);
  return 2;
}
