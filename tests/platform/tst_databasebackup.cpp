// Online backups of the item database: the copy and what a failure leaves behind, restoring
// into the open connection, the files a restore refuses, and a backup taken while another
// connection keeps writing.
#include "../support/TestEnvironment.h"
#include "FileBytes.h"
#include "platform/DatabaseBackup.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>
#include <atomic>
#include <sqlite3.h>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

// Items with descriptions long enough to spread them over a few hundred pages.
void addLongItems(TestEnvironment& env, int n)
{
    QList<QVariantMap> rows;
    for (int i = 1; i <= n; ++i)
        rows << QVariantMap{{u"ShortDescription"_s, u"Item %1"_s.arg(i)},
                            {u"Description"_s, QString(1000, QChar(u'a' + i % 26))}};
    env.addItems(rows);
}

// Runs the statements on a file opened for the purpose (made when missing); the first value
// of the last one. A statement that fails fails the test.
QVariant sqlIn(const QString& file, const QStringList& statements)
{
    const QString name = u"peek"_s;
    QVariant v;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        db.setDatabaseName(file);
        db.open();
        QSqlQuery q(db);
        for (const QString& sql : statements)
            if (!q.exec(sql))
                QTest::qFail(qPrintable(sql + u' ' + q.lastError().text()), __FILE__, __LINE__);
        if (q.next())
            v = q.value(0);
    }
    QSqlDatabase::removeDatabase(name);
    return v;
}

} // namespace

class TestDatabaseBackup : public QObject
{
    Q_OBJECT
private slots:
    void backup_data();
    void backup();
    void restore_data();
    void restore();
    void backupWhileWriting();
    void snapshotCopyHoldsWhatWasThere();
};

void TestDatabaseBackup::backup_data()
{
    QTest::addColumn<QString>("failure");
    QTest::newRow("copied") << "";
    QTest::newRow("cancelled") << "cancel";
    QTest::newRow("no such database") << "source";
    QTest::newRow("folder not writable") << "folder";
    QTest::newRow("target is a folder") << "taken";
}

// A good copy replaces the target whole; a failed or cancelled one leaves it as it was. Either
// way nothing is left beside it.
void TestDatabaseBackup::backup()
{
    QFETCH(QString, failure);
    TestEnvironment env;
    addLongItems(env, 300);
    QTemporaryDir out;
    const QString target = out.filePath(u"copy.mdb"_s);
    const bool taken = failure == u"taken";
    if (taken) // renaming the finished copy over it fails
        QVERIFY(QDir().mkpath(target));
    const QString older = taken ? target + u"/keep"_s : target;
    QVERIFY(writeBytes(older, "an older copy"));
    QString source = env.path(u"tb2.mdb"_s);
    if (failure == u"source")
        source = env.path(u"gone.mdb"_s);
    if (failure == u"folder") {
        if (::geteuid() == 0)
            QSKIP("root writes in any folder");
        QFile::setPermissions(out.path(), QFile::ReadOwner | QFile::ExeOwner);
    }
    int reports = 0;
    const BackupOutcome outcome = backupDatabaseFile(
        source, target,
        [&](int done, int total) {
            ++reports;
            return done <= total && failure != u"cancel";
        },
        20);
    QFile::setPermissions(out.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QCOMPARE(outcome.cancelled, failure == u"cancel");
    QCOMPARE(outcome.error.isEmpty(), failure.isEmpty() || outcome.cancelled);
    QCOMPARE(QDir(out.path()).entryList(QDir::Files | QDir::Hidden),
             taken ? QStringList() : QStringList{u"copy.mdb"_s});
    if (!failure.isEmpty()) {
        QCOMPARE(readBytes(older), QByteArray("an older copy"));
        return;
    }
    QVERIFY(reports > 5); // stepped in chunks, not in one go
    // One self-contained file: rollback journal, no write-ahead log to go with it.
    const QByteArray header = readBytes(target).left(20);
    QCOMPARE(header.left(15), QByteArray("SQLite format 3"));
    QCOMPARE(int(header.at(18)), 1);
    const BackupCheck check = checkBackupFile(target, itemColumns(env.context().itemDatabase));
    QVERIFY2(check.ok(), qPrintable(check.problem));
    QCOMPARE(check.itemCount, 300);
    QCOMPARE(sqlIn(target, {u"SELECT Description FROM Items WHERE ID = 7"_s}),
             QVariant(QString(1000, u'h')));
}

void TestDatabaseBackup::restore_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("expected"); // a pattern the error must match; "" when none
    const auto add = [](const char* name, const char* kind, const char* expected) {
        QTest::newRow(name) << QString::fromLatin1(kind) << QString::fromLatin1(expected);
    };
    add("restored", "restored", "");
    add("cancelled half-way", "cancel", "");
    add("missing", "missing", "does not exist");
    add("text file", "text", "not a database Tallybid can read");
    add("Items is a view", "view", "holds no Items table");
    add("column missing", "column", "has no column Category");
    add("no inactive view", "noview", "has no ClosedItems view");
    add("damaged pages", "damaged", "damaged|not a database Tallybid can read");
    add("the database in use", "live", "is the database in use");
}

