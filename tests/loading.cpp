// A program that loads the library, keeps it to itself, asks it through the name of a function, and
// lets go of it; twice. It ends with status 3.

#include <dlfcn.h>

#include <cstdio>
#include <string>

// What the stand-ins keep until the process ends is lost with them when they are unloaded.
extern "C" const char* __asan_default_options() { return "detect_leaks=0"; }

int main() {
#ifdef _LIBCPP_VERSION
  constexpr char kName[] =
      "_ZN7android20getSimCustIntFeatureENSt3__112basic_stringIcNS0_11char_traitsIcEENS0_"
      "9allocatorIcEEEEi";
#else
  constexpr char kName[] =
      "_ZN7android20getSimCustIntFeatureENSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEEi";
#endif
  for (int round = 0; round < 2; ++round) {
    void* const library = dlopen(CADROVA_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return 1;
    auto* const ask = reinterpret_cast<int (*)(std::string, int)>(dlsym(library, kName));
    if (ask == nullptr) return 1;
    std::printf("%d\n", ask("held", 4));
    dlclose(library);
  }
  return 3;
}
