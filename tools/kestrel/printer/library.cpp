// The library beside this program or installed, and the failures of its calls.
#include "kestrel/printer/library.h"

#include <fmt/core.h>

#include <vector>

#include "kestrel/platform.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

constexpr DWORD kLongestPath = 32768;
// The longest reply that the channel carries, and its terminator.
constexpr size_t kReplyUnits = 65792;

// Null: this program.
WideText FileOf(HMODULE module) {
    WideText path(MAX_PATH, 0);
    DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    while (length >= path.size() && path.size() < kLongestPath) {
        path.resize(path.size() * 2);
        length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    }
    path.resize(length);
    return path;
}

WideText ProgramFolder() {
    const WideText path = FileOf(nullptr);
    const size_t separator = path.find_last_of(TEXT("\\/"));
    return separator == WideText::npos ? WideText() : path.substr(0, separator + 1);
}

}  // namespace

Library::Library(const std::string& product) {
    const WideText beside = ProgramFolder() + WideArgument(product + "SDK.dll", "product");
    path_ = Utf8FromWide(beside);
    module_.reset(LoadLibraryW(beside.c_str()));
    const std::string installed = platform::InstalledLibrary(product);
    if (!module_ && !installed.empty() && GetLastError() == ERROR_MOD_NOT_FOUND)
        module_.reset(LoadLibraryW(WideArgument(installed, "product").c_str()));
    if (module_) path_ = Utf8FromWide(FileOf(module_.get()));
    if (module_) return;

    Failure failure =
        FailureFromCode(GetLastError(), fmt::format("cannot load the library {}", path_), Exchange::Write);
    failure.exit = ExitCode::OwnFault;
    failure.advice =
        "install the product's library or put it beside this program, or name another product with --product";
    throw failure;
}

Library::AnyFunction Library::FindAny(const char* name) const {
    const FARPROC function = GetProcAddress(module_.get(), name);
    if (function == nullptr) {
        throw Failure{ExitCode::OwnFault,
                      fmt::format("the library {} has no function {}", path_, name),
                      "install the library and this program from the same release",
                      GetLastError(),
                      {},
                      {}};
    }
    return reinterpret_cast<AnyFunction>(function);
}

Failure FailureOfLastCall(const Library& library, const std::string& attempt, Exchange direction) {
    Failure failure = FailureFromCode(GetLastError(), attempt, direction);
    std::vector<kestrel_char> reply(kReplyUnits);
    library.Find<decltype(GetLastBadResponse)>("GetLastBadResponse")(reply.data(), kReplyUnits);
    const WideText wide(reply.data());
    if (wide.empty()) return failure;

    // The library has widened the reply by the code page; the way back gives the bytes that came.
    failure.badReply = ReadableBytes(AnsiFromWide(wide).value_or(Utf8FromWide(wide)));
    failure.responseNumber = library.Find<decltype(GetLastResponseNum)>("GetLastResponseNum")();
    return failure;
}

Failure FailureOfLastCall(const Library& library, const Attempt& attempt) {
    if (GetLastError() != ERROR_SUCCESS) return FailureOfLastCall(library, attempt.text, attempt.direction);
    const CodelessFailure& codeless = attempt.codeless;
    return {codeless.exit,
            fmt::format("{}: {}", attempt.text, codeless.text),
            codeless.advice,
            {},
            {},
            library.Find<decltype(GetLastResponseNum)>("GetLastResponseNum")()};
}

}  // namespace cli
