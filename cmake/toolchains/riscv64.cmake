# SPDX-License-Identifier: Apache-2.0
# 64-bit RISC-V.
set(CMAKE_SYSTEM_PROCESSOR riscv64)
set(compiler_prefix riscv64-linux-gnu)
include(${CMAKE_CURRENT_LIST_DIR}/debian_cross.cmake)
