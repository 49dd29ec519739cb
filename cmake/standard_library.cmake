# Callers, the library and the core exchange std::string objects, so all must use the same standard
# library.

# Sets `result` to the standard library that the compiler uses with `flag`: libc++, libstdc++ or none.
function(cadrova_find_standard_library flag result)
  set(${result} none PARENT_SCOPE)
  foreach(library_and_macro libc++:_LIBCPP_VERSION libstdc++:__GLIBCXX__)
    string(REPLACE ":" ";" pair ${library_and_macro})
    list(GET pair 0 library)
    list(GET pair 1 macro)
    try_compile(has_it
      SOURCE_FROM_CONTENT standard_library.cpp
        "#include <cstddef>\n#ifndef ${macro}\n#error\n#endif\nint main() {}\n"
      COMPILE_DEFINITIONS ${flag} LINK_OPTIONS ${flag} NO_CACHE)
    if(has_it)
      set(${result} ${library} PARENT_SCOPE)
      return()
    endif()
  endforeach()
endfunction()
