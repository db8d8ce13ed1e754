#pragma once

#include <windows.h>

#include <kestrel/sdk.h>

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

#include "failure.h"

namespace cli {

// The product's library, loaded from the folder of this program.
class Library final {
  public:
    // Throws when there is no such library, or the system refuses to load it.
    explicit Library(const std::string& product);

    [[nodiscard]] const std::string& Path() const { return path_; }

    // An exported function by its name; throws when the library lacks it (an older release).
    // Function is the function's type, best as decltype(TheFunction) of the public header.
    template <typename Function>
    [[nodiscard]] Function* Find(const char* name) const {
        return reinterpret_cast<Function*>(FindAny(name));
    }

  private:
    using AnyFunction = void (*)();
    [[nodiscard]] AnyFunction FindAny(const char* name) const;

    struct Frees {
        void operator()(HMODULE module) const { FreeLibrary(module); }
    };
    std::string path_;
    std::unique_ptr<std::remove_pointer_t<HMODULE>, Frees> module_;
};

// The failure of the library's call that has just returned false on this thread: its last-error value, and
// the reply that was judged bad, if it was one.
[[nodiscard]] Failure FailureOfLastCall(const Library& library, const std::string& attempt,
                                        Exchange direction);

}  // namespace cli
