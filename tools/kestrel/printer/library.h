// The product's library as a program loads it at run time, and its functions by name.
#pragma once

#include <windows.h>

#include <kestrel/sdk.h>

#include <memory>
#include <string>
#include <type_traits>

#include "kestrel/failure.h"

namespace cli {

// The product's library, loaded from the folder of this program or from where the system keeps libraries.
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

// What a failure means that left no error code.
struct CodelessFailure final {
    ExitCode exit = ExitCode::DeviceRefused;
    const char* text = "the device answered that it did not do this";
    const char* advice = "look at the printer's display, remedy what it shows and try again";
};

// What a call is made for. `text` opens the failure's text: "cannot lock the printer".
struct Attempt final {
    std::string text;
    Exchange direction = Exchange::Write;
    CodelessFailure codeless = {};
};

// The failure of the library's call that has just returned false on this thread: its last-error value, and
// the reply that was judged bad, if it was one.
[[nodiscard]] Failure FailureOfLastCall(const Library& library, const std::string& attempt,
                                        Exchange direction);
// The same, with a meaning for a last-error value of 0.
[[nodiscard]] Failure FailureOfLastCall(const Library& library, const Attempt& attempt);

// Calls an exported function that tells success by its result; throws its failure.
template <typename Function, typename... Arguments>
void Demand(const Library& library, const char* name, const Attempt& attempt, Arguments... arguments) {
    if (library.Find<Function>(name)(arguments...) == 0) throw FailureOfLastCall(library, attempt);
}

}  // namespace cli
