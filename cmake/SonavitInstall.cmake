# Installing: the libraries, their public headers under include/sonavit, the machines, and a CMake package
# (find_package(Sonavit): Sonavit::Platform, Sonavit::Common, Sonavit::Sonavit, Sonavit::Client, Sonavit::Machine,
# Sonavit::Simulator).
include(CMakePackageConfigHelpers)

set(SONAVIT_INCLUDE_FOLDER "${CMAKE_INSTALL_INCLUDEDIR}/sonavit")
set(SONAVIT_PACKAGE_FOLDER "${CMAKE_INSTALL_LIBDIR}/cmake/Sonavit")
set(SONAVIT_MACHINES_FOLDER "${CMAKE_INSTALL_DATADIR}/sonavit/machines")

# sonavit_install_library(<target> <name in the package>): for targets with a file set HEADERS
function(sonavit_install_library target exportName)
  add_library(Sonavit::${exportName} ALIAS ${target})
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${exportName})
  if(NOT SONAVIT_INSTALL)
    return()
  endif()
  install(
    TARGETS ${target}
    EXPORT SonavitTargets
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    FILE_SET HEADERS DESTINATION "${SONAVIT_INCLUDE_FOLDER}"
  )
endfunction()

function(sonavit_install_package)
  install(EXPORT SonavitTargets NAMESPACE Sonavit:: DESTINATION "${SONAVIT_PACKAGE_FOLDER}")
  configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/SonavitConfig.cmake.in" "${PROJECT_BINARY_DIR}/SonavitConfig.cmake"
    INSTALL_DESTINATION "${SONAVIT_PACKAGE_FOLDER}"
    NO_SET_AND_CHECK_MACRO
  )
  write_basic_package_version_file("${PROJECT_BINARY_DIR}/SonavitConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
  install(FILES "${PROJECT_BINARY_DIR}/SonavitConfig.cmake" "${PROJECT_BINARY_DIR}/SonavitConfigVersion.cmake"
          DESTINATION "${SONAVIT_PACKAGE_FOLDER}")
  if(SONAVIT_BUILD_SIMULATOR)
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/machines/" DESTINATION "${SONAVIT_MACHINES_FOLDER}")
  endif()
  install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}")

  sonavit_compiler_runtime(files)
  if(files)
    install(FILES ${files} DESTINATION "${CMAKE_INSTALL_BINDIR}")
  endif()
endfunction()
