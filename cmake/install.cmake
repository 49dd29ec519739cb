# lib, include and bin under one prefix, and a package for find_package(cadrova).
include(CMakePackageConfigHelpers)

# Libraries that were given by path are somebody else's, and stay where they are.
set(stand_ins base cadrova_ffi)
if(CADROVA_BASE_LIBRARY)
  list(REMOVE_ITEM stand_ins base)
endif()
if(CADROVA_CORE_LIBRARY OR NOT CADROVA_HAS_CORE)
  list(REMOVE_ITEM stand_ins cadrova_ffi)
else()
  install(FILES host/data/sample.toml DESTINATION share/cadrova)
endif()

install(TARGETS cadrova_cpp ${stand_ins} LIBRARY DESTINATION lib)
install(FILES include/cadrova/cadrova.h DESTINATION include/cadrova)
if(CADROVA_BUILD_COMMAND)
  install(TARGETS cadrova RUNTIME DESTINATION bin)
endif()

configure_package_config_file(cmake/cadrovaConfig.cmake.in cadrovaConfig.cmake
  INSTALL_DESTINATION lib/cmake/cadrova NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(cadrovaConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/cadrovaConfig.cmake ${CMAKE_BINARY_DIR}/cadrovaConfigVersion.cmake
  DESTINATION lib/cmake/cadrova)
