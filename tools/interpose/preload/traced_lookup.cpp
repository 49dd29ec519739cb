#include "traced_lookup.h"

#include <dlfcn.h>

#include <cstring>

#include "output.h"
#include "summary.h"

namespace cadrova::tools {
namespace {

// The program may also read properties itself.
bool IsFromLibrary(const DeviceCall& call) {
  Dl_info caller;
  return call.type != DeviceCall::Type::kGetProperty ||
         (dladdr(call.caller, &caller) != 0 &&
          std::strstr(caller.dli_fname, "libcadrova_cpp.so") != nullptr);
}

void ObserveCall(DeviceCall& call) {
  if (TracedLookup::current != nullptr) return TracedLookup::current->Add(call);
  if (!IsFromLibrary(call)) return;
  // The program resolved the lookup with `dlsym`, so its name and its end are unknown.
  if (Mode() == TraceMode::kSummary) return Summary::Instance().AddUnnamedCall();
  std::string line = LineStart();
  call.AppendTo(line);
  Output::Instance().Write(line += '\n');
}

}  // namespace

constinit const Observer observer = ObserveCall;

void TracedLookup::Add(const DeviceCall& call) {
  if (Mode() == TraceMode::kSteps) {
    steps_ += "    ";
    call.AppendTo(steps_);
    steps_ += '\n';
  }
  chain_.Add(call);
}

void TracedLookup::Finish(const char* kind, const std::string& value) {
  const Chain::Map* const map = chain_.source();
  const std::string source = map == nullptr ? "" : DisplayName(map->name);
  if (Mode() == TraceMode::kSummary)
    return Summary::Instance().AddLookup(key_, kind, source, value);
  line_ += " = " + value + (map == nullptr ? ", the default" : " from " + source) + "; asked ";
  WriteLine();
}

void TracedLookup::FinishSetSim() {
  if (Mode() == TraceMode::kSummary) return;
  line_ += "; handed to ";
  WriteLine();
}

void TracedLookup::WriteLine() {
  line_ += Join(chain_.maps(), ", ", [](const Chain::Map& map) { return DisplayName(map.name); });
  Output::Instance().Write((line_ += '\n') += steps_);
}

}  // namespace cadrova::tools
