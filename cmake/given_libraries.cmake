# Checks the libraries that are given by path, instead of the fakes, before anything is built.

foreach(library CADROVA_CORE_LIBRARY CADROVA_BASE_LIBRARY)
  if(${library} AND (NOT EXISTS "${${library}}" OR IS_DIRECTORY "${${library}}"))
    message(FATAL_ERROR "${library}: no library '${${library}}'")
  endif()
endforeach()
if(CADROVA_BASE_LIBRARY AND NOT EXISTS "${CADROVA_BASE_INCLUDE_DIR}/android-base/properties.h")
  message(FATAL_ERROR "CADROVA_BASE_INCLUDE_DIR: no android-base/properties.h in "
                      "'${CADROVA_BASE_INCLUDE_DIR}'; set it to the include folder of the libbase "
                      "that CADROVA_BASE_LIBRARY names")
endif()

set(cadrova_compiles_for "${CMAKE_CXX_COMPILER} compiles for ${CADROVA_STANDARD_LIBRARY}")
if(CADROVA_STANDARD_LIBRARY_FLAG)
  string(APPEND cadrova_compiles_for " (${CADROVA_STANDARD_LIBRARY_FLAG})")
endif()

# Stops if what the library that `variable` names needs is of the other standard library only.
function(cadrova_reject_other_standard_library variable)
  if(NOT CMAKE_READELF)
    return()
  endif()
  execute_process(COMMAND ${CMAKE_READELF} --wide --dynamic --dyn-syms ${${variable}}
    OUTPUT_VARIABLE needed ERROR_QUIET)
  set(needs_libc++ "NEEDED[^\n]*\\[libc\\+\\+| UND [^\n]*St3__1")
  set(needs_libstdc++ "NEEDED[^\n]*\\[libstdc\\+\\+| UND [^\n]*St7__cxx11")
  set(other libc++ libstdc++)
  list(REMOVE_ITEM other ${CADROVA_STANDARD_LIBRARY})
  if(needed MATCHES "${needs_${other}}" AND NOT needed MATCHES "${needs_${CADROVA_STANDARD_LIBRARY}}")
    message(FATAL_ERROR "${variable}: '${${variable}}' is built for ${other}, but "
                        "${cadrova_compiles_for}; set CMAKE_CXX_COMPILER and "
                        "CADROVA_STANDARD_LIBRARY_FLAG to compile for ${other}, or ${variable} to a "
                        "library that is built for ${CADROVA_STANDARD_LIBRARY}")
  endif()
endfunction()

# The core's functions are C functions, so a core for another standard library links too.
if(CADROVA_CORE_LIBRARY)
  cadrova_reject_other_standard_library(CADROVA_CORE_LIBRARY)
endif()

# The name of GetProperty contains the standard library. What libbase itself needs does not matter.
if(CADROVA_BASE_LIBRARY)
  try_compile(links
    SOURCE_FROM_CONTENT get_property.cpp "#include <string>
      namespace android::base { std::string GetProperty(const std::string&, const std::string&); }
      int main() { android::base::GetProperty({}, {}); }"
    LINK_OPTIONS ${CADROVA_STANDARD_LIBRARY_FLAG} -Wl,--allow-shlib-undefined
    COMPILE_DEFINITIONS ${CADROVA_STANDARD_LIBRARY_FLAG}
    LINK_LIBRARIES ${CADROVA_BASE_LIBRARY} CXX_STANDARD 17 CXX_STANDARD_REQUIRED ON NO_CACHE)
  if(NOT links)
    cadrova_reject_other_standard_library(CADROVA_BASE_LIBRARY)
    message(FATAL_ERROR "CADROVA_BASE_LIBRARY: android::base::GetProperty of "
                        "'${CADROVA_BASE_LIBRARY}' does not link, and ${cadrova_compiles_for}; set it "
                        "to a libbase for this standard library and processor")
  endif()
endif()
