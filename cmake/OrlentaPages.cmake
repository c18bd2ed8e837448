# SPDX-License-Identifier: Apache-2.0
# orlenta_man_page(<name> <target> SUMMARY <text> SEE_ALSO <page>... [ARGS <argument>...] [EXAMPLES <file>]): a page of
# section 1, <name>.1, from what the program prints for ARGS --help, with the examples of a file in help2man's form.
# Nothing happens without help2man, and in a cross build.
find_program(HELP2MAN help2man)

function(orlenta_man_page name target)
    cmake_parse_arguments(PARSE_ARGV 2 arg "" "SUMMARY;EXAMPLES" "ARGS;SEE_ALSO")
    if(NOT HELP2MAN OR CMAKE_CROSSCOMPILING)
        return()
    endif()
    set(page ${CMAKE_CURRENT_BINARY_DIR}/${name}.1)
    # whatis(1) takes one word for a name, help2man the whole command.
    list(TRANSFORM arg_SEE_ALSO REPLACE "(.+)\\((.)\\)" ".BR \\1 (\\2)")
    list(JOIN arg_SEE_ALSO ",\n" see_also)
    file(WRITE ${page}.name "[NAME]\n${name} \\- ${arg_SUMMARY}\n\n[SEE ALSO]\n${see_also}\n")
    set(examples)
    if(arg_EXAMPLES)
        cmake_path(ABSOLUTE_PATH arg_EXAMPLES)
        set(examples --include ${arg_EXAMPLES})
    endif()
    string(JOIN " " command $<TARGET_FILE:${target}> ${arg_ARGS})
    add_custom_command(OUTPUT ${page}
        COMMAND ${HELP2MAN} --no-info --no-discard-stderr --version-string ${PROJECT_VERSION} --source orlenta
            --include ${page}.name ${examples} --output ${page} ${command}
        DEPENDS ${target} ${arg_EXAMPLES} VERBATIM)
    add_custom_target(${name}_page ALL DEPENDS ${page})
    install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endfunction()
