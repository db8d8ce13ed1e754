// The account that the process runs as, from the system's list of accounts.
#pragma once

#include <string>

namespace winport {

struct Account {
    std::string name;  // its number when the list does not know it
    std::string home;
    std::string shell;
};

Account CurrentAccount();

}  // namespace winport
