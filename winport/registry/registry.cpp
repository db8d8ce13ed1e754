// The registry calls. All of them report by their result and leave the last-error value alone.
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "winport/registry/caller_memory.h"
#include "winport/registry/last_error_keeper.h"
#include "winport/registry/slot_table.h"
#include "winport/registry/store.h"

namespace winport {

namespace {

struct OpenKey {
    KeyId id = 0;
    REGSAM access = 0;
};

struct Hive {
    HKEY key;
    KeyId id;
};

const Hive kHives[] = {
    {HKEY_CLASSES_ROOT, kClassesRoot},
    {HKEY_CURRENT_USER, kCurrentUser},
    {HKEY_LOCAL_MACHINE, kLocalMachine},
    {HKEY_USERS, kUsers},
};

constexpr std::uint64_t kKeyHandles = 0x4B;

// Never destroyed, as the database is not.
SlotTable<OpenKey>& Handles() {
    static auto& handles = *std::make_unique<SlotTable<OpenKey>>(kKeyHandles).release();
    return handles;
}

// The predefined keys are numbers of 32 bits, which callers widen with or without their sign.
std::optional<KeyId> HiveOf(HKEY key) {
    const auto value = reinterpret_cast<std::uint64_t>(key);
    const auto isHive = [value](const Hive& hive) {
        const auto number = reinterpret_cast<std::uint64_t>(hive.key);
        return value == number || value == (number | 0xFFFFFFFF'00000000);
    };
    const auto* found = std::find_if(std::begin(kHives), std::end(kHives), isHive);
    if (found == std::end(kHives)) return std::nullopt;
    return found->id;
}

std::optional<OpenKey> Resolve(HKEY key) {
    if (const auto hive = HiveOf(key)) return OpenKey{*hive, KEY_ALL_ACCESS};
    return Handles().Find(reinterpret_cast<std::uint64_t>(key));
}

std::u16string_view OrEmpty(LPCWSTR text) {
    return text != nullptr ? text : std::u16string_view();
}

bool HasNoText(LPCWSTR text) {
    return OrEmpty(text).empty();
}

// A path may end in "\" but not begin with one.
LSTATUS CheckPath(std::u16string_view path) {
    return path.starts_with(u'\\') ? ERROR_BAD_PATHNAME : ERROR_SUCCESS;
}

// Rights that are not named in the header (generic ones, other views of the registry) are not honoured.
bool IsKnownAccess(REGSAM access) {
    return (access & ~REGSAM{KEY_ALL_ACCESS}) == 0;
}

// A text whose size was counted without the terminator just behind it is stored with it.
std::string_view WithTerminator(DWORD type, const BYTE* data, DWORD size) {
    constexpr DWORD kUnit = sizeof(WCHAR);
    const bool isText = type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
    if (isText && size >= kUnit && size % kUnit == 0 && UnitAt(data + size - kUnit) != u'\0' &&
        UnitAt(data + size) == u'\0')
        size += kUnit;
    return {reinterpret_cast<const char*>(data), size};
}

LSTATUS Hand(OpenKey opened, PHKEY result) {
    const std::uint64_t handle = Handles().Add(opened);
    if (handle == 0) return ERROR_NO_SYSTEM_RESOURCES;
    *result = reinterpret_cast<HKEY>(handle);
    return ERROR_SUCCESS;
}

LSTATUS Open(HKEY key, std::u16string_view path, REGSAM access, PHKEY result) {
    const LastErrorKeeper keeper;
    const auto parent = Resolve(key);
    if (!parent) return ERROR_INVALID_HANDLE;
    if (const LSTATUS refused = CheckPath(path); refused != ERROR_SUCCESS) return refused;
    KeyId found = 0;
    {
        RegistrySession session(RegistrySession::Purpose::Read);
        found = session.Find(parent->id, path);
        if (session.Status() != ERROR_SUCCESS) return session.Status();
        if (found == 0 && !session.Exists(parent->id)) return ERROR_KEY_DELETED;
    }
    return found != 0 ? Hand({found, access}, result) : ERROR_FILE_NOT_FOUND;
}

LSTATUS Create(HKEY key, std::u16string_view path, REGSAM access, PHKEY result, bool& created) {
    const LastErrorKeeper keeper;
    const auto parent = Resolve(key);
    if (!parent) return ERROR_INVALID_HANDLE;
    if (const LSTATUS refused = CheckPath(path); refused != ERROR_SUCCESS) return refused;
    KeyId made = 0;
    {
        // Most keys that are "created" are there already, and a look does not wait for writers.
        RegistrySession look(RegistrySession::Purpose::Read);
        made = look.Find(parent->id, path);
        if (look.Status() != ERROR_SUCCESS) return look.Status();
    }
    created = false;
    if (made == 0) {
        RegistrySession session(RegistrySession::Purpose::Write);
        if (session.Status() == ERROR_SUCCESS && !session.Exists(parent->id)) return ERROR_KEY_DELETED;
        made = session.Create(parent->id, path, created);
        if (const LSTATUS failure = session.Commit(); failure != ERROR_SUCCESS) return failure;
    }
    return Hand({made, access}, result);
}

}  // namespace

}  // namespace winport

using namespace winport;

LSTATUS RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR className, DWORD options,
                        REGSAM access, const SECURITY_ATTRIBUTES*, PHKEY result, LPDWORD disposition) {
    if (subKey == nullptr || result == nullptr || reserved != 0) return ERROR_INVALID_PARAMETER;
    if (!HasNoText(className) || options != REG_OPTION_NON_VOLATILE) return ERROR_INVALID_PARAMETER;
    if (!IsKnownAccess(access)) return ERROR_INVALID_PARAMETER;
    bool created = false;
    const LSTATUS outcome = Create(key, subKey, access, result, created);
    if (outcome == ERROR_SUCCESS && disposition != nullptr) {
        *disposition = created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
    }
    return outcome;
}

