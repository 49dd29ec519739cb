#include "lookup/recording.h"

#include <map>

#include "output/console.h"

using cadrova::tools::Step;

namespace {

std::map<std::string, std::string>& Overrides() {
  static std::map<std::string, std::string> overrides;
  return overrides;
}

// Who listens, if anybody.
const Listener* hears = nullptr;

Hearing Hear(const std::function<Value()>& ask, bool nothing_exists) {
  Hearing heard;
  const auto hear = [&](Step& step) {
    if (step.exists != nullptr && nothing_exists) *step.exists = 0;
    if (step.property != nullptr) heard.properties.emplace_back(step.name, *step.property);
    step.AppendTo(heard.steps.emplace_back());
    heard.chain.Add(step);
  };
  heard.printed = PrintedBy([&] { Listen(hear, [&] { heard.value = ask(); }); });
  return heard;
}

}  // namespace

void cadrova::tools::Heard(Step& step) {
  if (step.property != nullptr) {
    const auto found = Overrides().find(step.name);
    if (found != Overrides().end()) {
      *step.property = found->second.empty() ? step.key : found->second;
    }
  }
  if (hears != nullptr) (*hears)(step);
}

void Listen(const Listener& listener, const std::function<void()>& act) {
  hears = &listener;
  act();
  hears = nullptr;
}

Hearing Hear(const std::function<Value()>& ask) { return Hear(ask, false); }
Hearing HearWholeChain(const std::function<Value()>& ask) { return Hear(ask, true); }

void OverrideProperty(const std::string& key, const std::string& value) {
  Overrides().insert_or_assign(key, value);
}
