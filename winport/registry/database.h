// The SQLite connection below the registry's sessions: opening, prepared statements, error values.
#pragma once

#include <sqlite3.h>
#include <windows.h>

#include <array>
#include <memory>
#include <string_view>

namespace winport {

enum class Sql {
    Begin,
    BeginWrite,
    Commit,
    Rollback,
    KeyName,
    FindChild,
    CreateChild,
    ChildNames,
    ChildName,
    DeleteChildren,
    DeleteKey,
    ReadValue,
    WriteValue,
    DeleteValue,
    DeleteValues,
    Count
};

LSTATUS StatusFromSqlite(int result);

struct ConnectionCloser {
    void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
};
struct StatementCloser {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

// Used under the mutex of the registry alone.
class RegistryDatabase final {
  public:
    // Opens the file, making it and its tables when they are missing. A Windows error value, 0 on success.
    [[nodiscard]] LSTATUS Open();
    [[nodiscard]] bool IsOpen() const { return connection_ != nullptr; }
    void Close();

    // Prepared at its first use and kept. Null on failure; `LastStatus` says why.
    [[nodiscard]] sqlite3_stmt* Statement(Sql sql);
    [[nodiscard]] LSTATUS LastStatus() const { return StatusFromSqlite(sqlite3_errcode(connection_.get())); }
    [[nodiscard]] sqlite3_int64 LastInsertId() const { return sqlite3_last_insert_rowid(connection_.get()); }
    [[nodiscard]] int Changes() const { return sqlite3_changes(connection_.get()); }

  private:
    [[nodiscard]] LSTATUS Execute(const char* text);
    [[nodiscard]] LSTATUS Prepare();

    // Before the statements, so that it is closed after them.
    std::unique_ptr<sqlite3, ConnectionCloser> connection_;
    std::array<std::unique_ptr<sqlite3_stmt, StatementCloser>, static_cast<std::size_t>(Sql::Count)>
        statements_;
};

// One run of a prepared statement: bind in order, then step. Bound texts and bytes must outlive it.
class Query final {
  public:
    Query(RegistryDatabase& database, Sql sql) : database_(database), statement_(database.Statement(sql)) {}
    ~Query() {
        if (statement_ != nullptr) sqlite3_reset(statement_);
    }
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;

    Query& Bind(sqlite3_int64 number);
    Query& Bind(std::string_view text);
    Query& BindBytes(std::string_view bytes);

    // True when there is a row. False at the end and on failure, which `Status` tells apart.
    bool Step();
    [[nodiscard]] LSTATUS Status() const { return status_; }

    [[nodiscard]] sqlite3_int64 Number(int column) const { return sqlite3_column_int64(statement_, column); }
    // Valid until the next step.
    [[nodiscard]] std::string_view Bytes(int column) const;

  private:
    void Note(int result);

    RegistryDatabase& database_;
    sqlite3_stmt* statement_;
    int bound_ = 0;
    LSTATUS status_ = ERROR_SUCCESS;
};

}  // namespace winport
