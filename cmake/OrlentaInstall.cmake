# SPDX-License-Identifier: Apache-2.0
# What `cmake --install` puts where: headers, libraries, tools, the manual, the CMake package and the pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS ${ORLENTA_LIBRARIES} EXPORT orlentaTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/orlenta ${PROJECT_BINARY_DIR}/include/orlenta
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")
if(TARGET orlenta_cli)
    install(TARGETS orlenta_cli)
endif()

# What orlentac's programs are written against: no interface, and good for the library of the same installation alone.
set(internal_dir ${CMAKE_INSTALL_INCLUDEDIR}/orlenta/internal)
foreach(header catalogue/region.hpp core/descriptor.hpp entry/index.hpp per/bit_source.hpp program/codec.hpp program/format.hpp)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES ${PROJECT_SOURCE_DIR}/lib/${header} DESTINATION ${internal_dir}/${folder})
endforeach()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/orlenta)
# The tools are a component of their own: a system may have the library and no tools. A compiler that runs on the build
# machine alone is of no use where the library goes.
if(TARGET orlentac AND NOT ORLENTA_HOST_ORLENTAC)
    install(TARGETS orlentac EXPORT orlentaCompilerTargets)
    install(EXPORT orlentaCompilerTargets NAMESPACE orlenta:: DESTINATION ${package_dir})
    install(TARGETS orlenta_schema orlenta_schema_static EXPORT orlentaTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
install(EXPORT orlentaTargets NAMESPACE orlenta:: DESTINATION ${package_dir})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/orlentaConfig.cmake.in
    ${PROJECT_BINARY_DIR}/orlentaConfig.cmake INSTALL_DESTINATION ${package_dir} PATH_VARS internal_dir)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/orlentaConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/orlentaConfig.cmake ${PROJECT_BINARY_DIR}/orlentaConfigVersion.cmake
    DESTINATION ${package_dir})
if(EXISTS ${CMAKE_CURRENT_LIST_DIR}/OrlentaCompile.cmake)
    install(FILES ${CMAKE_CURRENT_LIST_DIR}/OrlentaCompile.cmake DESTINATION ${package_dir})
endif()

# Paths relative to the file itself, so that the installed tree can be moved.
file(RELATIVE_PATH prefix_from_pkgconfig /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(${CMAKE_CURRENT_LIST_DIR}/orlenta.pc.in ${PROJECT_BINARY_DIR}/orlenta.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orlenta.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The manual's pages as they are, and what they show.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}
    FILES_MATCHING PATTERN "*.md" PATTERN "*.svg" PATTERN "*.png")
install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/NOTICE
    DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${PROJECT_SOURCE_DIR}/docs/liborlenta.3 DESTINATION ${CMAKE_INSTALL_MANDIR}/man3)

# `cpack` in the build's folder makes a tarball of all this.
if(PROJECT_IS_TOP_LEVEL)
    set(CPACK_GENERATOR TXZ)
    set(CPACK_SYSTEM_NAME ${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR})
    set(CPACK_PACKAGE_VENDOR "the orlenta authors")
    set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
    set(CPACK_STRIP_FILES ON)
    include(CPack)
endif()
