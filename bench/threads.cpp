// Measures how the default-map int lookup over the fake core scales: prints the throughput of two
// threads, divided by that of one, to standard error. It is the median of five.

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

#include "cadrova/cadrova.h"

namespace {

double Seconds(std::size_t count) {
  const auto start = std::chrono::steady_clock::now();
  std::vector<std::thread> threads(count);
  for (std::thread& thread : threads) {
    thread = std::thread([] {
      for (int call = 0; call < 3'000'000; ++call) android::getCustIntFeature("camera.max_zoom", 0);
    });
  }
  for (std::thread& thread : threads) thread.join();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

int main() {
  std::array<double, 5> ratios;
  for (double& ratio : ratios) ratio = 2 * Seconds(1) / Seconds(2);
  std::ranges::sort(ratios);
  std::fprintf(stderr, "%.2f\n", ratios[2]);
}
