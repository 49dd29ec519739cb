// The default-map int lookup over the stand-in core, so often on each of so many threads.

#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

#include "cadrova/cadrova.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "%s: use THREADS CALLS\n", argv[0]);
    return 2;
  }
  std::vector<std::thread> threads(static_cast<std::size_t>(std::atol(argv[1])));
  for (std::thread& thread : threads) {
    thread = std::thread([calls = std::atol(argv[2])] {
      for (long call = 0; call < calls; ++call) android::getCustIntFeature("camera.max_zoom", 0);
    });
  }
  for (std::thread& thread : threads) thread.join();
}
