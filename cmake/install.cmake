# Installs everything under one prefix: the library, the fakes and the test kit, the command, the
# sample data, and packages for find_package and pkg-config. The prefix can be moved.
include(CMakePackageConfigHelpers)

# Libraries that are given by path are not installed.
set(fakes)
if(NOT CADROVA_BASE_LIBRARY)
  list(APPEND fakes cadrova_base)
endif()
if(NOT CADROVA_CORE_LIBRARY AND CADROVA_HAS_CORE)
  list(APPEND fakes cadrova_ffi)
endif()

install(TARGETS cadrova_cpp LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES include/cadrova/cadrova.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/cadrova)
if(CADROVA_INSTALL_HOST)
  install(TARGETS ${fakes} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  if(cadrova_ffi IN_LIST fakes)
    install(FILES host/data/sample.toml DESTINATION ${CMAKE_INSTALL_DATADIR}/cadrova)
  endif()
  if(TARGET cadrova_host)
    install(DIRECTORY host/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
    if(NOT CADROVA_BASE_LIBRARY)
      install(DIRECTORY host/base/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
    endif()
  endif()
endif()
if(CADROVA_BUILD_COMMAND AND fakes AND NOT CADROVA_INSTALL_HOST)
  message(STATUS "Not installing the cadrova command: it needs the fakes; set CADROVA_INSTALL_HOST=ON")
elseif(CADROVA_BUILD_COMMAND)
  install(TARGETS cadrova cadrova_trace
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(FILES tools/cadrova/share/cadrova.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES tools/cadrova/share/completion.bash RENAME cadrova
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES tools/cadrova/share/_cadrova DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
endif()

# Why the packages have no test kit. find_package prints it.
set(CADROVA_HAS_KIT OFF)
if(CADROVA_CORE_LIBRARY)
  set(CADROVA_NO_KIT
    "CADROVA_CORE_LIBRARY named a real core, which replaces the fake core; build cadrova without it")
elseif(NOT CADROVA_HAS_CORE)
  set(CADROVA_NO_KIT "toml++ was missing; install libtomlplusplus-dev and build cadrova again")
elseif(NOT CADROVA_INSTALL_HOST)
  set(CADROVA_NO_KIT "CADROVA_INSTALL_HOST was OFF; set it to ON and build cadrova again")
else()
  set(CADROVA_HAS_KIT ON)
endif()
# Where the pkg-config package finds libbase.
set(base_libdir "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
set(base_includedir "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
set(base_file libbase.so)
if(CADROVA_BASE_LIBRARY)
  cmake_path(GET CADROVA_BASE_LIBRARY PARENT_PATH base_libdir)
  cmake_path(GET CADROVA_BASE_LIBRARY FILENAME base_file)
  string(REPLACE " " "\\ " base_libdir "${base_libdir}")
  string(REPLACE " " "\\ " base_includedir "${CADROVA_BASE_INCLUDE_DIR}")
  if(CADROVA_HAS_KIT)
    message(STATUS "Installed packages refer to ${CADROVA_BASE_LIBRARY} and ${CADROVA_BASE_INCLUDE_DIR}")
  endif()
endif()
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/cadrova)
# Not into the build folder itself: if its `bin` is in PATH, find_package searches it.
set(config_dir ${PROJECT_BINARY_DIR}/CMakeFiles/package)
configure_package_config_file(cmake/cadrovaConfig.cmake.in ${config_dir}/cadrovaConfig.cmake
  INSTALL_DESTINATION ${package_dir} PATH_VARS CMAKE_INSTALL_INCLUDEDIR CMAKE_INSTALL_LIBDIR
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${config_dir}/cadrovaConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${config_dir}/cadrovaConfig.cmake ${config_dir}/cadrovaConfigVersion.cmake
  cmake/standard_library.cmake
  DESTINATION ${package_dir})

set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(prefix /)
cmake_path(RELATIVE_PATH prefix BASE_DIRECTORY /${pkgconfig_dir} OUTPUT_VARIABLE to_prefix)
foreach(package cadrova cadrova-host)
  if(package STREQUAL "cadrova" OR CADROVA_HAS_KIT)
    configure_file(cmake/${package}.pc.in ${package}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${package}.pc DESTINATION ${pkgconfig_dir})
  endif()
endforeach()

if(PROJECT_IS_TOP_LEVEL)
  # Writes the list for `uninstall`. CPack also runs this code, to install into its own folder.
  install(CODE [[
    if(NOT CMAKE_INSTALL_PREFIX MATCHES "/_CPack_Packages/")
      string(REGEX REPLACE "(^|;)/" "\\1$ENV{DESTDIR}/" installed "${CMAKE_INSTALL_MANIFEST_FILES}")
      string(REPLACE ";" "\n" installed "${installed}")
      file(WRITE "${CMAKE_CURRENT_LIST_DIR}/installed.txt" "${installed}\n")
    endif()]])
  add_custom_target(uninstall
    COMMAND ${CMAKE_COMMAND} -P ${PROJECT_SOURCE_DIR}/cmake/uninstall.cmake VERBATIM)
  set(CPACK_GENERATOR TGZ)
  set(CPACK_SYSTEM_NAME ${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR})
  set(CPACK_VERBATIM_VARIABLES ON)
  set(CPACK_STRIP_FILES ON)
  include(CPack)
endif()
