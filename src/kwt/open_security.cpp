// What every creation of a named object passes to the system.
#include "kwt/open_security.h"

#include <algorithm>

namespace kwt {

namespace {

constexpr WideView kGlobalPrefix = TEXT("Global\\");

WCHAR LowerAscii(WCHAR c) {
    return c >= TEXT('A') && c <= TEXT('Z') ? static_cast<WCHAR>(c + (TEXT('a') - TEXT('A'))) : c;
}

bool HasGlobalPrefix(WideView name) {
    return name.size() >= kGlobalPrefix.size() &&
           std::equal(kGlobalPrefix.begin(), kGlobalPrefix.end(), name.begin(),
                      [](WCHAR a, WCHAR b) { return LowerAscii(a) == LowerAscii(b); });
}

}  // namespace

OpenSecurity::OpenSecurity() {
    valid_ = InitializeSecurityDescriptor(&descriptor_, SECURITY_DESCRIPTOR_REVISION) &&
             SetSecurityDescriptorDacl(&descriptor_, TRUE, nullptr, FALSE);
    attributes_.nLength = sizeof(attributes_);
    attributes_.lpSecurityDescriptor = &descriptor_;
    attributes_.bInheritHandle = FALSE;
}

ObjectPath::ObjectPath(const WCHAR* name, bool global) : named_(name != nullptr) {
    if (!named_) return;
    const WideView view = name;
    const WideView prefix = global && !HasGlobalPrefix(view) ? kGlobalPrefix : WideView();
    fits_ = prefix.size() + view.size() < MAX_PATH;
    if (!fits_) {
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return;
    }
    WCHAR* end = std::copy(prefix.begin(), prefix.end(), text_);
    *std::copy(view.begin(), view.end(), end) = 0;
}

}  // namespace kwt
