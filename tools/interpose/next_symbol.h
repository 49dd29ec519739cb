// Finds the definition of a function that follows our own.
#pragma once

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace cadrova::tools {

// The name of `own` in the symbol table, which depends on the standard library.
template <auto* own>
const char* Symbol() {
  Dl_info symbol;
  dladdr(reinterpret_cast<const void*>(own), &symbol);
  return symbol.dli_sname;
}

// The next definition of `own`.
template <auto* own>
class Next {
 public:
  // Searches anew for each call if there was no definition when we were loaded: the program may
  // load one later and unload it again. If the program loads it locally, only the library that
  // calls it finds it.
  static decltype(own) Find() {
    void* next = at_load_ != nullptr ? at_load_ : dlsym(RTLD_NEXT, Symbol<own>());
    if (next == nullptr) next = FindInLibrary();
    return reinterpret_cast<decltype(own)>(next);
  }

 private:
  static void* FindInLibrary() {
    void* const library = dlopen("libcadrova_cpp.so", RTLD_LAZY | RTLD_NOLOAD);
    void* const next = library == nullptr ? nullptr : dlsym(library, Symbol<own>());
    if (next == nullptr) {
      std::fprintf(stderr, "libcadrova_trace.so: no other definition of %s is loaded\n",
                   Symbol<own>());
      std::abort();
    }
    dlclose(library);
    return next;
  }

  // NULL if there was none, and before our initialisers have run.
  static inline void* const at_load_ = dlsym(RTLD_NEXT, Symbol<own>());
};

}  // namespace cadrova::tools
