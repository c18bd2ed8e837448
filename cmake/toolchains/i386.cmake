# SPDX-License-Identifier: Apache-2.0
# 32-bit x86, where 64-bit numbers may begin at a multiple of 4.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(compiler_prefix i686-linux-gnu)
set(qemu_name i386)
include(${CMAKE_CURRENT_LIST_DIR}/debian_cross.cmake)
