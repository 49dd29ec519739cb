// Ends a command: one line on standard error, and an exit status.
#pragma once

#include <stdexcept>
#include <string>

#include "cadrova/host.h"

namespace cadrova::tools {

class Failure : public std::runtime_error {
 public:
  explicit Failure(const std::string& message, int status = 2)
      : std::runtime_error("cadrova: " + message), status_(status) {}

  // In the format of compiler messages: the file comes first.
  explicit Failure(const host::Error& error) : std::runtime_error(ToString(error)) {}

  int status() const { return status_; }

 private:
  int status_ = 2;
};

}  // namespace cadrova::tools
