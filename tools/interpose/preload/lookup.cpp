#include "lookup.h"

#include <dlfcn.h>

#include <cstring>

#include "output.h"
#include "summary.h"

namespace cadrova::tools {
namespace {

using What = Step::What;

// Programs read properties for their own ends too.
bool IsLibrarys(const Step& step) {
  Dl_info asker;
  return step.what != What::kProperty ||
         (dladdr(step.caller, &asker) != 0 &&
          std::strstr(asker.dli_fname, "libcadrova_cpp.so") != nullptr);
}

}  // namespace

void Heard(Step& step) {
  if (Lookup::current != nullptr) return Lookup::current->Add(step);
  if (!IsLibrarys(step)) return;
  if (Shows("summary")) return Summary::The().AddStep();
  std::string line = LineStart();
  step.AppendTo(line);
  Output::The().Write(line += '\n');
}

void Lookup::Add(const Step& step) {
  if (Shows("steps")) {
    steps_ += "    ";
    step.AppendTo(steps_);
    steps_ += '\n';
  }
  chain_.Add(step);
}

void Lookup::Finish(const char* kind, std::size_t value) {
  const auto* map = chain_.answered_by();
  std::string map_name;
  if (map != nullptr) AppendName(map_name, map->name);
  if (Shows("summary")) {
    return Summary::The().AddLookup(key_, kind, map_name, line_.substr(value));
  }
  line_ += map == nullptr ? ", the default" : " from " + map_name;
  Write("; asked ");
}

void Lookup::HandedOver() {
  if (!Shows("summary")) Write("; handed to ");
}

void Lookup::Write(const char* before_maps) {
  line_ += before_maps;
  const char* before = "";
  for (const Chain::Map& map : chain_.maps()) {
    line_ += std::exchange(before, ", ");
    AppendName(line_, map.name);
  }
  line_ += '\n';
  Output::The().Write(line_ += steps_);
}

}  // namespace cadrova::tools
