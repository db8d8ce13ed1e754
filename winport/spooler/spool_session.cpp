#include "winport/spooler/spool_session.h"

#include "winport/spooler/environment.h"

namespace winport {

namespace {

constexpr DWORD kUsualReason = 1;
constexpr std::u16string_view kPrintPath = u"SYSTEM\\CurrentControlSet\\Control\\Print";

}  // namespace

SpoolSession::SpoolSession(RegistrySession::Purpose purpose) : registry_(purpose) {
    root_ = registry_.Find(kLocalMachine, kPrintPath);
    if (root_ != 0) stopped_ = ReadNumber(registry_, root_, u"Stopped", 0);
    if (stopped_ == kUsualReason) stopped_ = RPC_S_SERVER_UNAVAILABLE;
}

DWORD SpoolSession::Error() const {
    if (registry_.Status() != ERROR_SUCCESS) return static_cast<DWORD>(registry_.Status());
    return stopped_;
}

DWORD SpoolSession::Commit() {
    return static_cast<DWORD>(registry_.Commit());
}

KeyId SpoolSession::Printers() {
    return FindKey(u"Printers");
}

KeyId SpoolSession::FindPrinter(std::u16string_view name) {
    const KeyId printers = IsKeyName(name) ? Printers() : 0;
    return printers != 0 ? registry_.Find(printers, name) : 0;
}

bool SpoolSession::HasDriver(std::u16string_view name) {
    const KeyId drivers = IsKeyName(name) ? FindKey(DriversPath(ThisEnvironment().name)) : 0;
    return drivers != 0 && registry_.Find(drivers, name) != 0;
}

KeyId SpoolSession::FindKey(std::u16string_view path) {
    return root_ != 0 ? registry_.Find(root_, path) : 0;
}

KeyId SpoolSession::CreateKey(std::u16string_view path) {
    bool created = false;
    if (root_ == 0) root_ = registry_.Create(kLocalMachine, kPrintPath, created);
    return root_ != 0 ? registry_.Create(root_, path, created) : 0;
}

bool IsKeyName(std::u16string_view name) {
    return !name.empty() && name.size() <= kMaxKeyNameLength && name.find(u'\\') == std::u16string_view::npos;
}

std::u16string DriversPath(std::u16string_view environment) {
    std::u16string path = u"Environments\\";
    path.append(environment).append(u"\\Drivers\\Version-3");
    return path;
}

}  // namespace winport
