// What a list is cut into.
#pragma once

#include <forward_list>
#include <string>
#include <string_view>
#include <vector>

namespace opl {

/// The items of a message, each closed with a delimiter and so a message of its own. An item is a part of the
/// message where a delimiter follows it there, and must not outlive it; the others are closed with ";" in a
/// copy.
struct ListItems {
    std::vector<std::string_view> views;
    std::forward_list<std::string> copies;
};

}  // namespace opl
