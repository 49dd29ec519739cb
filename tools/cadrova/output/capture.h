// Captures or discards what the library prints to standard output.
#pragma once

#include <functional>
#include <string>

namespace cadrova::tools {

// Runs `action` and returns what it prints. Throws a Failure if the output can't be stored.
std::string CaptureStdout(const std::function<void()>& action);

// Runs `action` and discards what it prints.
void DiscardStdout(const std::function<void()>& action);

}  // namespace cadrova::tools
