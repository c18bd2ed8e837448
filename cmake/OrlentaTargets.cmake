# SPDX-License-Identifier: Apache-2.0
# What the targets of this tree have in common.
include(CheckLinkerFlag)

set(ORLENTA_WARNINGS -Wall -Wextra)
if(ORLENTA_WERROR)
    list(APPEND ORLENTA_WARNINGS -Werror)
endif()
set(ORLENTA_CMAKE_DIR ${CMAKE_CURRENT_LIST_DIR})

# The message sets that are built.
set(ORLENTA_REGIONS)
foreach(region CN EU US)
    if(ORLENTA_${region})
        list(APPEND ORLENTA_REGIONS ${region})
    else() # a header that an earlier configuration left would be taken for a part of the library
        string(TOLOWER ${region} folder)
        file(REMOVE ${PROJECT_BINARY_DIR}/include/orlenta/${folder}.h
            ${PROJECT_BINARY_DIR}/include/orlenta/${folder}_local.h)
    endif()
endforeach()

# Sanitizers go into everything, tables and tests included.
if(ORLENTA_SANITIZE)
    add_compile_options(-fsanitize=${ORLENTA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${ORLENTA_SANITIZE})
endif()
# Counters for coverage. Tests carry them too: the linker may take their copies of the library's inline functions.
if(ORLENTA_COVERAGE)
    add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
    add_link_options(-fprofile-instr-generate)
endif()
# Fuzzers steer by the branches that what they test takes.
function(orlenta_fuzzed target)
    if(ORLENTA_FUZZ)
        target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
    endif()
endfunction()

# Compile options of everything that goes into the library: no C++ runtime, nothing visible that is not exported.
# Exported functions call each other directly; only what preemptible.list names can be replaced. A section for each
# function, so that static programs leave out what they do not call.
function(orlenta_library_options target)
    get_property(can_share GLOBAL PROPERTY TARGET_SUPPORTS_SHARED_LIBS)
    target_compile_options(${target} PRIVATE ${ORLENTA_WARNINGS} -ffunction-sections
        $<$<BOOL:${can_share}>:-fno-semantic-interposition>
        $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics>)
    orlenta_fuzzed(${target})
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/lib PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>)
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ${can_share}
        C_VISIBILITY_PRESET hidden CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
endfunction()

# A tool, test or bench: the whole standard library is allowed.
function(orlenta_program_options target)
    target_compile_options(${target} PRIVATE ${ORLENTA_WARNINGS})
    # GCC 12 sees faults in inlined std::string, std::vector and Boost's integers that are not there: 105651 and the
    # like in its list of bugs.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        foreach(warning restrict stringop-overflow stringop-overread array-bounds maybe-uninitialized)
            target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-Wno-${warning}>)
        endforeach()
    endif()
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/lib)
endfunction()

# Linked as C, so that no C++ runtime comes in, and without start files, so that nothing runs at load time.
function(orlenta_shared_link_options target)
    set_target_properties(${target} PROPERTIES LINKER_LANGUAGE C)
    target_link_libraries(${target} PRIVATE m)
    set(preemptible ${ORLENTA_CMAKE_DIR}/preemptible.list)
    target_link_options(${target} PRIVATE -Wl,--dynamic-list=${preemptible})
    set(exports ${ORLENTA_CMAKE_DIR}/orlenta.map)
    target_link_options(${target} PRIVATE -Wl,--version-script=${exports})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${preemptible} ${exports})
    if(NOT ORLENTA_SANITIZE AND NOT ORLENTA_COVERAGE)
        target_link_options(${target} PRIVATE -nostartfiles -Wl,-z,defs -Wl,-z,now)
    endif()
    # Most of the library's bytes would be relocations of the tables; packed, they all but vanish (glibc 2.36).
    if(ORLENTA_PACK_RELOCATIONS)
        check_linker_flag(C -Wl,-z,pack-relative-relocs ORLENTA_HAVE_PACKED_RELOCATIONS)
        if(ORLENTA_HAVE_PACKED_RELOCATIONS)
            target_link_options(${target} PRIVATE -Wl,-z,pack-relative-relocs)
        endif()
    endif()
endfunction()

# orlenta (shared) and orlenta_static, from one set of objects; where nothing can be shared, both names mean the latter.
function(orlenta_make_libraries)
    get_property(tables GLOBAL PROPERTY ORLENTA_TABLE_OBJECTS)
    get_property(shared_programs GLOBAL PROPERTY ORLENTA_SHARED_PROGRAMS)
    get_property(static_programs GLOBAL PROPERTY ORLENTA_STATIC_PROGRAMS)
    set(objects $<TARGET_OBJECTS:orlenta_objects>)
    foreach(table IN LISTS tables)
        list(APPEND objects $<TARGET_OBJECTS:${table}>)
    endforeach()
    list(TRANSFORM shared_programs REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>")
    list(TRANSFORM static_programs REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>")

    add_library(orlenta_static STATIC ${objects} ${static_programs})
    set_target_properties(orlenta_static PROPERTIES OUTPUT_NAME orlenta LINKER_LANGUAGE C)
    target_link_libraries(orlenta_static PUBLIC m)

    set(libraries orlenta_static)
    get_property(can_share GLOBAL PROPERTY TARGET_SUPPORTS_SHARED_LIBS)
    if(can_share)
        list(APPEND libraries orlenta)
        # The version's first number changes with the layout of any table: a program may hold copies of the tables that
        # it names, made by the loader, and these have the size that the program was linked with.
        add_library(orlenta SHARED ${objects} ${shared_programs})
        set_target_properties(orlenta PROPERTIES SOVERSION 1 VERSION ${PROJECT_VERSION})
        orlenta_shared_link_options(orlenta)
        # Names of tables, their second ones among them, that have done their part: .dynsym has those that programs need.
        if(CMAKE_OBJCOPY)
            add_custom_command(TARGET orlenta POST_BUILD VERBATIM COMMAND ${CMAKE_OBJCOPY} --wildcard
                --strip-symbol=orlenta_own_* --strip-symbol=asn1_type_* $<TARGET_FILE:orlenta>)
        endif()
    else()
        add_library(orlenta ALIAS orlenta_static)
    endif()

    foreach(library IN LISTS libraries)
        target_include_directories(${library} PUBLIC
            $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
            $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
        foreach(table IN LISTS tables)
            add_dependencies(${library} ${table})
        endforeach()
    endforeach()
    list(GET libraries -1 orlenta)
    add_library(orlenta::orlenta ALIAS ${orlenta})
    add_library(orlenta::orlenta_static ALIAS orlenta_static)
    set(ORLENTA_LIBRARIES ${libraries} PARENT_SCOPE)
endfunction()
