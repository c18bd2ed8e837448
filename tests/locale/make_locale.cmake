# SPDX-License-Identifier: Apache-2.0
# Compiles the locale de_DE.UTF-8 into the folder OUT, from the definitions of Debian's package locales.
if(EXISTS ${OUT}/de_DE.UTF-8/LC_NUMERIC)
    return()
endif()
file(MAKE_DIRECTORY ${OUT})
execute_process(COMMAND localedef -i de_DE -f UTF-8 ${OUT}/de_DE.UTF-8 RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "localedef failed (${status}); are the definitions of Debian's package locales there?")
endif()
