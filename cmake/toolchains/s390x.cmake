# SPDX-License-Identifier: Apache-2.0
# 64-bit, the first octet of a number on top.
set(CMAKE_SYSTEM_PROCESSOR s390x)
set(compiler_prefix s390x-linux-gnu)
include(${CMAKE_CURRENT_LIST_DIR}/debian_cross.cmake)
