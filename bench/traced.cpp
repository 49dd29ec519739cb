// A program to trace. Prints the time of an int lookup over the fake core, in nanoseconds, to
// standard error.
//
//   bench_traced default|sim CALLS    the lookups print their lines to standard output

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "cadrova/cadrova.h"

int main(int argc, char** argv) {
  const std::string lookup = argc == 3 ? argv[1] : "";
  const long calls = argc == 3 ? std::atol(argv[2]) : 0;
  const bool is_sim = lookup == "sim";
  if ((lookup != "default" && !is_sim) || calls <= 0) {
    std::fprintf(stderr, "usage: %s default|sim CALLS, a positive number\n", argv[0]);
    return 2;
  }
  const auto start = std::chrono::steady_clock::now();
  for (long call = 0; call < calls; ++call) {
    if (is_sim) {
      android::getSimCustIntFeature("calling.ring_seconds", 3);
    } else {
      android::getCustIntFeature("calling.ring_seconds", 3);
    }
  }
  const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - start;
  std::fprintf(stderr, "%.0f\n", time.count() / static_cast<double>(calls));
}
