# SPDX-License-Identifier: MIT
# What `cmake --install` puts where: both libraries, the public headers (include/jwcg), the CMake
# package and the pkg-config file. The program installs itself (tools/jwcg).
include(CMakePackageConfigHelpers)

set(JWCG_INSTALL_HEADERDIR ${CMAKE_INSTALL_INCLUDEDIR}/jwcg)
set(JWCG_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/jwcg)

# An installed tree works wherever it lies: libjwcg finds libjwbasic beside itself.
set_target_properties(jwbasic jwcg PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS jwbasic jwcg EXPORT jwcgTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${JWCG_INSTALL_HEADERDIR}
    FILES_MATCHING PATTERN "*.h")

# --- CMake package ---------------------------------------------------------------------------------
install(EXPORT jwcgTargets NAMESPACE jw:: DESTINATION ${JWCG_INSTALL_CMAKEDIR})
configure_package_config_file(
    ${CMAKE_CURRENT_LIST_DIR}/jwcgConfig.cmake.in ${PROJECT_BINARY_DIR}/jwcgConfig.cmake
    INSTALL_DESTINATION ${JWCG_INSTALL_CMAKEDIR}
    PATH_VARS JWCG_INSTALL_HEADERDIR)
# Before 1.0 a minor release may change the interface.
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/jwcgConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/jwcgConfig.cmake ${PROJECT_BINARY_DIR}/jwcgConfigVersion.cmake
    DESTINATION ${JWCG_INSTALL_CMAKEDIR})

# --- pkg-config ------------------------------------------------------------------------------------
file(RELATIVE_PATH JWCG_PC_TO_PREFIX
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" JWCG_PC_TO_PREFIX "${JWCG_PC_TO_PREFIX}")
foreach(pair "LIBDIR:${CMAKE_INSTALL_LIBDIR}" "HEADERDIR:${JWCG_INSTALL_HEADERDIR}")
    string(REGEX MATCH "^([A-Z]+):(.*)$" unused "${pair}")
    set(name ${CMAKE_MATCH_1})
    set(path ${CMAKE_MATCH_2})
    if(NOT IS_ABSOLUTE "${path}")
        set(path "\${prefix}/${path}")
    endif()
    set(JWCG_PC_${name} "${path}")
endforeach()
configure_file(${CMAKE_CURRENT_LIST_DIR}/jwcg.pc.in ${PROJECT_BINARY_DIR}/jwcg.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/jwcg.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# --- documents -------------------------------------------------------------------------------------
install(FILES
    ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR})
