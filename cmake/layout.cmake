# The build tree has the folders of an installation. Programs and libraries find other files relative
# to their own path, so they work in both. A multi-config generator has one tree per configuration.

if(CADROVA_INSTALL)
  include(GNUInstallDirs)
else()
  set(CMAKE_INSTALL_BINDIR bin)
  set(CMAKE_INSTALL_LIBDIR lib)
  set(CMAKE_INSTALL_DATADIR share)
  set(CMAKE_INSTALL_INCLUDEDIR include)
endif()
foreach(kind BINDIR LIBDIR DATADIR INCLUDEDIR)
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${kind}}")
    message(FATAL_ERROR "CMAKE_INSTALL_${kind} is '${CMAKE_INSTALL_${kind}}'; make it relative to the "
                        "prefix, such as lib or bin, because installed files find one another by "
                        "relative paths")
  endif()
endforeach()
set(CADROVA_BUILD_TREE ${PROJECT_BINARY_DIR})
get_property(is_multi_config GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
if(is_multi_config)
  string(APPEND CADROVA_BUILD_TREE /$<CONFIG>)
endif()
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CADROVA_BUILD_TREE}/${CMAKE_INSTALL_BINDIR})
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CADROVA_BUILD_TREE}/${CMAKE_INSTALL_LIBDIR})

# The build tree and the installation have the same run paths. The folders of libraries that are given
# by path are added.
file(RELATIVE_PATH to_libraries /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
set(CMAKE_INSTALL_RPATH $ORIGIN/${to_libraries})
set(CMAKE_INSTALL_RPATH_USE_LINK_PATH ON)
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
set(CMAKE_SKIP_INSTALL_RPATH OFF)
