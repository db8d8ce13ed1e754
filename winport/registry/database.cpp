#include "winport/registry/database.h"

#include <cerrno>
#include <string>

#include "winport/files/error_map.h"
#include "winport/files/home.h"
#include "winport/files/own_file.h"

namespace winport {

namespace {

constexpr int kBusyTimeoutMs = 5000;
constexpr int kMaxJournalPages = 32;
constexpr int kSchemaVersion = 1;
constexpr const char* kFile = "registry.db";

// A folded name is the name as it is compared and ordered. Ids count up and are never given twice, so that a
// handle to a deleted key cannot reach a younger one. The four rows are the hives.
constexpr char kSchema[] = R"(
CREATE TABLE IF NOT EXISTS keys(
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  parent INTEGER REFERENCES keys(id) ON DELETE CASCADE,
  folded TEXT NOT NULL,
  name TEXT NOT NULL,
  UNIQUE(parent, folded));
CREATE TABLE IF NOT EXISTS key_values(
  key INTEGER NOT NULL REFERENCES keys(id) ON DELETE CASCADE,
  folded TEXT NOT NULL,
  name TEXT NOT NULL,
  type INTEGER NOT NULL,
  data BLOB NOT NULL,
  PRIMARY KEY(key, folded)) WITHOUT ROWID;
INSERT OR IGNORE INTO keys(id, parent, folded, name) VALUES
  (1, NULL, 'HKEY_CLASSES_ROOT', 'HKEY_CLASSES_ROOT'),
  (2, NULL, 'HKEY_CURRENT_USER', 'HKEY_CURRENT_USER'),
  (3, NULL, 'HKEY_LOCAL_MACHINE', 'HKEY_LOCAL_MACHINE'),
  (4, NULL, 'HKEY_USERS', 'HKEY_USERS');
PRAGMA user_version = 1;
)";

struct SqlText {
    Sql sql;
    const char* text;
};

constexpr SqlText kTexts[] = {
    {Sql::Begin, "BEGIN"},
    {Sql::BeginWrite, "BEGIN IMMEDIATE"},
    {Sql::Commit, "COMMIT"},
    {Sql::Rollback, "ROLLBACK"},
    {Sql::KeyName, "SELECT name FROM keys WHERE id = ?"},
    {Sql::FindChild, "SELECT id FROM keys WHERE parent = ? AND folded = ?"},
    {Sql::CreateChild, "INSERT INTO keys(parent, folded, name) VALUES (?, ?, ?)"},
    {Sql::ChildNames, "SELECT name FROM keys WHERE parent = ? ORDER BY folded"},
    {Sql::ChildName, "SELECT name FROM keys WHERE parent = ? ORDER BY folded LIMIT 1 OFFSET ?"},
    {Sql::DeleteChildren, "DELETE FROM keys WHERE parent = ?"},
    {Sql::DeleteKey, "DELETE FROM keys WHERE id = ?"},
    {Sql::ReadValue, "SELECT type, data FROM key_values WHERE key = ? AND folded = ?"},
    {Sql::WriteValue,
     "INSERT INTO key_values(key, folded, name, type, data) VALUES (?, ?, ?, ?, ?) "
     "ON CONFLICT(key, folded) DO UPDATE SET type = excluded.type, data = excluded.data"},
    {Sql::DeleteValue, "DELETE FROM key_values WHERE key = ? AND folded = ?"},
    {Sql::DeleteValues, "DELETE FROM key_values WHERE key = ?"},
};

constexpr bool InOrder() {
    for (std::size_t i = 0; i < std::size(kTexts); ++i) {
        if (kTexts[i].sql != static_cast<Sql>(i)) return false;
    }
    return std::size(kTexts) == static_cast<std::size_t>(Sql::Count);
}
static_assert(InOrder());

struct SqliteStatus {
    int result;
    LSTATUS status;
};

constexpr SqliteStatus kStatuses[] = {
    {SQLITE_OK, ERROR_SUCCESS},
    {SQLITE_ROW, ERROR_SUCCESS},
    {SQLITE_DONE, ERROR_SUCCESS},
    {SQLITE_BUSY, ERROR_BUSY},
    {SQLITE_LOCKED, ERROR_BUSY},
    {SQLITE_NOMEM, ERROR_NOT_ENOUGH_MEMORY},
    {SQLITE_TOOBIG, ERROR_INVALID_PARAMETER},
    {SQLITE_FULL, ERROR_DISK_FULL},
    {SQLITE_PERM, ERROR_ACCESS_DENIED},
    {SQLITE_READONLY, ERROR_ACCESS_DENIED},
    {SQLITE_CANTOPEN, ERROR_ACCESS_DENIED},
    {SQLITE_AUTH, ERROR_ACCESS_DENIED},
    {SQLITE_IOERR, ERROR_IO_DEVICE},
    {SQLITE_CORRUPT, ERROR_BADDB},
    {SQLITE_NOTADB, ERROR_BADDB},
    {SQLITE_CONSTRAINT, ERROR_KEY_DELETED},
};

// Whoever opens the registry while nobody else has it open reads the whole journal first. SQLite's own
// checkpoints let it grow: processes that write and end know nothing of each other's, and none begins the
// journal anew.
int KeepJournalShort(void*, sqlite3* connection, const char* database, int pages) {
    if (pages < kMaxJournalPages) return SQLITE_OK;
    sqlite3_busy_timeout(connection, 0);  // while somebody reads, it stays for the next write
    sqlite3_wal_checkpoint_v2(connection, database, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
    sqlite3_busy_timeout(connection, kBusyTimeoutMs);
    return SQLITE_OK;  // what was committed is so in either case
}

}  // namespace

LSTATUS StatusFromSqlite(int result) {
    for (const SqliteStatus& row : kStatuses) {
        if (row.result == (result & 0xFF)) return row.status;
    }
    return ERROR_GEN_FAILURE;
}

LSTATUS RegistryDatabase::Open() {
    const std::string& state = StateDirectory();
    if (state.empty()) return static_cast<LSTATUS>(GetLastError());
    // One process at a time makes the file, its journal and its tables: SQLite's own busy wait does not cover
    // the change of the journal mode.
    const HeldFolder held(state);
    // SQLite makes its two companion files like this one.
    if (!held || (!MakeOwnFile(state, kFile) && errno != EEXIST))
        return static_cast<LSTATUS>(ErrorFromErrno(errno));

    sqlite3* opened = nullptr;
    const std::string path = state + '/' + kFile;
    // Not SQLITE_OPEN_NOFOLLOW: it refuses a link anywhere on the way, such as a linked /home. The folder was
    // checked.
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX;
    const int result = sqlite3_open_v2(path.c_str(), &opened, flags, nullptr);
    connection_.reset(opened);  // also after a failure there is something to close
    LSTATUS outcome = StatusFromSqlite(result);
    if (outcome == ERROR_SUCCESS) outcome = Prepare();
    if (outcome != ERROR_SUCCESS) Close();
    return outcome;
}

LSTATUS RegistryDatabase::Prepare() {
    sqlite3_busy_timeout(connection_.get(), kBusyTimeoutMs);
    // Emptying the journal at every close would make each fork and each short-lived process wait for the
    // disk.
    sqlite3_db_config(connection_.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    sqlite3_wal_hook(connection_.get(), KeepJournalShort, nullptr);
    constexpr const char* kSettings[] = {"PRAGMA journal_mode = WAL", "PRAGMA synchronous = FULL",
                                         "PRAGMA foreign_keys = ON"};
    for (const char* setting : kSettings) {
        if (const LSTATUS failure = Execute(setting); failure != ERROR_SUCCESS) return failure;
    }
    sqlite3_stmt* raw = nullptr;
    const int prepared = sqlite3_prepare_v2(connection_.get(), "PRAGMA user_version", -1, &raw, nullptr);
    const std::unique_ptr<sqlite3_stmt, StatementCloser> version(raw);
    if (prepared != SQLITE_OK || sqlite3_step(raw) != SQLITE_ROW) return LastStatus();
    const int found = sqlite3_column_int(raw, 0);
    if (found == kSchemaVersion) return ERROR_SUCCESS;
    if (found != 0) return ERROR_BADDB;  // made by a later winport
    sqlite3_reset(raw);
    const std::string schema = std::string("BEGIN IMMEDIATE;") + kSchema + "COMMIT;";
    return Execute(schema.c_str());
}

LSTATUS RegistryDatabase::Execute(const char* text) {
    return StatusFromSqlite(sqlite3_exec(connection_.get(), text, nullptr, nullptr, nullptr));
}

void RegistryDatabase::Close() {
    for (auto& statement : statements_)
        statement.reset();
    connection_.reset();
}

sqlite3_stmt* RegistryDatabase::Statement(Sql sql) {
    auto& kept = statements_[static_cast<std::size_t>(sql)];
    if (!kept) {
        sqlite3_stmt* made = nullptr;
        const char* text = kTexts[static_cast<std::size_t>(sql)].text;
        sqlite3_prepare_v3(connection_.get(), text, -1, SQLITE_PREPARE_PERSISTENT, &made, nullptr);
        kept.reset(made);
    }
    return kept.get();
}

Query& Query::Bind(sqlite3_int64 number) {
    if (statement_ != nullptr) Note(sqlite3_bind_int64(statement_, ++bound_, number));
    return *this;
}

Query& Query::Bind(std::string_view text) {
    if (statement_ != nullptr) {
        Note(sqlite3_bind_text64(statement_, ++bound_, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8));
    }
    return *this;
}

Query& Query::BindBytes(std::string_view bytes) {
    if (statement_ == nullptr) return *this;
    // A null pointer would bind NULL, which is no empty value.
    const char* data = bytes.empty() ? "" : bytes.data();
    Note(sqlite3_bind_blob64(statement_, ++bound_, data, bytes.size(), SQLITE_STATIC));
    return *this;
}

bool Query::Step() {
    if (statement_ == nullptr) status_ = database_.LastStatus();
    if (status_ != ERROR_SUCCESS) return false;
    const int result = sqlite3_step(statement_);
    Note(result);
    return result == SQLITE_ROW;
}

std::string_view Query::Bytes(int column) const {
    const void* data = sqlite3_column_blob(statement_, column);
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, column));
    return data != nullptr ? std::string_view(static_cast<const char*>(data), size) : std::string_view();
}

void Query::Note(int result) {
    if (status_ == ERROR_SUCCESS) status_ = StatusFromSqlite(result);
}

}  // namespace winport
