# The build tree looks as it is installed, so that what finds another file by its own place does so
# in both: programs their libraries, libraries one another, and the stand-in core its sample.

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
    message(FATAL_ERROR "CMAKE_INSTALL_${kind} must be relative to the prefix, as lib and bin are: "
                        "what is installed finds its other parts by its own place")
  endif()
endforeach()
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_BINDIR})
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR})

# The same run paths in both; libraries given by path stay where they are and are found there.
file(RELATIVE_PATH to_libraries ${CMAKE_RUNTIME_OUTPUT_DIRECTORY} ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CMAKE_INSTALL_RPATH $ORIGIN/${to_libraries})
set(CMAKE_INSTALL_RPATH_USE_LINK_PATH ON)
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
set(CMAKE_SKIP_INSTALL_RPATH OFF)
