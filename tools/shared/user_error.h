// A fault of what the user gave: says where, what was expected and what to do.
#pragma once

#include <stdexcept>

namespace tools {

class UserError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace tools
