// The next definition of a function that stands in front of it.
#pragma once

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace cadrova::tools {

// Its name in the symbol table, whatever that is under this standard library.
template <auto* own>
const char* Symbol() {
  Dl_info symbol;
  dladdr(reinterpret_cast<const void*>(own), &symbol);
  return symbol.dli_sname;
}

// The next definition of `own`. One that was there when we were loaded stays; one that the program
// loads may go again, so it is found anew for each call. Where the program keeps it to itself, it
// is found through the library that asks.
template <auto* own>
class Next {
 public:
  static decltype(own) Find() {
    void* next = kAtStart != nullptr ? kAtStart : dlsym(RTLD_NEXT, Symbol<own>());
    if (next == nullptr) next = InLibrary();
    return reinterpret_cast<decltype(own)>(next);
  }

 private:
  static void* InLibrary() {
    void* const library = dlopen("libcadrova_cpp.so", RTLD_LAZY | RTLD_NOLOAD);
    void* const next = library == nullptr ? nullptr : dlsym(library, Symbol<own>());
    if (next == nullptr) {
      std::fprintf(stderr, "libcadrova_trace.so: nobody else defines %s\n", Symbol<own>());
      std::abort();
    }
    dlclose(library);
    return next;
  }

  static inline void* const kAtStart = dlsym(RTLD_NEXT, Symbol<own>());
};

}  // namespace cadrova::tools
