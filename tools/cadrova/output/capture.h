// Captures or discards what the library prints to standard output.
#pragma once

#include <functional>
#include <string>

namespace cadrova::tools {

// Runs `action` and returns what it prints. Throws a Failure if the output can't be stored.
std::string CaptureStdout(const std::function<void()>& action);

// Runs `action` and discards what it prints. Takes no time for an action inside another one, so
// long work with many lookups should be one action.
void DiscardStdout(const std::function<void()>& action);

}  // namespace cadrova::tools
