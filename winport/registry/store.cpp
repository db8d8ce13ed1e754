#include "winport/registry/store.h"

#include <pthread.h>

#include <cstring>
#include <memory>

#include "winport/registry/database.h"
#include "winport/text/case_fold.h"
#include "winport/text/utf.h"

namespace winport {

namespace {

constinit std::mutex registryMutex;

// Never destroyed: threads may be in the registry while the process exits.
RegistryDatabase& Database() {
    static RegistryDatabase& database = *std::make_unique<RegistryDatabase>().release();
    return database;
}

void BeforeFork() {
    registryMutex.lock();
    Database().Close();
}

void AfterFork() {
    registryMutex.unlock();
}

[[gnu::constructor]] void CloseBeforeForks() {
    ::pthread_atfork(BeforeFork, AfterFork, AfterFork);
}

std::string Folded(std::u16string_view name) {
    return ToUtf8(FoldCase(name));
}

// The next name of a path; several "\" in a row count as one. Empty at the end.
std::u16string_view TakeName(std::u16string_view& path) {
    while (!path.empty() && path.front() == u'\\')
        path.remove_prefix(1);
    const std::u16string_view name = path.substr(0, path.find(u'\\'));
    path.remove_prefix(name.size());
    return name;
}

}  // namespace

RegistrySession::RegistrySession(Purpose purpose) : guard_(registryMutex), database_(&Database()) {
    if (!database_->IsOpen()) status_ = database_->Open();
    if (status_ != ERROR_SUCCESS) return;
    Query begin(*database_, purpose == Purpose::Write ? Sql::BeginWrite : Sql::Begin);
    begin.Step();
    status_ = begin.Status();
    inTransaction_ = status_ == ERROR_SUCCESS;
}

RegistrySession::~RegistrySession() {
    if (inTransaction_) Query(*database_, Sql::Rollback).Step();
    // SQLite takes a file that it could not open for writing, be it for want of descriptors, as one that is
    // only read, and stays with that: the next call opens it anew.
    if (status_ == ERROR_ACCESS_DENIED || status_ == ERROR_IO_DEVICE) database_->Close();
}

LSTATUS RegistrySession::Commit() {
    if (status_ != ERROR_SUCCESS) return status_;
    Query commit(*database_, Sql::Commit);
    commit.Step();
    status_ = commit.Status();
    inTransaction_ = status_ != ERROR_SUCCESS;
    return status_;
}

bool RegistrySession::Exists(KeyId key) {
    return Name(key).has_value();
}

KeyId RegistrySession::FindChild(KeyId parent, std::u16string_view name) {
    if (status_ != ERROR_SUCCESS) return 0;
    const std::string folded = Folded(name);
    Query query(*database_, Sql::FindChild);
    const bool found = query.Bind(parent).Bind(folded).Step();
    status_ = query.Status();
    return found ? query.Number(0) : 0;
}

KeyId RegistrySession::CreateChild(KeyId parent, std::u16string_view name) {
    if (status_ != ERROR_SUCCESS) return 0;
    if (name.size() > kMaxKeyNameLength) {
        status_ = ERROR_INVALID_PARAMETER;
        return 0;
    }
    const std::string folded = Folded(name);
    const std::string shown = ToUtf8(name);
    Query query(*database_, Sql::CreateChild);
    query.Bind(parent).Bind(folded).Bind(shown).Step();
    status_ = query.Status();
    return status_ == ERROR_SUCCESS ? database_->LastInsertId() : 0;
}

KeyId RegistrySession::Find(KeyId parent, std::u16string_view path) {
    KeyId key = Exists(parent) ? parent : 0;
    for (auto name = TakeName(path); key != 0 && !name.empty(); name = TakeName(path))
        key = FindChild(key, name);
    return key;
}

KeyId RegistrySession::Create(KeyId parent, std::u16string_view path, bool& created) {
    created = false;
    KeyId key = parent;
    for (auto name = TakeName(path); !name.empty(); name = TakeName(path)) {
        const KeyId found = FindChild(key, name);
        created = found == 0;
        key = created ? CreateChild(key, name) : found;
        if (status_ != ERROR_SUCCESS) return 0;
    }
    return key;
}

std::optional<std::u16string> RegistrySession::Name(KeyId key) {
    if (status_ != ERROR_SUCCESS) return std::nullopt;
    Query query(*database_, Sql::KeyName);
    const bool found = query.Bind(key).Step();
    status_ = query.Status();
    if (!found) return std::nullopt;
    return FromUtf8(query.Bytes(0));
}

std::vector<std::u16string> RegistrySession::ChildNames(KeyId key) {
    std::vector<std::u16string> names;
    if (status_ != ERROR_SUCCESS) return names;
    Query query(*database_, Sql::ChildNames);
    query.Bind(key);
    while (query.Step())
        names.push_back(FromUtf8(query.Bytes(0)));
    status_ = query.Status();
    return names;
}

std::optional<std::u16string> RegistrySession::ChildName(KeyId key, DWORD index) {
    if (status_ != ERROR_SUCCESS) return std::nullopt;
    Query query(*database_, Sql::ChildName);
    const bool found = query.Bind(key).Bind(sqlite3_int64{index}).Step();
    status_ = query.Status();
    if (!found) return std::nullopt;
    return FromUtf8(query.Bytes(0));
}

void RegistrySession::Clear(KeyId key) {
    for (const Sql sql : {Sql::DeleteChildren, Sql::DeleteValues}) {
        if (status_ != ERROR_SUCCESS) return;
        Query query(*database_, sql);
        query.Bind(key).Step();
        status_ = query.Status();
    }
}

void RegistrySession::DeleteTree(KeyId key) {
    if (status_ != ERROR_SUCCESS) return;
    Query query(*database_, Sql::DeleteKey);
    query.Bind(key).Step();
    status_ = query.Status();
}

std::optional<RegistryValue> RegistrySession::Read(KeyId key, std::u16string_view name) {
    if (status_ != ERROR_SUCCESS) return std::nullopt;
    const std::string folded = Folded(name);
    Query query(*database_, Sql::ReadValue);
    const bool found = query.Bind(key).Bind(folded).Step();
    status_ = query.Status();
    if (!found) return std::nullopt;
    return RegistryValue{static_cast<DWORD>(query.Number(0)), std::string(query.Bytes(1))};
}

void RegistrySession::Write(KeyId key, std::u16string_view name, DWORD type, std::string_view bytes) {
    if (status_ != ERROR_SUCCESS) return;
    const std::string folded = Folded(name);
    const std::string shown = ToUtf8(name);
    Query query(*database_, Sql::WriteValue);
    query.Bind(key).Bind(folded).Bind(shown).Bind(sqlite3_int64{type}).BindBytes(bytes).Step();
    status_ = query.Status();
}

bool RegistrySession::DeleteValue(KeyId key, std::u16string_view name) {
    if (status_ != ERROR_SUCCESS) return false;
    const std::string folded = Folded(name);
    Query query(*database_, Sql::DeleteValue);
    query.Bind(key).Bind(folded).Step();
    status_ = query.Status();
    return status_ == ERROR_SUCCESS && database_->Changes() > 0;
}

void WriteText(RegistrySession& session, KeyId key, std::u16string_view name, std::u16string_view text) {
    const std::u16string terminated(text);
    const auto* bytes = reinterpret_cast<const char*>(terminated.c_str());
    session.Write(key, name, REG_SZ, {bytes, (terminated.size() + 1) * sizeof(char16_t)});
}

void WriteNumber(RegistrySession& session, KeyId key, std::u16string_view name, DWORD number) {
    session.Write(key, name, REG_DWORD, {reinterpret_cast<const char*>(&number), sizeof number});
}

std::u16string ReadText(RegistrySession& session, KeyId key, std::u16string_view name) {
    const auto value = session.Read(key, name);
    if (!value || value->type != REG_SZ) return {};
    std::u16string text(value->bytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(text.data(), value->bytes.data(), text.size() * sizeof(char16_t));
    text.resize(std::u16string_view(text).substr(0, text.find(u'\0')).size());
    return text;
}

DWORD ReadNumber(RegistrySession& session, KeyId key, std::u16string_view name, DWORD fallback) {
    const auto value = session.Read(key, name);
    DWORD number = fallback;
    if (value && value->type == REG_DWORD && value->bytes.size() == sizeof number) {
        std::memcpy(&number, value->bytes.data(), sizeof number);
    }
    return number;
}

}  // namespace winport
