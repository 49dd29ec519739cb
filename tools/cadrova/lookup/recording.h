// What the library asks of the device for one question.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "interpose/chain.h"
#include "output/text.h"

struct Hearing {
  Value value;
  std::string printed;                                          // by the library
  std::vector<std::pair<std::string, std::string>> properties;  // read, in order
  std::vector<std::string> steps;                               // all that was asked, in order
  cadrova::tools::Chain chain;
};

// Asks, listening.
Hearing Hear(const std::function<Value()>& ask);

// Asks, listening, while every existence test is answered no: the whole chain is heard.
Hearing HearWholeChain(const std::function<Value()>& ask);

// While `act` runs, `listener` hears each step, and may change its answer.
using Listener = std::function<void(cadrova::tools::Step&)>;
void Listen(const Listener& listener, const std::function<void()>& act);

// The properties that hold a device's codes.
constexpr char kRegionCode[] = "ro.orvel.region", kCarrierCode[] = "persist.sys.cota.carrier";

// From now on the property reads as `value`, in the library too; empty is unset. This works in
// front of any store, and so for properties that can't be set.
void OverrideProperty(const std::string& key, const std::string& value);
