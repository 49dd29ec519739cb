// A program that loads the library locally, resolves a lookup with `dlsym`, calls it and unloads
// the library, twice. It ends with status 3.

#include <dlfcn.h>

#include <cstdio>
#include <string>

// The fakes never release some memory. After they are unloaded, the leak checker would report it.
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
    auto* const look_up = reinterpret_cast<int (*)(std::string, int)>(dlsym(library, kName));
    if (look_up == nullptr) return 1;
    std::printf("%d\n", look_up("ring", 4));
    dlclose(library);
  }
  return 3;
}
