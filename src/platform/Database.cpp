#include "platform/Database.h"

#include "platform/JetSql.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QUrl>
#include <QUuid>
#include <sqlite3.h>

namespace {

void likeFunction(sqlite3_context* ctx, int argc, sqlite3_value** argv)
{
    if (argc < 2 || sqlite3_value_type(argv[0]) == SQLITE_NULL ||
        sqlite3_value_type(argv[1]) == SQLITE_NULL) {
        sqlite3_result_null(ctx);
        return;
    }
    const auto text = [](sqlite3_value* v) {
        return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_value_text(v)),
                                 sqlite3_value_bytes(v));
    };
    sqlite3_result_int(ctx, jetLike(text(argv[0]), text(argv[1])) ? 1 : 0);
}

sqlite3* handleOf(const QSqlDatabase& db)
{
    const QVariant v = db.driver()->handle();
    if (!v.isValid() || qstrcmp(v.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3* const*>(v.constData());
}

} // namespace

bool installJetLike(const QSqlDatabase& db)
{
    sqlite3* h = handleOf(db);
    if (!h)
        return false;
    return sqlite3_create_function_v2(h, "like", 2, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
                                      likeFunction, nullptr, nullptr, nullptr) == SQLITE_OK;
}

DatabaseOpenResult openDatabase(const QString& path, const QString& connectionName)
{
    DatabaseOpenResult result;
    const QFileInfo info(path);
    if (!info.exists() || !info.isFile()) {
        result.errorNumber = kErrFileNotFound;
        result.source = QStringLiteral("DAO.Workspace");
        result.description = QStringLiteral("Could not find file '%1'.").arg(path);
        return result;
    }
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connectionName);
    // The URI form with mode=rw refuses to create a file that vanished in the meantime.
    db.setDatabaseName(QUrl::fromLocalFile(info.absoluteFilePath()).toString() +
                       QLatin1String("?mode=rw"));
    db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=5000"));
    if (!db.open()) {
        result.errorNumber = kErrNotADatabase;
        result.source = QStringLiteral("DAO.Workspace");
        result.description = db.lastError().text();
        return result;
    }
    // Installed before any statement runs: SQLite refuses to replace a function while a
    // statement is still pending, and finds would then fall back to its own LIKE.
    if (!installJetLike(db)) {
        result.errorNumber = kErrNotADatabase;
        result.source = QStringLiteral("DAO.Workspace");
        result.description = QStringLiteral("Unrecognized database format '%1'.").arg(path);
        db.close();
        return result;
    }
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("SELECT count(*) FROM sqlite_master"))) {
        result.errorNumber = kErrNotADatabase;
        result.source = QStringLiteral("DAO.Workspace");
        result.description = QStringLiteral("Unrecognized database format '%1'.").arg(path);
        db.close();
        return result;
    }
    if (!q.exec(QStringLiteral("SELECT 1 FROM Items LIMIT 1"))) {
        result.errorNumber = kErrNoItemsTable;
        result.source = QStringLiteral("DAO.Database");
        result.description = QStringLiteral("The database engine cannot find the input table or "
                                            "query 'Items'.  Make sure it exists and that its "
                                            "name is spelled correctly.");
        db.close();
        return result;
    }
    q.exec(QStringLiteral("PRAGMA journal_mode=WAL"));
    q.finish();
    result.database = db;
    return result;
}

QString createDatabaseIfMissing(const QString& path, const QString& schemaScript)
{
    if (QFileInfo::exists(path))
        return {};
    const QString temp = path + QLatin1String(".new");
    QFile::remove(temp);
    const QString name = QUuid::createUuid().toString();
    QString error;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(temp);
        if (!db.open()) {
            error = db.lastError().text();
        } else {
            QSqlQuery q(db);
            // Statements are separated by lines holding only ";;" so triggers may contain ';'.
            for (const QString& statement : schemaScript.split(QStringLiteral("\n;;\n"))) {
                if (statement.trimmed().isEmpty())
                    continue;
                if (!q.exec(statement)) {
                    error = q.lastError().text() + QLatin1String(": ") + statement.left(80);
                    break;
                }
            }
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    if (!error.isEmpty()) {
        QFile::remove(temp);
        return error;
    }
    if (!QFile::rename(temp, path))
        return QStringLiteral("could not move %1 into place").arg(temp);
    return {};
}
