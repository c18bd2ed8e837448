# SPDX-License-Identifier: Apache-2.0
# A machine that Debian has a cross compiler for; its programs run under qemu-user. To be set before: the processor, the
# prefix of the compiler's name, and that of qemu's, if it is another one than the processor.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${compiler_prefix}-gcc)
set(CMAKE_CXX_COMPILER ${compiler_prefix}-g++)
if(NOT qemu_name)
    set(qemu_name ${CMAKE_SYSTEM_PROCESSOR})
endif()
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${qemu_name};-L;/usr/${compiler_prefix})
