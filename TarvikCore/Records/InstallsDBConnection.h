#pragma once

#include "Platform/Basics/Path.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace tarvik {

/// A connection to the tracking database, closed at the end of its life; for `InstallsDB` and `InstallsDBWriter` alone.
/// Nothing waits for a lock that someone else holds. To be used by one thread.
class InstallsDBConnection {
public:
    enum class Access { readOnly, readWrite };

    /// Nothing when the file is absent or cannot be opened. No file is ever made.
    static std::optional<InstallsDBConnection> open(const fs::path& database, Access access);

    /// One statement, with its values bound and its rows read in order; ends before its connection does.
    class Statement {
    public:
        /// Binds the values of the question marks from the first on; an absent one is NULL. Bytes stand as they are.
        Statement& bind(const std::optional<std::string>& value);
        /// Goes to the next row; false when there is none, or on a failure.
        bool nextRow();
        /// Runs a statement that yields no rows; false on a failure.
        bool run();
        /// The text in a column of the row, counted from 0; nothing for NULL.
        std::optional<std::string> text(int column) const;

    private:
        friend class InstallsDBConnection;
        struct Finalizer {
            void operator()(sqlite3_stmt* statement) const;
        };
        std::unique_ptr<sqlite3_stmt, Finalizer> m_handle;
        int m_boundCount = 0;
    };

    /// Nothing when the database has no such tables, or is none.
    std::optional<Statement> prepare(std::string_view sql);
    /// How many rows the last statement that ran changed.
    int changedRows() const;

private:
    struct Closer {
        void operator()(sqlite3* handle) const;
    };
    std::unique_ptr<sqlite3, Closer> m_handle;
};

}  // namespace tarvik
