// SPDX-License-Identifier: Apache-2.0
#include "compiler/layout/names.hpp"

#include <algorithm>
#include <map>
#include <vector>

namespace orlentac {

std::string c_name(const std::string& schema_name) {
    std::string name = schema_name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

namespace {

struct Named {
    const void* object;
    const std::string* name;
    const std::string* module;
    Place place;
};

// What the standards define themselves has no module.
std::string with_module(const Named& named) {
    bool standard = named.module->find('.') != std::string::npos;
    return (standard ? "" : c_name(*named.module) + "_") + c_name(*named.name);
}

void note_clash(Diagnostics& diags, const std::vector<Named>& same) {
    std::string places, names;
    for (const Named& named : same) {
        places += (places.empty() ? "" : " and ") + ("'" + *named.module + "'");
        names += (names.empty() ? "" : ", ") + with_module(named);
    }
    note(diags, same[0].place, "'{}' is defined in the modules {}: the names in C are {}", *same[0].name,
         places, names);
}

}  // namespace

std::unordered_map<const void*, std::string> region_names(const Schema& schema, bool module_names,
                                                          Diagnostics& diags) {
    std::map<std::string, std::vector<Named>> by_name;
    auto add = [&](const auto& named) {
        by_name[c_name(named.name)].push_back({&named, &named.name, &named.module, named.place});
    };
    for (const NamedType* type : schema.types) add(*type);
    for (const ObjectClass* object_class : schema.classes) add(*object_class);

    std::unordered_map<const void*, std::string> names;
    std::map<std::string, Place> taken;
    for (const auto& [name, same] : by_name) {
        if (same.size() > 1 && !module_names) note_clash(diags, same);
        for (const Named& named : same) {
            bool plain = same.size() == 1 && !module_names;
            std::string& given = names[named.object] = plain ? name : with_module(named);
            auto [first, fresh] = taken.try_emplace(given, named.place);
            if (!fresh)
                error(diags, named.place, "'{}' gets the name {} in C, which is that of the type at {}",
                      *named.name, given, place_text(first->second));
        }
    }
    // An instance is numbered behind the name of its type, which has none of its own.
    for (const NamedType* type : schema.instances)
        names[type] = module_names ? c_name(type->module) + "_" + c_name(type->name) : c_name(type->name);
    return names;
}

}  // namespace orlentac