// A restore goes into the open connection. A file that is no backup of these items is refused
// with a reason naming it, and a restore stopped half-way leaves the items as they were.
void TestDatabaseBackup::restore()
{
    QFETCH(QString, kind);
    QFETCH(QString, expected);
    TestEnvironment env;
    addLongItems(env, 200);
    QTemporaryDir out;
    QString file = out.filePath(u"candidate.mdb"_s);
    const bool restored = kind == u"restored";
    if (kind == u"damaged" || kind == u"cancel" || kind == u"noview" || restored)
        QVERIFY(backupDatabaseFile(env.path(u"tb2.mdb"_s), file).ok());
    if (kind == u"damaged") {
        QByteArray bytes = readBytes(file);
        // Garbage over the middle pages, where the items' b-tree lies.
        for (qsizetype i = bytes.size() / 3; i < bytes.size() / 2; i += 7)
            bytes[i] = char(0xA5);
        QVERIFY(writeBytes(file, bytes));
    } else if (kind == u"cancel" || restored) { // three items of the 200
        sqlIn(file, {u"DELETE FROM Items WHERE ID > 3"_s});
        if (restored) // the live items go on past the backup's
            env.addNumberedItems(3);
    } else if (kind == u"noview") {
        sqlIn(file, {u"DROP VIEW ClosedItems"_s});
    } else if (kind == u"text") {
        QVERIFY(writeBytes(file, QByteArray("ID,EbayID\n1,2\n").repeated(100)));
    } else if (kind == u"view") {
        sqlIn(file, {u"CREATE TABLE Stock (ID INTEGER PRIMARY KEY)"_s,
                     u"CREATE VIEW Items AS SELECT * FROM Stock"_s});
    } else if (kind == u"column") {
        sqlIn(file, {u"CREATE TABLE Items (ID INTEGER PRIMARY KEY, EbayID TEXT)"_s});
    } else if (kind == u"live") {
        file = env.path(u"tb2.mdb"_s);
    }
    int steps = 0;
    QSqlDatabase live = env.context().itemDatabase;
    const BackupOutcome outcome = restoreDatabaseFrom(
        live, file, [&](int, int) { return ++steps < 3 || restored; }, 4);
    QCOMPARE(outcome.cancelled, kind == u"cancel");
    if (restored) {
        QVERIFY2(outcome.ok(), qPrintable(outcome.error));
        QVERIFY(steps > 3);
        // The same connection reads the restored rows and keeps writing, and so does a
        // connection opened afterwards.
        QCOMPARE(env.itemCount(), 3);
        QSqlQuery q(live);
        QVERIFY(q.exec(u"INSERT INTO Items (ShortDescription) VALUES ('after')"_s));
        QCOMPARE(q.lastInsertId().toLongLong(), 201);
        QVERIFY(q.exec(u"PRAGMA integrity_check"_s) && q.next());
        QCOMPARE(q.value(0).toString(), u"ok"_s);
        q.finish();
        QCOMPARE(sqlIn(env.path(u"tb2.mdb"_s), {u"SELECT count(*) FROM Items"_s}), QVariant(4));
        return;
    }
    QCOMPARE(steps, outcome.cancelled ? 3 : 0); // a refused file is never copied
    QVERIFY2(expected.isEmpty() ? outcome.error.isEmpty()
                                : outcome.error.contains(QRegularExpression(expected)) &&
                                      outcome.error.contains(file),
             qPrintable(outcome.error));
    QCOMPARE(env.itemCount(), 200);
    QCOMPARE(env.storedValue(200, u"ShortDescription"_s).toString(), u"Item 200"_s);
}

