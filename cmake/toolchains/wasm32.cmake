# SPDX-License-Identifier: Apache-2.0
# WebAssembly by Debian's emscripten; programs run under node, whose fetch() does not read the files that this emscripten
# would have it read. NODE_PATH must name Debian's folder of node's modules.
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR node;--no-experimental-fetch)
