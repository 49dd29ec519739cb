// A program that loads a library locally, resolves a lookup with `dlsym`, calls it and unloads the
// library, twice. Its first argument is a library that exports `look_up`; without an argument, it
// loads the library itself. Its second argument is a library that it loads before. It ends with
// status 3.

#include <dlfcn.h>

#include <cstdio>
#include <string>

// The fakes never release some memory. After they are unloaded, the leak checker would report it.
extern "C" const char* __asan_default_options() { return "detect_leaks=0"; }

int main(int count, char** arguments) {
#ifdef _LIBCPP_VERSION
  constexpr char kName[] =
      "_ZN7android20getSimCustIntFeatureENSt3__112basic_stringIcNS0_11char_traitsIcEENS0_"
      "9allocatorIcEEEEi";
#else
  constexpr char kName[] =
      "_ZN7android20getSimCustIntFeatureENSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEEi";
#endif
  if (count == 3 && dlopen(arguments[2], RTLD_NOW | RTLD_LOCAL) == nullptr) return 1;
  for (int round = 0; round < 2; ++round) {
    void* const library =
        dlopen(count == 1 ? CADROVA_LIBRARY : arguments[1], RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return 1;
    auto* const look_up =
        reinterpret_cast<int (*)(std::string, int)>(dlsym(library, count == 1 ? kName : "look_up"));
    if (look_up == nullptr || dlopen("./nowhere", RTLD_NOW) != nullptr) return 1;
    std::printf("%d\n", look_up("ring", 4));
    if (dlerror() == nullptr) return 1;  // The lookup must not clear the error of the program.
    dlclose(library);
  }
  return 3;
}
