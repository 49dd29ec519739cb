#include "traced_lookup.h"

#include "cadrova/cadrova.h"
#include "summary.h"

namespace cadrova::tools {
namespace {

void WriteLine(RunningLookup& lookup, const char* before_maps) {
  const MapList& maps = lookup.chain.maps();
  if (!maps.IsComplete()) return Output::Instance().ReportLostLine();
  lookup.line += maps.size() == 0 ? "; no calls to the core seen" : before_maps;
  for (std::size_t i = 0; i < maps.size(); ++i) {
    if (i != 0) lookup.line += ", ";
    AppendDisplayName(lookup.line, maps[i].name);
  }
  lookup.line += '\n';
  Output::Instance().Write(lookup.line += lookup.steps);
}

void WriteUnnamedCall(const DeviceCall& call, Thread& thread, const void* frame) {
  RunningLookup& lookup = thread.Push(frame);
  const RunningLookup::InUse in_use(lookup);
  thread.AppendIdsTo(lookup.line);
  call.AppendTo(lookup.line);
  Output::Instance().Write(lookup.line += '\n');
  thread.Pop(frame);
}

void Record(const DeviceCall& call, const void* frame) {
  const ErrnoKeeper errno_keeper;
  Thread* const thread = Thread::Current();
  if (thread == nullptr) return Output::Instance().ReportLostLine();
  if (RunningLookup* const lookup = thread->FindCallerOf(frame)) {
    if (lookup->is_in_use) return;  // A signal handler has interrupted the trace of this lookup.
    const RunningLookup::InUse in_use(*lookup);
    if (Mode() == TraceMode::kSteps) {
      lookup->steps += "    ";
      call.AppendTo(lookup->steps);
      lookup->steps += '\n';
    }
    lookup->chain.Add(call);
  } else if (Mode() == TraceMode::kSummary) {
    // The program resolved the lookup with `dlsym`, so its name and its end are unknown.
    CountUnnamedCall();
  } else {
    WriteUnnamedCall(call, *thread, frame);
  }
}

}  // namespace

bool IsObserved(DeviceCall::Type type, Caller caller, const void* address) {
  if (caller == Caller::kLibrary) return true;
  // The program may read properties itself, and the core may call itself.
  if (caller == Caller::kOther && type != DeviceCall::Type::kGetProperty) {
    const ErrnoKeeper errno_keeper;
    Output::Instance().ReportUnknownCaller(address);
  }
  return false;
}

void ObserveCall(DeviceCall& call) { Record(call, __builtin_frame_address(0)); }

void RecordInTrace(const DeviceCall& call, const std::string&) {
  const Resolution resolution = NextDefinition<android::getCustIntFeature>::Find(call.caller);
  if (resolution.caller == Caller::kLibrary) Record(call, __builtin_frame_address(0));
}

void ReportNoDefinition(const char* function) {
  const ErrnoKeeper errno_keeper;
  Output::Instance().ReportNoDefinition(function);
}

bool TracedLookup::IsPartOfLookup(const void* frame) {
  const ErrnoKeeper errno_keeper;
  Thread* const thread = Thread::Current();
  if (thread == nullptr) return false;
  // Only the SIM lookups call other lookups.
  const RunningLookup* const lookup = thread->FindCallerOf(frame);
  return lookup != nullptr && lookup->is_sim;
}

void TracedLookup::WriteValue(RunningLookup& lookup, bool has_source) {
  const BasicChain<MapList>& chain = lookup.chain;
  if (has_source) {
    lookup.line += " from ";
    AppendDisplayName(lookup.line, chain.maps().back().name);
  } else {
    lookup.line += chain.IsRead() ? ", the default" : ", from an unknown map";
  }
  WriteLine(lookup, "; asked ");
}

void TracedLookup::CountValue(RunningLookup& lookup, const char* kind, bool has_source) {
  const BasicChain<MapList>& chain = lookup.chain;
  TextBuffer &key = lookup.line, &value = lookup.steps;
  const std::size_t value_size = value.Text().size();
  if (has_source) {
    AppendDisplayName(value, chain.maps().back().name);
  } else if (!chain.IsRead()) {
    value += "an unknown map";
  }
  const bool is_complete = key.IsComplete() && value.IsComplete() && chain.maps().IsComplete();
  const std::string_view text = value.Text();
  if (!is_complete ||
      !CountLookup(key.Text(), kind, text.substr(value_size), text.substr(0, value_size))) {
    Output::Instance().ReportLostLine();
  }
}

void TracedLookup::FinishSetSim() {
  const ErrnoKeeper errno_keeper;
  RunningLookup* const lookup = FindLookup();
  if (lookup == nullptr || Mode() == TraceMode::kSummary) return;
  const RunningLookup::InUse in_use(*lookup);
  WriteLine(*lookup, "; handed to ");
}

}  // namespace cadrova::tools
