#include "hearing.h"

#include <map>

#include "console.h"

using cadrova::watch::Step;

namespace {

std::map<std::string, std::string>& Overrides() {
  static std::map<std::string, std::string> overrides;
  return overrides;
}

// Who listens, if anybody.
Hearing* hearing = nullptr;
bool nothing_exists = false;

Hearing Hear(const std::function<Value()>& ask, bool without_items) {
  Hearing heard;
  hearing = &heard;
  nothing_exists = without_items;
  heard.printed = PrintedBy([&] { heard.value = ask(); });
  hearing = nullptr;
  return heard;
}

}  // namespace

void cadrova::watch::Heard(Step& step) {
  if (step.property != nullptr) {
    const auto found = Overrides().find(step.name);
    if (found != Overrides().end()) {
      *step.property = found->second.empty() ? step.key : found->second;
    }
  }
  if (hearing == nullptr) return;
  if (step.exists != nullptr && nothing_exists) *step.exists = 0;
  if (step.property != nullptr) hearing->properties.emplace_back(step.name, *step.property);
  step.AppendTo(hearing->steps.emplace_back());
  hearing->chain.Add(step);
}

Hearing Hear(const std::function<Value()>& ask) { return Hear(ask, false); }
Hearing HearWholeChain(const std::function<Value()>& ask) { return Hear(ask, true); }

void OverrideProperty(const std::string& key, const std::string& value) {
  Overrides().insert_or_assign(key, value);
}
