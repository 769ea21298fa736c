#pragma once

#include <QString>

#include <sqlite3.h>

#include <utility>

// The benchmarks' reference: SQLite on a read-only connection of its own, stepping through a
// statement and reading every column of every row as text, as a window showing them would.
class RawSqlite
{
public:
    explicit RawSqlite(const QString& path)
    {
        if (sqlite3_open_v2(path.toUtf8().constData(), &m_db, SQLITE_OPEN_READONLY, nullptr) !=
            SQLITE_OK)
            qFatal("cannot open %s", qPrintable(path));
    }
    ~RawSqlite() { sqlite3_close(m_db); }
    RawSqlite(const RawSqlite&) = delete;
    RawSqlite& operator=(const RawSqlite&) = delete;

    // Runs sql (with key bound to its one parameter when key >= 0); returns the first row's
    // first two columns as numbers (an aggregate's count and sum), -1 without a row.
    std::pair<qint64, qint64> run(const char* sql, qint64 key = -1) const
    {
        sqlite3_stmt* s = nullptr;
        if (sqlite3_prepare_v2(m_db, sql, -1, &s, nullptr) != SQLITE_OK)
            qFatal("%s: %s", sql, sqlite3_errmsg(m_db));
        if (key >= 0)
            sqlite3_bind_int64(s, 1, key);
        std::pair<qint64, qint64> first{-1, -1};
        const int columns = sqlite3_column_count(s);
        volatile qint64 sink = 0;
        while (sqlite3_step(s) == SQLITE_ROW) {
            if (first.first < 0)
                first = {sqlite3_column_int64(s, 0), sqlite3_column_int64(s, 1)};
            for (int c = 0; c < columns; ++c)
                sink = sink + sqlite3_column_bytes(s, c) + (sqlite3_column_text(s, c) ? 1 : 0);
        }
        sqlite3_finalize(s);
        return first;
    }
    std::pair<qint64, qint64> run(const QString& sql, qint64 key = -1) const
    {
        return run(sql.toUtf8().constData(), key);
    }

private:
    sqlite3* m_db = nullptr;
};
