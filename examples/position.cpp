// SPDX-License-Identifier: Apache-2.0
// A typed value to bytes and back, in C++.
#include <iostream>
#include <orlenta/cn.hpp>

namespace cn = orlenta::cn;

int main() {
    cn::Position3D here = {.lat = 399087000, .lon = 1163975000, .elevation = 435};
    auto bytes = orlenta::encode(orlenta::uper, here);
    if (!bytes) return std::cerr << bytes.error() << '\n', 1;

    auto there = orlenta::decode<cn::Position3D>(orlenta::uper, *bytes);
    if (!there) return std::cerr << there.error() << '\n', 1;
    const cn::Position3D& position = **there;
    std::cout << bytes->size() << " bytes: lat " << position.lat << ", lon " << position.lon << ", elevation "
              << position.elevation.value_or(0) << '\n';
}
