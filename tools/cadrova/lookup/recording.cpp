#include "lookup/recording.h"

#include <unistd.h>

#include <set>

#include "common/json_text.h"
#include "failure.h"
#include "output/capture.h"
#include "output/console.h"

namespace cadrova::tools {
namespace {

std::map<std::string, std::string>& Overrides() {
  static std::map<std::string, std::string> overrides;
  return overrides;
}

const std::function<void(DeviceCall&)>* current_observer = nullptr;

}  // namespace

// Not the calls that the core makes, or its threads.
bool IsObserved(DeviceCall::Type, Caller caller, const void*) {
  static thread_local const bool is_main_thread = gettid() == getpid();
  return caller == Caller::kLibrary && is_main_thread;
}

void ObserveCall(DeviceCall& call) {
  if (call.property != nullptr) {
    const auto found = Overrides().find(call.name);
    if (found != Overrides().end()) {
      *call.property = found->second.empty() ? call.key : found->second;
    }
  }
  if (current_observer != nullptr) (*current_observer)(call);
  if (RecordInTrace != nullptr) RecordInTrace(call, call.name);
}

void ReportNoDefinition(const char* function) {
  static std::set<std::string> reported;
  if (!reported.emplace(function).second) return;
  PrintError("cadrova: the core does not define " + std::string(function));
}

void Observe(const std::function<void(DeviceCall&)>& observe, const std::function<void()>& action) {
  current_observer = &observe;
  action();
  current_observer = nullptr;
}

const ConsultedMap* SourceOf(const Chain& chain, const Value& value, const Query& query) {
  if (!chain.IsRead()) throw Failure("the lookup read no value from the core");
  // Compared as text, so that NaN is equal to NaN.
  const bool is_default = ToJsonText(value) == ToJsonText(query.default_value);
  return chain.HasSource(is_default) ? &chain.maps().back() : nullptr;
}

std::string ReturnedValue(const DeviceCall& call) {
  static TextBuffer text;
  text.Clear();
  const std::size_t value = call.AppendTo(text);
  return std::string(text.Text().substr(value));
}

Recording Record(const Query& query) {
  Recording recording;
  const auto record = [&](DeviceCall& call) {
    if (call.property != nullptr) recording.properties.emplace_back(call.name, *call.property);
    TextBuffer text;
    call.AppendTo(text);
    recording.calls.emplace_back(text.Text());
    if (call.type == DeviceCall::Type::kRead) recording.readings.push_back(ReturnedValue(call));
    recording.chain.Add(call);
  };
  recording.printed =
      CaptureStdout([&] { Observe(record, [&] { recording.value = query.Run(); }); });
  return recording;
}

Chain RecordWholeChain(const Query& query) {
  Chain chain;
  const auto record = [&](DeviceCall& call) {
    if (call.exists != nullptr) *call.exists = 0;
    chain.Add(call);
  };
  Observe(record, [&] { query.Run(); });
  return chain;
}

void OverrideProperty(const std::string& name, const std::string& value) {
  Overrides().insert_or_assign(name, value);
}

OverrideScope::OverrideScope() : overrides_(Overrides()) {}
OverrideScope::~OverrideScope() { Overrides() = std::move(overrides_); }

}  // namespace cadrova::tools
