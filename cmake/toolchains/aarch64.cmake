# SPDX-License-Identifier: Apache-2.0
# 64-bit ARM.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(compiler_prefix aarch64-linux-gnu)
include(${CMAKE_CURRENT_LIST_DIR}/debian_cross.cmake)
