# SPDX-License-Identifier: Apache-2.0
# orlenta_add_schema(<target> REGION <name> FILES <module.asn1>...
#                    [NAMES short|module] [HEADER <name>] [INCLUDE_DIR <folder>] [PARTS <n>] [FIRST_LOCAL <n>]
#                    [PROGRAMS common|single|none] [PROGRAM_LIST <file>] [OBJECT])
#
# Compiles ASN.1 modules with orlentac when the project is built, and makes the library <target> of their tables.
# All modules of one call share a name space, whose types get the prefix REGION; of types that have one name in several
# modules each gets its module's name too. Link <target> together with
# orlenta::orlenta or orlenta::orlenta_static, and include the header for records and descriptors:
#
#     find_package(orlenta REQUIRED)
#     orlenta_add_schema(my_messages REGION MY FILES Sensors.asn1 Common.asn1)
#     target_link_libraries(app PRIVATE my_messages orlenta::orlenta)
#
#     #include <my.h>         /* asn1_MY_SomeType, asn1_type_MY_SomeType */
#     #include <my_build.h>   /* orlenta_MY_SomeType_set_component(): values built in C, with their presence words */
#     #include <my.hpp>       // orlenta::my::SomeType: the same types for C++20
#     #include <my_local.h>   /* asn1_type_MY__local_1: the tables in place, which few programs name */
#
# orlenta_catalogue_MY() finds the types by name.
#
#   NAMES        module gives every type its module's name, so that a module added later renames nothing
#   HEADER       how the header is included; <region in lower case>.h if not given
#   INCLUDE_DIR  folder that the header goes to, under its name; one of the build tree if not given
#   PARTS        number of source files that the tables are spread over, for a build on several cores
#   FIRST_LOCAL  first number of tables and constants without a name
#   PROGRAMS     common compiles the types to one program, which asn1_uper_decode() and its like find by themselves;
#                single makes a program of each, for targets that are to be small: a type's tables and program are linked
#                if orlenta_codec_MY_SomeType (<my_codecs.h>) is named; none leaves all types to the slower walk over
#                their tables. common if not given
#   PROGRAM_LIST file that lists the types that get programs; without it, those that no other refers to and those in
#                object sets do
#   OBJECT       makes an object library instead of a static one, and one of programs if PROGRAMS is given
#
# The tables are C++20, so the project must have CXX enabled; the header is for C and C++. The variable
# ORLENTA_HOST_ORLENTAC names a ready orlentac to run, for cross builds.
include_guard(GLOBAL)

function(orlenta_find_compiler command depends)
    if(ORLENTA_HOST_ORLENTAC)
        set(${command} ${ORLENTA_HOST_ORLENTAC} PARENT_SCOPE)
        set(${depends} ${ORLENTA_HOST_ORLENTAC} PARENT_SCOPE)
    elseif(TARGET orlentac)
        set(${command} orlentac PARENT_SCOPE)
        set(${depends} orlentac PARENT_SCOPE)
    elseif(TARGET orlenta::orlentac)
        set(${command} orlenta::orlentac PARENT_SCOPE)
        set(${depends} "" PARENT_SCOPE)
    else()
        message(FATAL_ERROR "orlenta_add_schema: no orlentac; set ORLENTA_HOST_ORLENTAC to one that runs here")
    endif()
endfunction()

# Where headers are that programs are written against: in the source tree, or as installed.
function(orlenta_find_internals folder)
    get_property(installed GLOBAL PROPERTY ORLENTA_INTERNAL_DIR)
    if(installed)
        set(${folder} ${installed} PARENT_SCOPE)
    else()
        cmake_path(SET tree NORMALIZE ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../lib)
        set(${folder} ${tree} PARENT_SCOPE)
    endif()
endfunction()

# Constants only: nothing to optimise, nothing to debug. A section for each, so that --gc-sections keeps what a program
# names.
function(orlenta_table_options target)
    target_compile_features(${target} PRIVATE cxx_std_20)
    get_property(can_share GLOBAL PROPERTY TARGET_SUPPORTS_SHARED_LIBS)
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ${can_share})
    target_compile_options(${target} PRIVATE -O1 -g0 -fdata-sections)
endfunction()

# An object library of programs: orlenta_program_objects(<target> <of schema> <file>...)
function(orlenta_program_objects target schema)
    orlenta_find_internals(internals)
    add_library(${target} OBJECT ${ARGN})
    add_dependencies(${target} ${schema}_sources)
    target_include_directories(${target} PRIVATE ${internals}
        $<TARGET_PROPERTY:orlenta::orlenta,INTERFACE_INCLUDE_DIRECTORIES>)
    orlenta_table_options(${target})
endfunction()

