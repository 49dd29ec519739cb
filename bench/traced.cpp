// A program to trace. Prints the time of a SIM int lookup over the fake core, in nanoseconds, to
// standard error.
//
//   bench_traced CALLS    the lookups print their lines to standard output

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "cadrova/cadrova.h"

int main(int argc, char** argv) {
  const long calls = argc == 2 ? std::atol(argv[1]) : 0;
  if (calls <= 0) {
    std::fprintf(stderr, "usage: %s CALLS, a positive number\n", argv[0]);
    return 2;
  }
  const auto start = std::chrono::steady_clock::now();
  for (long call = 0; call < calls; ++call) {
    android::getSimCustIntFeature("calling.ring_seconds", 3);
  }
  const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - start;
  std::fprintf(stderr, "%.0f\n", time.count() / static_cast<double>(calls));
}
