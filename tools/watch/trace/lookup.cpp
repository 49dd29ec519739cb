#include "lookup.h"

#include <dlfcn.h>

#include <cstring>

#include "output.h"
#include "summary.h"

namespace cadrova::watch {
namespace {

using What = Step::What;

std::string ToText(const Step& step) {
  std::string text;
  step.AppendTo(text);
  return text;
}

// Programs read properties for their own ends too.
bool IsLibrarys(const Step& step) {
  Dl_info asker;
  return step.what != What::kProperty ||
         (dladdr(step.caller, &asker) != 0 &&
          std::strstr(asker.dli_fname, "libcadrova_cpp.so") != nullptr);
}

}  // namespace

void Heard(Step& step) {
  if (Lookup::current != nullptr) {
    Lookup::current->Add(step);
  } else if (IsLibrarys(step)) {
    if (Shows("summary")) {
      Summary::The().AddStep();
    } else {
      Output::The().Write(ToText(step));
    }
  }
}

void Lookup::Add(const Step& step) {
  if (Shows("steps")) steps_ += "\n    " + ToText(step);
  chain_.Add(step);
}

std::string Lookup::Maps() const {
  std::string names;
  for (const Chain::Map& map : chain_.maps()) {
    names += names.empty() ? "" : ", ";
    AppendName(names, map.name);
  }
  return names;
}

void Lookup::Finish(const std::string& value, const char* kind) {
  std::string map;
  if (const auto* answered_by = chain_.answered_by()) AppendName(map, answered_by->name);
  if (Shows("summary")) return Summary::The().AddLookup(key_, kind, map, value);
  Output::The().Write(line_ + " = " + value + (map.empty() ? ", the default" : " from " + map) +
                      "; asked " + Maps() + steps_);
}

void Lookup::HandedOver() {
  if (!Shows("summary")) Output::The().Write(line_ + "; handed to " + Maps() + steps_);
}

}  // namespace cadrova::watch
