// Security descriptors are built and checked, not honoured: who may open an object is decided by the folder
// it lies in.
#include <windows.h>

namespace {
constexpr WORD kDaclPresent = 0x0004;
constexpr WORD kDaclDefaulted = 0x0008;
}  // namespace

BOOL InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision) {
    if (descriptor == nullptr || revision != SECURITY_DESCRIPTOR_REVISION) {
        SetLastError(descriptor == nullptr ? ERROR_INVALID_PARAMETER : ERROR_UNKNOWN_REVISION);
        return FALSE;
    }
    *static_cast<SECURITY_DESCRIPTOR*>(descriptor) = {
        SECURITY_DESCRIPTOR_REVISION, 0, 0, nullptr, nullptr, nullptr, nullptr};
    return TRUE;
}

BOOL SetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR descriptor, BOOL present, PACL acl, BOOL defaulted) {
    auto* own = static_cast<SECURITY_DESCRIPTOR*>(descriptor);
    if (own == nullptr || own->Revision != SECURITY_DESCRIPTOR_REVISION) {
        SetLastError(ERROR_UNKNOWN_REVISION);
        return FALSE;
    }
    own->Control = static_cast<WORD>((present ? kDaclPresent : 0) | (defaulted ? kDaclDefaulted : 0));
    own->Dacl = acl;
    return TRUE;
}
