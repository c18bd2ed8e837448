# SPDX-License-Identifier: Apache-2.0
# The message sets that come with the library.
include(OrlentaCompile)

# orlenta_region(<name> PARTS <n> FIRST_LOCAL <n>): the tables of the modules in schema/<name in lower case>, for the
# library, and the header <orlenta/name.h>. Numbers of tables without a name are set apart by FIRST_LOCAL, so that a
# name of a constant occurs once in the whole library.
function(orlenta_region name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "PARTS;FIRST_LOCAL" "")
    string(TOLOWER ${name} folder)
    file(GLOB modules CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.asn1)
    if(NOT modules)
        message(STATUS "orlenta: no modules for the region ${name}")
        return()
    endif()
    set(target orlenta_tables_${folder})
    orlenta_add_schema(${target} REGION ${name} FILES ${modules}
        HEADER orlenta/${folder}.h INCLUDE_DIR ${PROJECT_BINARY_DIR}/include
        PARTS ${arg_PARTS} FIRST_LOCAL ${arg_FIRST_LOCAL} OBJECT SHIPPED_FORMS
        PROGRAMS common single PROGRAM_LIST ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/programs.list)
    foreach(objects ${target} ${target}_common ${target}_single ${target}_index)
        orlenta_library_options(${objects})
    endforeach()
    # The shared library has all programs anyhow, so they are one; of the static one a program takes what it names.
    set_property(GLOBAL APPEND PROPERTY ORLENTA_TABLE_OBJECTS ${target} ${target}_index)
    set_property(GLOBAL APPEND PROPERTY ORLENTA_SHARED_PROGRAMS ${target}_common)
    set_property(GLOBAL APPEND PROPERTY ORLENTA_STATIC_PROGRAMS ${target}_single)
endfunction()
