# SPDX-License-Identifier: Apache-2.0
# 32-bit ARM with floating point.
set(CMAKE_SYSTEM_PROCESSOR armv7)
set(compiler_prefix arm-linux-gnueabihf)
set(qemu_name arm)
include(${CMAKE_CURRENT_LIST_DIR}/debian_cross.cmake)
