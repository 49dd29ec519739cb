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

# libstdc++ has other types with each of these settings. If this folder is compiled with one, callers
# get a macro such as CADROVA_GLIBCXX_DEBUG, and cadrova.h rejects callers with another setting.
get_directory_property(settings COMPILE_DEFINITIONS)
get_directory_property(options COMPILE_OPTIONS)
set(settings "${settings};${options};${CMAKE_CXX_FLAGS}")
if(is_multi_config)
  foreach(config IN LISTS CMAKE_CONFIGURATION_TYPES)
    string(TOUPPER ${config} CONFIG)
    string(APPEND settings ";$<$<CONFIG:${config}>:${CMAKE_CXX_FLAGS_${CONFIG}}>")
  endforeach()
else()
  string(TOUPPER "${CMAKE_BUILD_TYPE}" CONFIG)
  string(APPEND settings ";${CMAKE_CXX_FLAGS_${CONFIG}}")
endif()
string(REPLACE " " ";" settings "${settings}")
set_target_properties(cadrova_standard_library PROPERTIES CADROVA_SETTINGS "${settings}")
set(evaluated "$<GENEX_EVAL:$<TARGET_PROPERTY:cadrova_standard_library,CADROVA_SETTINGS>>")
string(GENEX_STRIP "${settings}" unconditional)
set(CADROVA_SETTING_FLAGS)  # for packages
foreach(setting _GLIBCXX_DEBUG _GLIBCXX_USE_CXX11_ABI=0)
  string(MAKE_C_IDENTIFIER CADROVA${setting} macro)
  target_compile_definitions(cadrova_standard_library INTERFACE
    "$<$<BOOL:$<FILTER:${evaluated},INCLUDE,^(-D)?${setting}(=|$)>>:${macro}>")
  if(unconditional MATCHES "(^|;)(-D)?${setting}(=|;|$)")
    string(APPEND CADROVA_SETTING_FLAGS " -D${macro}")
  elseif(CADROVA_INSTALL AND settings MATCHES "[:;](-D)?${setting}[=;>]")
    message(FATAL_ERROR "${setting} is set for some configurations or languages only, which cadrova's "
                        "packages can't describe; set it in CMAKE_CXX_FLAGS, or set CADROVA_INSTALL=OFF")
  endif()
endforeach()

add_library(cadrova_flags INTERFACE)
target_link_libraries(cadrova_flags INTERFACE cadrova_standard_library)
target_compile_options(cadrova_flags INTERFACE
  -Wall -Wextra -Wshadow -Wformat=2 $<$<BOOL:${CADROVA_STRICT}>:-Werror> ${CADROVA_HARDENING})
if(CADROVA_SANITIZERS)
  set(sanitize -fsanitize=${CADROVA_SANITIZERS} -fno-sanitize-recover=all)
  target_compile_options(cadrova_flags INTERFACE ${sanitize} -fno-omit-frame-pointer)
  target_link_options(cadrova_flags INTERFACE ${sanitize})
endif()
