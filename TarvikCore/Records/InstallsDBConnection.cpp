#include "Records/InstallsDBConnection.h"

#include "Platform/Files/Files.h"

#include <sqlite3.h>

namespace tarvik {

void InstallsDBConnection::Closer::operator()(sqlite3* handle) const {
    sqlite3_close(handle);
}

void InstallsDBConnection::Statement::Finalizer::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

std::optional<InstallsDBConnection> InstallsDBConnection::open(const fs::path& database, Access access) {
    const auto info = Files::infoFollowingLinks(database);
    if (!info || info->type != Files::ItemType::regular) return std::nullopt;  // Opening a pipe would wait.
    sqlite3* handle = nullptr;
    const int flags = access == Access::readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
    const int status = sqlite3_open_v2(database.c_str(), &handle, flags, nullptr);
    InstallsDBConnection connection;
    connection.m_handle.reset(handle);  // A failed opening leaves a handle too.
    if (status != SQLITE_OK) return std::nullopt;
    return connection;
}

std::optional<InstallsDBConnection::Statement> InstallsDBConnection::prepare(std::string_view sql) {
    sqlite3_stmt* handle = nullptr;
    const int status = sqlite3_prepare_v2(m_handle.get(), sql.data(), static_cast<int>(sql.size()), &handle, nullptr);
    Statement statement;
    statement.m_handle.reset(handle);
    if (status != SQLITE_OK) return std::nullopt;
    return statement;
}

int InstallsDBConnection::changedRows() const {
    return sqlite3_changes(m_handle.get());
}

InstallsDBConnection::Statement& InstallsDBConnection::Statement::bind(const std::optional<std::string>& value) {
    ++m_boundCount;
    if (value) {
        sqlite3_bind_text(m_handle.get(), m_boundCount, value->c_str(), -1, SQLITE_TRANSIENT);
    } else {
        sqlite3_bind_null(m_handle.get(), m_boundCount);
    }
    return *this;
}

bool InstallsDBConnection::Statement::nextRow() {
    return sqlite3_step(m_handle.get()) == SQLITE_ROW;
}

bool InstallsDBConnection::Statement::run() {
    return sqlite3_step(m_handle.get()) == SQLITE_DONE;
}

std::optional<std::string> InstallsDBConnection::Statement::text(int column) const {
    const auto* const bytes = sqlite3_column_text(m_handle.get(), column);
    if (!bytes) return std::nullopt;
    return reinterpret_cast<const char*>(bytes);
}

}  // namespace tarvik
