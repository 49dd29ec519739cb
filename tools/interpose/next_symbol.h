// Finds the next definition of a function that this binary also defines.
#pragma once

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace cadrova::tools {

// The symbol name of the function `own`, which depends on the standard library.
template <auto* own>
const char* Symbol() {
  Dl_info symbol;
  dladdr(reinterpret_cast<const void*>(own), &symbol);
  return symbol.dli_sname;
}

// The next definition of the function `own`.
template <auto* own>
class Next {
 public:
  // If no other definition was loaded together with this binary, searches in each call: the program
  // may load and unload the core at any time. If it loads the core locally, `RTLD_NEXT` does not
  // find it, but a search that starts at the library does.
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

  // NULL if there was no definition, and before the initialisers of this binary have run.
  static inline void* const at_load_ = dlsym(RTLD_NEXT, Symbol<own>());
};

}  // namespace cadrova::tools