LSTATUS RegCreateKeyW(HKEY key, LPCWSTR subKey, PHKEY result) {
    if (result == nullptr) return ERROR_INVALID_PARAMETER;
    bool created = false;
    return Create(key, OrEmpty(subKey), KEY_ALL_ACCESS, result, created);
}

LSTATUS RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result) {
    if (result == nullptr || options != 0 || !IsKnownAccess(access)) return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    return Open(key, OrEmpty(subKey), access, result);
}

LSTATUS RegOpenKeyW(HKEY key, LPCWSTR subKey, PHKEY result) {
    if (result == nullptr) return ERROR_INVALID_PARAMETER;
    if (HasNoText(subKey)) {
        if (!Resolve(key)) return ERROR_INVALID_HANDLE;
        *result = key;
        return ERROR_SUCCESS;
    }
    *result = nullptr;
    return Open(key, subKey, KEY_ALL_ACCESS, result);
}

LSTATUS RegCloseKey(HKEY key) {
    if (HiveOf(key)) return ERROR_SUCCESS;
    return Handles().Remove(reinterpret_cast<std::uint64_t>(key)) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

LSTATUS RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size) {
    if (reserved != nullptr || (data != nullptr && size == nullptr)) return ERROR_INVALID_PARAMETER;
    const LastErrorKeeper keeper;
    const auto opened = Resolve(key);
    if (!opened) return ERROR_INVALID_HANDLE;
    if ((opened->access & KEY_QUERY_VALUE) == 0) return ERROR_ACCESS_DENIED;
    std::optional<RegistryValue> value;
    {
        RegistrySession session(RegistrySession::Purpose::Read);
        value = session.Read(opened->id, OrEmpty(name));
        if (!value && session.Status() == ERROR_SUCCESS && !session.Exists(opened->id))
            return ERROR_KEY_DELETED;
        if (session.Status() != ERROR_SUCCESS) return session.Status();
    }
    const DWORD stored = value ? static_cast<DWORD>(value->bytes.size()) : 0;
    if (!value && data == nullptr && size != nullptr) *size = 0;
    if (!value) return ERROR_FILE_NOT_FOUND;
    // Type and size may be one variable: the capacity is read first, the size written last.
    const DWORD capacity = size != nullptr ? *size : 0;
    if (type != nullptr) *type = value->type;
    if (size != nullptr) *size = stored;
    if (data == nullptr) return ERROR_SUCCESS;
    if (capacity < stored) return ERROR_MORE_DATA;
    value->bytes.copy(reinterpret_cast<char*>(data), stored);
    return ERROR_SUCCESS;
}

