// The machine kinds that drivers are installed for.
#pragma once

#include <string_view>

namespace winport {

struct Environment {
    std::u16string_view name;    // as the spooler calls take it
    std::u16string_view folder;  // below the drivers' folder
};

const Environment& ThisEnvironment();

// This machine's for null or ""; null for one that is not known.
const Environment* FindEnvironment(const char16_t* name);

}  // namespace winport
