// The registry's database: keys and values of all hives in one SQLite file of the state folder.
//
// Several processes use it at once. Every change is one transaction, so a process killed at any moment leaves
// either all of it or nothing, and nothing of what others wrote is lost. A process has one connection, used
// by one session at a time. SQLite's locks cannot be shared with a forked child: the connection is closed
// before every fork, and parent and child each open their own at their next session.
#pragma once

#include <windows.h>

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace winport {

class RegistryDatabase;

// A key's id is never used again after the key is deleted. 0 stands for "no key".
using KeyId = std::int64_t;

// The hives; their ids are fixed.
inline constexpr KeyId kClassesRoot = 1;
inline constexpr KeyId kCurrentUser = 2;
inline constexpr KeyId kLocalMachine = 3;
inline constexpr KeyId kUsers = 4;

inline constexpr std::size_t kMaxKeyNameLength = 255;

struct RegistryValue {
    DWORD type = REG_NONE;
    std::string bytes;
};

// One look at the registry or one change of it. Sessions of a process exclude each other: keep them short and
// open no second one meanwhile. After a failure `Status` says why, lookups find nothing and changes do
// nothing. What was changed counts only after a successful `Commit`; the destructor takes back the rest.
class RegistrySession final {
  public:
    enum class Purpose { Read, Write };

    explicit RegistrySession(Purpose purpose);
    ~RegistrySession();
    RegistrySession(const RegistrySession&) = delete;
    RegistrySession& operator=(const RegistrySession&) = delete;

    [[nodiscard]] LSTATUS Status() const { return status_; }
    [[nodiscard]] LSTATUS Commit();

    [[nodiscard]] bool Exists(KeyId key);
    // The key at `path` ("\" between names, compared without case) below `parent`; `parent` itself for "".
    [[nodiscard]] KeyId Find(KeyId parent, std::u16string_view path);
    // The same, making what is missing; `created` says whether the last key of the path was.
    KeyId Create(KeyId parent, std::u16string_view path, bool& created);
    [[nodiscard]] std::optional<std::u16string> Name(KeyId key);
    // In the order of their names.
    [[nodiscard]] std::vector<std::u16string> ChildNames(KeyId key);
    [[nodiscard]] std::optional<std::u16string> ChildName(KeyId key, DWORD index);
    // Everything below the key, and its values; `DeleteTree` takes the key too.
    void Clear(KeyId key);
    void DeleteTree(KeyId key);

    [[nodiscard]] std::optional<RegistryValue> Read(KeyId key, std::u16string_view name);
    void Write(KeyId key, std::u16string_view name, DWORD type, std::string_view bytes);
    // False when there is no such value.
    bool DeleteValue(KeyId key, std::u16string_view name);

  private:
    [[nodiscard]] KeyId FindChild(KeyId parent, std::u16string_view name);
    KeyId CreateChild(KeyId parent, std::u16string_view name);

    std::unique_lock<std::mutex> guard_;
    RegistryDatabase* database_ = nullptr;
    LSTATUS status_ = ERROR_SUCCESS;
    bool inTransaction_ = false;
};

// Texts and numbers as the registry holds them.
void WriteText(RegistrySession& session, KeyId key, std::u16string_view name, std::u16string_view text);
void WriteNumber(RegistrySession& session, KeyId key, std::u16string_view name, DWORD number);
// Empty, or `fallback`, when the value is missing or of another type.
std::u16string ReadText(RegistrySession& session, KeyId key, std::u16string_view name);
DWORD ReadNumber(RegistrySession& session, KeyId key, std::u16string_view name, DWORD fallback);

}  // namespace winport
