# SPDX-License-Identifier: Apache-2.0
# orlenta_man_page(<name> <target> SUMMARY <text> [ARGS <argument>...]): a page of section 1, <name>.1, from what the
# program prints for ARGS --help. Nothing happens without help2man, and in a cross build.
find_program(HELP2MAN help2man)

function(orlenta_man_page name target)
    cmake_parse_arguments(PARSE_ARGV 2 arg "" "SUMMARY" "ARGS")
    if(NOT HELP2MAN OR CMAKE_CROSSCOMPILING)
        return()
    endif()
    set(page ${CMAKE_CURRENT_BINARY_DIR}/${name}.1)
    # whatis(1) takes one word for a name, help2man the whole command.
    file(WRITE ${page}.name "[NAME]\n${name} \\- ${arg_SUMMARY}\n")
    string(JOIN " " command $<TARGET_FILE:${target}> ${arg_ARGS})
    add_custom_command(OUTPUT ${page}
        COMMAND ${HELP2MAN} --no-info --no-discard-stderr --version-string ${PROJECT_VERSION} --source orlenta
            --include ${page}.name --output ${page} ${command}
        DEPENDS ${target} VERBATIM)
    add_custom_target(${name}_page ALL DEPENDS ${page})
    install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endfunction()