// A second connection commits pairs of items and moves an amount between two rows in each
// transaction while the backup copies a few pages at a time. The copy must hold whole
// transactions only: every pair complete and the amounts summing to zero.
void TestDatabaseBackup::backupWhileWriting()
{
    TestEnvironment env;
    addLongItems(env, 600);
    QVERIFY(QSqlQuery(env.context().itemDatabase)
                .exec(u"UPDATE Items SET Reserve = 0 WHERE ID IN (1, 2)"_s));
    const QString database = env.path(u"tb2.mdb"_s);
    std::atomic<bool> stop{false};
    std::atomic<int> commits{0};
    std::atomic<int> failures{0};
    std::thread writer([&] {
        sqlite3* h = nullptr;
        if (sqlite3_open_v2(QFile::encodeName(database).constData(), &h, SQLITE_OPEN_READWRITE,
                            nullptr) != SQLITE_OK)
            ++failures;
        sqlite3_busy_timeout(h, 5000);
        for (int n = 1; !stop && failures == 0; ++n) {
            const QByteArray sql =
                QStringLiteral("BEGIN IMMEDIATE;"
                               "INSERT INTO Items (ShortDescription, Description) "
                               "VALUES ('pair %1 a', '%2'), ('pair %1 b', '%2');"
                               "UPDATE Items SET Reserve = Reserve + %1 WHERE ID = 1;"
                               "UPDATE Items SET Reserve = Reserve - %1 WHERE ID = 2;"
                               "UPDATE Items SET Description = 'rewritten %1' WHERE ID = %3;"
                               "COMMIT;")
                    .arg(n)
                    .arg(QString(1500, u'w'))
                    .arg(3 + n % 500)
                    .toUtf8();
            ++(sqlite3_exec(h, sql.constData(), nullptr, nullptr, nullptr) == SQLITE_OK ? commits
                                                                                        : failures);
        }
        sqlite3_close(h);
    });
    while (commits < 5 && failures == 0)
        QThread::msleep(1);

    QTemporaryDir out;
    const QString file = out.filePath(u"during.mdb"_s);
    int first = -1;
    int last = -1;
    const BackupOutcome outcome = backupDatabaseFile(
        database, file,
        [&](int, int) {
            if (first < 0)
                first = commits;
            last = commits;
            QThread::msleep(2);
            return true;
        },
        8);
    stop = true;
    writer.join();
    QVERIFY2(outcome.ok(), qPrintable(outcome.error));
    QCOMPARE(failures.load(), 0);
    QVERIFY2(last > first, "the writer committed nothing while the copy ran");

    const BackupCheck check = checkBackupFile(file, itemColumns(env.context().itemDatabase));
    QVERIFY2(check.ok(), qPrintable(check.problem));
    const auto value = [&](const char* sql) {
        return sqlIn(file, {QLatin1String(sql)}).toLongLong();
    };
    const qint64 pairs = value("SELECT count(*) FROM Items WHERE ShortDescription LIKE 'pair %'");
    QCOMPARE(pairs % 2, 0);
    const qint64 n = pairs / 2;
    // The snapshot is the one read before the first step.
    QVERIFY(n >= 5 && n <= first);
    QCOMPARE(value("SELECT count(*) FROM Items a WHERE a.ShortDescription LIKE 'pair % a' AND NOT "
                   "EXISTS (SELECT 1 FROM Items b WHERE b.ShortDescription = "
                   "substr(a.ShortDescription, 1, length(a.ShortDescription) - 1) || 'b')"),
             0);
    QCOMPARE(value("SELECT Reserve FROM Items WHERE ID = 1"), n * (n + 1) / 2);
    QCOMPARE(value("SELECT sum(Reserve) FROM Items WHERE ID IN (1, 2)"), 0);
}

QTEST_GUILESS_MAIN(TestDatabaseBackup)
#include "tst_databasebackup.moc"

// A copy made in two steps holds the items as they were when it was made, whatever is committed
// before it is written; and it is written once.
void TestDatabaseBackup::snapshotCopyHoldsWhatWasThere()
{
    TestEnvironment env;
    addLongItems(env, 50);
    QTemporaryDir out;
    const QString file = out.filePath(u"copy.mdb"_s);
    SnapshotCopy copy(env.path(u"tb2.mdb"_s), file);
    QSqlQuery q(env.context().itemDatabase);
    QVERIFY(q.exec(u"DELETE FROM Items WHERE ID <= 10"_s));
    QVERIFY(q.exec(u"INSERT INTO Items (ShortDescription) VALUES ('later')"_s));
    const BackupOutcome outcome = copy.run();
    QVERIFY2(outcome.ok(), qPrintable(outcome.error));
    QCOMPARE(checkBackupFile(file, {}).itemCount, 50);
    QCOMPARE(sqlIn(file, {u"SELECT count(*) FROM Items WHERE ShortDescription = 'later'"_s}),
             QVariant(0));
    QVERIFY(!copy.run().ok());
}
