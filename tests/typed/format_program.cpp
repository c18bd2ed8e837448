// SPDX-License-Identifier: Apache-2.0
// What std::format makes of values, lists, texts and errors. Built by compilers that have it.
#include <format>
#include <iostream>
#include <orlenta/cn.hpp>

namespace cn = orlenta::cn;

int main() {
    orlenta::value<cn::Position3D> here;
    *here = {.lat = 1, .lon = 2, .elevation = 3};
    cn::ReferencePathList paths;
    cn::Node node;
    node.name = "north";
    auto cut = orlenta::decode<cn::Position3D>(orlenta::uper, "x");
    std::cout << std::format("{} {:>20} {} {:*^9} ", here, cn::Position3D{}, paths, *node.name)
              << std::format("{} {:.7}\n", cut.error(), cut.error());
    return cut.has_value();
}