function(orlenta_add_schema target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "OBJECT;SHIPPED_FORMS"
        "REGION;NAMES;HEADER;INCLUDE_DIR;PARTS;FIRST_LOCAL;PROGRAM_LIST" "FILES;PROGRAMS")
    if(NOT arg_REGION OR NOT arg_FILES)
        message(FATAL_ERROR "orlenta_add_schema: REGION and FILES are required")
    endif()
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "orlenta_add_schema: unknown arguments ${arg_UNPARSED_ARGUMENTS}")
    endif()
    string(TOLOWER ${arg_REGION} region)
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/${target})
    set(header ${region}.h)
    set(include_dir ${folder}/include)
    set(names short)
    set(parts 1)
    set(first_local 1)
    set(programs common)
    if(arg_OBJECT)
        set(programs none)
    endif()
    foreach(option NAMES HEADER INCLUDE_DIR PARTS FIRST_LOCAL PROGRAMS)
        if(arg_${option})
            string(TOLOWER ${option} variable)
            set(${variable} ${arg_${option}})
        endif()
    endforeach()

    cmake_path(GET header EXTENSION LAST_ONLY extension)
    cmake_path(REMOVE_EXTENSION header LAST_ONLY OUTPUT_VARIABLE stem)
    set(local_header ${stem}_local${extension})
    set(typed_header ${stem}.hpp)
    if(extension STREQUAL ".hpp")
        set(typed_header ${stem}_typed.hpp)
    endif()
    set(headers ${include_dir}/${header})
    foreach(beside ${local_header} ${stem}_build${extension} ${typed_header})
        list(APPEND headers ${include_dir}/${beside})
    endforeach()

    set(modules)
    foreach(file IN LISTS arg_FILES)
        cmake_path(ABSOLUTE_PATH file)
        list(APPEND modules ${file})
    endforeach()
    list(REMOVE_DUPLICATES modules)
    set(sources ${folder}/${region}_records.cpp ${folder}/${region}_catalogue.cpp)
    foreach(part RANGE 1 ${parts})
        list(APPEND sources ${folder}/${region}_tables_${part}.cpp)
    endforeach()

    set(options)
    set(common ${folder}/${region}_program.cpp)
    set(single)
    foreach(part RANGE 1 ${parts})
        list(APPEND single ${folder}/${region}_programs_${part}.cpp)
    endforeach()
    set(index ${folder}/${region}_index.cpp)
    set(program_sources)
    if(NOT programs STREQUAL "none")
        foreach(sort IN LISTS programs)
            list(APPEND options --programs ${sort})
            list(APPEND program_sources ${${sort}})
        endforeach()
        list(APPEND program_sources ${index})
        list(APPEND headers ${include_dir}/${stem}_codecs${extension})
        if(arg_PROGRAM_LIST)
            cmake_path(ABSOLUTE_PATH arg_PROGRAM_LIST)
            list(APPEND options --program-list ${arg_PROGRAM_LIST})
        endif()
    endif()
    if(arg_SHIPPED_FORMS)
        list(APPEND options --shipped-forms)
    endif()

    # orlentac leaves files alone whose text is the same, so a stamp tells that it has run.
    orlenta_find_compiler(orlentac depends)
    set(stamp ${folder}/${region}.stamp)
    add_custom_command(OUTPUT ${stamp}
        BYPRODUCTS ${sources} ${program_sources} ${headers}
        COMMAND ${orlentac} --region ${arg_REGION} --tables-dir ${folder} --header ${include_dir}/${header}
            --include-name ${header} --list ${folder}/${region}_catalogue.cpp --parts ${parts} --first-local ${first_local} --names ${names}
            ${options} ${modules}
        COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
        DEPENDS ${modules} ${arg_PROGRAM_LIST} ${depends}
        COMMENT "Compiling the schema of ${arg_REGION}" VERBATIM COMMAND_EXPAND_LISTS)
    add_custom_target(${target}_sources DEPENDS ${stamp})
    # Make knows no byproducts: without one of them, the stamp is no good.
    if(CMAKE_GENERATOR MATCHES "Makefiles")
        set(made ${sources} ${headers})
        set(script ${folder}/check_made.cmake)
        file(WRITE ${script} "set(made \"${made}\")\nforeach(file IN LISTS made)\n    if(NOT EXISTS \"\${file}\")\n"
            "        file(REMOVE \"${stamp}\")\n    endif()\nendforeach()\n")
        add_custom_target(${target}_made COMMAND ${CMAKE_COMMAND} -P ${script} VERBATIM)
        add_dependencies(${target}_sources ${target}_made)
    endif()

    if(arg_OBJECT)
        add_library(${target} OBJECT ${sources})
    else()
        add_library(${target} STATIC ${sources})
        target_include_directories(${target} PUBLIC
            $<TARGET_PROPERTY:orlenta::orlenta,INTERFACE_INCLUDE_DIRECTORIES>)
    endif()
    add_dependencies(${target} ${target}_sources)
    orlenta_find_internals(internals)
    target_include_directories(${target} PUBLIC ${include_dir} PRIVATE ${internals})
    orlenta_table_options(${target})
    if(arg_OBJECT AND program_sources)
        foreach(sort IN LISTS programs ITEMS index)
            orlenta_program_objects(${target}_${sort} ${target} ${${sort}})
        endforeach()
    elseif(program_sources)
        orlenta_program_objects(${target}_programs ${target} ${program_sources})
        target_sources(${target} PRIVATE $<TARGET_OBJECTS:${target}_programs>)
        if(programs STREQUAL "common")
            target_link_options(${target} INTERFACE LINKER:--undefined=orlenta_index_${arg_REGION})
        endif()
    endif()
endfunction()
