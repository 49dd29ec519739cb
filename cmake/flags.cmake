# Compiler flags, as targets to link: those that callers must also use, and those of this project.

include(cmake/standard_library.cmake)
cadrova_find_standard_library("${CADROVA_STANDARD_LIBRARY_FLAG}" CADROVA_STANDARD_LIBRARY)
if(CADROVA_STANDARD_LIBRARY STREQUAL "none")
  message(FATAL_ERROR "${CMAKE_CXX_COMPILER} (${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}) "
                      "can't link a C++ program with '${CADROVA_STANDARD_LIBRARY_FLAG}'; set "
                      "CMAKE_CXX_COMPILER to one that can, or CADROVA_STANDARD_LIBRARY_FLAG to another flag")
endif()
# The flag may be only in CMAKE_CXX_FLAGS, which callers do not get.
if(CADROVA_STANDARD_LIBRARY STREQUAL "libc++")
  set(CADROVA_STANDARD_LIBRARY_FLAG -stdlib=libc++)
endif()
add_library(cadrova_standard_library INTERFACE)
add_library(cadrova::standard_library ALIAS cadrova_standard_library)
target_compile_options(cadrova_standard_library INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:${CADROVA_STANDARD_LIBRARY_FLAG}>)
target_link_options(cadrova_standard_library INTERFACE ${CADROVA_STANDARD_LIBRARY_FLAG})

include(cmake/libstdcxx_types.cmake)

add_library(cadrova_flags INTERFACE)
target_link_libraries(cadrova_flags INTERFACE cadrova_standard_library)
target_compile_options(cadrova_flags INTERFACE
  -Wall -Wextra -Wshadow -Wformat=2 $<$<BOOL:${CADROVA_STRICT}>:-Werror> ${CADROVA_HARDENING})
if(CADROVA_SANITIZERS)
  set(sanitize -fsanitize=${CADROVA_SANITIZERS} -fno-sanitize-recover=all)
  target_compile_options(cadrova_flags INTERFACE ${sanitize} -fno-omit-frame-pointer)
  target_link_options(cadrova_flags INTERFACE ${sanitize})
endif()
