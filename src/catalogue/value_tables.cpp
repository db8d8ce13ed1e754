// A table is walked from its first entry to its end mark.
#include "catalogue/value_tables.h"

namespace catalogue {

const EnumEntry* FindByName(const EnumEntry* table, std::string_view name) {
    for (const EnumEntry* entry = table; entry->name != nullptr; ++entry) {
        if (name == entry->name) return entry;
    }
    return nullptr;
}

const EnumEntry* FindByValue(const EnumEntry* table, uint32_t value) {
    for (const EnumEntry* entry = table; entry->name != nullptr; ++entry) {
        if (entry->value == value) return entry;
    }
    return nullptr;
}

}  // namespace catalogue
