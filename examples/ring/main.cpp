#include <iostream>

#include "ring.h"

int main() {
  const int seconds = RingSeconds();
  std::cout << "rings for " << seconds << " seconds\n";
}
