# Imports the libraries that are given by path, instead of the fakes, and checks them before anything
# is built. They are linked by file name, because they may have no SONAME.

set(cadrova_compiles_for "${CMAKE_CXX_COMPILER} compiles for ${CADROVA_STANDARD_LIBRARY}")
if(CADROVA_STANDARD_LIBRARY_FLAG)
  string(APPEND cadrova_compiles_for " (${CADROVA_STANDARD_LIBRARY_FLAG})")
endif()

# Stops if the library at the path in `variable` needs the other standard library, and not this one.
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

# Defines `target` for the library at the path in `variable`, which replaces the fake with the file name
# `fake`. `program` must link with it.
function(cadrova_import_given target variable fake program)
  cmake_path(ABSOLUTE_PATH ${variable} BASE_DIRECTORY ${CMAKE_SOURCE_DIR} NORMALIZE)
  set(${variable} ${${variable}} PARENT_SCOPE)
  if(NOT EXISTS "${${variable}}" OR IS_DIRECTORY "${${variable}}")
    message(FATAL_ERROR "${variable}: no library '${${variable}}'")
  endif()
  cadrova_reject_other_standard_library(${variable})
  add_library(${target} SHARED IMPORTED GLOBAL)
  set_target_properties(${target} PROPERTIES
    IMPORTED_LOCATION ${${variable}} IMPORTED_NO_SONAME ON)
  try_compile(links
    SOURCE_FROM_CONTENT program.cpp "#include <string>
      namespace android::base { std::string GetProperty(const std::string&, const std::string&); }
      int main() { ${program} }"
    COMPILE_DEFINITIONS ${CADROVA_STANDARD_LIBRARY_FLAG}
    LINK_OPTIONS ${CADROVA_STANDARD_LIBRARY_FLAG} -Wl,--allow-shlib-undefined
    LINK_LIBRARIES ${target} CXX_STANDARD 17 CXX_STANDARD_REQUIRED ON NO_CACHE OUTPUT_VARIABLE output)
  if(NOT links)
    string(REGEX MATCH "[^\n]*( find | undefined |ncompatible|not recognized| error: )[^\n]*" reason "${output}")
    message(FATAL_ERROR "${variable}: '${${variable}}' can't be linked; ${cadrova_compiles_for}, and "
                        "the linker says: ${reason}")
  endif()
  # After a build with the fake, it would be loaded instead.
  string(REPLACE $<CONFIG> * folders "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
  file(GLOB fakes "${folders}/${fake}")
  list(REMOVE_ITEM fakes "${${variable}}")
  if(fakes)
    file(REMOVE ${fakes})
  endif()
endfunction()

if(CADROVA_CORE_LIBRARY)
  cadrova_import_given(cadrova_ffi CADROVA_CORE_LIBRARY libcadrova_ffi.so "")
endif()
if(CADROVA_BASE_LIBRARY)
  if(NOT EXISTS "${CADROVA_BASE_INCLUDE_DIR}/android-base/properties.h")
    message(FATAL_ERROR "CADROVA_BASE_INCLUDE_DIR: no android-base/properties.h in "
                        "'${CADROVA_BASE_INCLUDE_DIR}'; set it to the include folder of the libbase "
                        "that CADROVA_BASE_LIBRARY names")
  endif()
  cadrova_import_given(cadrova_base CADROVA_BASE_LIBRARY libbase.so "android::base::GetProperty({}, {});")
  target_include_directories(cadrova_base INTERFACE ${CADROVA_BASE_INCLUDE_DIR})
endif()
