# What is installed where, and in which Debian package: runtime (module, platform libraries, key-store tool, system
# scripts), dev (headers, package files), host (sorel), simulator (zqsim).

include(CMakePackageConfigHelpers)

set(ZQ_INCLUDE_FOLDER ${CMAKE_INSTALL_INCLUDEDIR}/zqutil)
# Found by CMake and pkg-config without a word, wherever the libraries are.
set(ZQ_CMAKE_FOLDER lib/cmake/zqutil)
set(ZQ_PKGCONFIG_FOLDER lib/pkgconfig)
set(ZQ_PREFIX_FROM_PKGCONFIG ../..)

# zq_install_library(TARGET [HEADERS files...]): a platform library that others may build against.
function(zq_install_library target)
  cmake_parse_arguments(ARG "" "" "HEADERS" ${ARGN})
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
  target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:${ZQ_INCLUDE_FOLDER}>)
  install(TARGETS ${target} EXPORT zqutil LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime)
  if(ARG_HEADERS)
    install(FILES ${ARG_HEADERS} DESTINATION ${ZQ_INCLUDE_FOLDER} COMPONENT dev)
  endif()
endfunction()

# zq_install_module(TARGET COMPONENT): a library that is loaded at run time and linked by nobody.
function(zq_install_module target component)
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
  install(TARGETS ${target} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${component})
endfunction()

# zq_install_program(TARGET COMPONENT)
function(zq_install_program target component)
  install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component})
endfunction()

# The package files for those who write against the platform libraries, or host modules. Last, when all
# libraries are known.
function(zq_install_package_files)
  install(EXPORT zqutil NAMESPACE zqutil:: FILE zqutil-targets.cmake DESTINATION ${ZQ_CMAKE_FOLDER} COMPONENT dev)
  configure_package_config_file(${PROJECT_SOURCE_DIR}/packaging/zqutil-config.cmake.in
                                ${CMAKE_BINARY_DIR}/packaging/zqutil-config.cmake
                                INSTALL_DESTINATION ${ZQ_CMAKE_FOLDER})
  write_basic_package_version_file(${CMAKE_BINARY_DIR}/packaging/zqutil-config-version.cmake
                                   COMPATIBILITY SameMajorVersion)
  configure_file(${PROJECT_SOURCE_DIR}/packaging/zqutil.pc.in ${CMAKE_BINARY_DIR}/packaging/zqutil.pc @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/packaging/zqutil-config.cmake
                ${CMAKE_BINARY_DIR}/packaging/zqutil-config-version.cmake
          DESTINATION ${ZQ_CMAKE_FOLDER} COMPONENT dev)
  install(FILES ${CMAKE_BINARY_DIR}/packaging/zqutil.pc DESTINATION ${ZQ_PKGCONFIG_FOLDER} COMPONENT dev)
endfunction()
