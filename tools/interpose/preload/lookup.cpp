#include "lookup.h"

#include <dlfcn.h>

#include <cstring>

#include "output.h"
#include "summary.h"

namespace cadrova::tools {
namespace {

// The program may read properties too, for purposes of its own.
bool IsFromLibrary(const DeviceCall& call) {
  Dl_info caller;
  return call.type != DeviceCall::Type::kGetProperty ||
         (dladdr(call.caller, &caller) != 0 &&
          std::strstr(caller.dli_fname, "libcadrova_cpp.so") != nullptr);
}

void ObserveCall(DeviceCall& call) {
  if (Lookup::current != nullptr) return Lookup::current->Add(call);
  if (!IsFromLibrary(call)) return;
  // The program has found the lookup with `dlsym`, so its name and end are not known.
  if (Mode() == TraceMode::kSummary) return Summary::The().AddUnnamedCall();
  std::string line = LineStart();
  call.AppendTo(line);
  Output::The().Write(line += '\n');
}

}  // namespace

constinit const Observer observer = ObserveCall;

void Lookup::Add(const DeviceCall& call) {
  if (Mode() == TraceMode::kSteps) {
    steps_ += "    ";
    call.AppendTo(steps_);
    steps_ += '\n';
  }
  chain_.Add(call);
}

void Lookup::Finish(const char* kind, const std::string& value) {
  const Chain::Map* const map = chain_.source();
  const std::string source = map == nullptr ? "" : DisplayName(map->name);
  if (Mode() == TraceMode::kSummary) return Summary::The().AddLookup(key_, kind, source, value);
  line_ += " = " + value + (map == nullptr ? ", the default" : " from " + source) + "; asked ";
  WriteLine();
}

void Lookup::FinishHandOver() {
  if (Mode() == TraceMode::kSummary) return;
  line_ += "; handed to ";
  WriteLine();
}

void Lookup::WriteLine() {
  line_ += Join(chain_.maps(), ", ", [](const Chain::Map& map) { return DisplayName(map.name); });
  Output::The().Write((line_ += '\n') += steps_);
}

}  // namespace cadrova::tools
