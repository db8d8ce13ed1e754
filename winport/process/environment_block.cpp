// The environment of an account's own programs. What names the account comes from the list of accounts; what
// names the session and this computer (its screen, its language, winport's homes) stays as it is, because a
// program without it would live on another computer. All else is the caller's alone.
#include "winport/process/environment_block.h"

#include <unistd.h>
#include <userenv.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string_view>

#include "winport/process/account.h"
#include "winport/process/token_object.h"
#include "winport/text/utf.h"

namespace winport {

namespace {

constexpr std::string_view kSessionVariables[] = {
    "HOME",
    "PATH",
    "LANG",
    "LANGUAGE",
    "TZ",
    "XDG_RUNTIME_DIR",
    "XDG_STATE_HOME",
    "DBUS_SESSION_BUS_ADDRESS",
    "DISPLAY",
    "WAYLAND_DISPLAY",
    "XAUTHORITY",
};
constexpr std::string_view kSessionPrefixes[] = {"WINPORT_", "LC_"};

constexpr const char* kStandardPath = "/usr/local/bin:/usr/bin:/bin";

using Variables = std::map<std::string, std::string>;

bool IsOfSession(const std::string& name) {
    return std::find(std::begin(kSessionVariables), std::end(kSessionVariables), name) !=
               std::end(kSessionVariables) ||
           std::any_of(std::begin(kSessionPrefixes), std::end(kSessionPrefixes),
                       [&](std::string_view prefix) { return name.starts_with(prefix); });
}

Variables AccountVariables(bool inherit) {
    Variables variables;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view text(*entry);
        const std::size_t equals = text.find('=');
        if (equals == std::string_view::npos) continue;
        const std::string name(text.substr(0, equals));
        if (inherit || IsOfSession(name)) variables[name] = text.substr(equals + 1);
    }
    const Account account = CurrentAccount();
    variables["USER"] = account.name;
    variables["LOGNAME"] = account.name;
    variables["SHELL"] = account.shell;
    variables.try_emplace("HOME", account.home);
    variables.try_emplace("PATH", kStandardPath);
    return variables;
}

}  // namespace

std::vector<std::string> VariablesOf(const WCHAR* block) {
    std::vector<std::string> variables;
    while (*block != u'\0') {
        const std::u16string_view entry(block);
        variables.push_back(ToUtf8(entry));
        block += entry.size() + 1;
    }
    return variables;
}

}  // namespace winport

using namespace winport;

BOOL CreateEnvironmentBlock(LPVOID* environment, HANDLE token, BOOL inherit) {
    if (environment == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *environment = nullptr;
    if (!IsTokenFor(token, TOKEN_QUERY | TOKEN_DUPLICATE)) return FALSE;
    std::u16string block;
    for (const auto& [name, value] : AccountVariables(inherit != FALSE))
        block.append(FromUtf8(name)).append(u"=").append(FromUtf8(value)).push_back(u'\0');
    block.push_back(u'\0');
    auto copy = std::make_unique<WCHAR[]>(block.size());
    block.copy(copy.get(), block.size());
    *environment = copy.release();
    return TRUE;
}

BOOL DestroyEnvironmentBlock(LPVOID environment) {
    const std::unique_ptr<WCHAR[]> gone(static_cast<WCHAR*>(environment));
    return TRUE;
}