LSTATUS RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size) {
    if (reserved != 0) return ERROR_INVALID_PARAMETER;
    if (!IsReadable(data, size)) return ERROR_NOACCESS;
    const LastErrorKeeper keeper;
    const auto opened = Resolve(key);
    if (!opened) return ERROR_INVALID_HANDLE;
    if ((opened->access & KEY_SET_VALUE) == 0) return ERROR_ACCESS_DENIED;
    RegistrySession session(RegistrySession::Purpose::Write);
    session.Write(opened->id, OrEmpty(name), type, WithTerminator(type, data, size));
    return session.Commit();
}

LSTATUS RegDeleteValueW(HKEY key, LPCWSTR name) {
    const LastErrorKeeper keeper;
    const auto opened = Resolve(key);
    if (!opened) return ERROR_INVALID_HANDLE;
    if ((opened->access & KEY_SET_VALUE) == 0) return ERROR_ACCESS_DENIED;
    RegistrySession session(RegistrySession::Purpose::Write);
    if (session.Status() == ERROR_SUCCESS && !session.Exists(opened->id)) return ERROR_KEY_DELETED;
    const bool deleted = session.DeleteValue(opened->id, OrEmpty(name));
    const LSTATUS outcome = session.Commit();
    return outcome == ERROR_SUCCESS && !deleted ? ERROR_FILE_NOT_FOUND : outcome;
}

LSTATUS RegDeleteTreeW(HKEY key, LPCWSTR subKey) {
    const LastErrorKeeper keeper;
    const auto opened = Resolve(key);
    if (!opened) return ERROR_INVALID_HANDLE;
    const std::u16string_view path = OrEmpty(subKey);
    if (const LSTATUS refused = CheckPath(path); refused != ERROR_SUCCESS) return refused;
    if (path.empty() && (opened->access & KEY_SET_VALUE) == 0) return ERROR_ACCESS_DENIED;
    RegistrySession session(RegistrySession::Purpose::Write);
    const KeyId found = session.Find(opened->id, path);
    if (session.Status() != ERROR_SUCCESS) return session.Status();
    if (found == 0) return session.Exists(opened->id) ? ERROR_FILE_NOT_FOUND : ERROR_KEY_DELETED;
    if (path.empty()) {
        session.Clear(found);
    } else {
        session.DeleteTree(found);
    }
    return session.Commit();
}

LSTATUS RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameLength, LPDWORD reserved,
                      LPWSTR className, LPDWORD classLength, FILETIME* lastWrite) {
    if (name == nullptr || nameLength == nullptr || reserved != nullptr) return ERROR_INVALID_PARAMETER;
    // Neither classes nor times are kept.
    if (className != nullptr || classLength != nullptr || lastWrite != nullptr)
        return ERROR_INVALID_PARAMETER;
    const LastErrorKeeper keeper;
    const auto opened = Resolve(key);
    if (!opened) return ERROR_INVALID_HANDLE;
    if ((opened->access & KEY_ENUMERATE_SUB_KEYS) == 0) return ERROR_ACCESS_DENIED;
    std::optional<std::u16string> child;
    {
        RegistrySession session(RegistrySession::Purpose::Read);
        child = session.ChildName(opened->id, index);
        if (!child && session.Status() == ERROR_SUCCESS && !session.Exists(opened->id))
            return ERROR_KEY_DELETED;
        if (session.Status() != ERROR_SUCCESS) return session.Status();
    }
    if (!child) return ERROR_NO_MORE_ITEMS;
    if (*nameLength <= child->size()) return ERROR_MORE_DATA;
    child->copy(name, child->size());
    name[child->size()] = u'\0';
    *nameLength = static_cast<DWORD>(child->size());
    return ERROR_SUCCESS;
}
