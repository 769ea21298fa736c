// Online backups of the item database: the copy, what a failure leaves behind, the checks a
// file must pass before it is restored, restoring into the open connection, and a backup taken
// while another connection keeps writing.
#include "../support/TestEnvironment.h"
#include "platform/DatabaseBackup.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>
#include <atomic>
#include <sqlite3.h>
#include <thread>

namespace {

QByteArray readAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeAll(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
}

// Items with descriptions long enough to spread them over a few hundred pages.
void addLongItems(TestEnvironment& env, int n)
{
    QList<QVariantMap> rows;
    for (int i = 1; i <= n; ++i)
        rows << QVariantMap{{QStringLiteral("ShortDescription"), QStringLiteral("Item %1").arg(i)},
                            {QStringLiteral("Description"), QString(1000, QChar(u'a' + i % 26))}};
    env.addItems(rows);
}

// One statement's single value on a file opened for the purpose.
QVariant valueIn(const QString& file, const QString& sql)
{
    const QString name = QStringLiteral("peek");
    QVariant v;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(file);
        db.open();
        QSqlQuery q(db);
        if (q.exec(sql) && q.next())
            v = q.value(0);
    }
    QSqlDatabase::removeDatabase(name);
    return v;
}

QStringList filesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

} // namespace

class TestDatabaseBackup : public QObject
{
    Q_OBJECT
private slots:
    void backupCopiesItems();
    void failureLeavesTarget_data();
    void failureLeavesTarget();
    void checkFile_data();
    void checkFile();
    void restoreIntoOpenConnection();
    void restoreChangesNothing_data();
    void restoreChangesNothing();
    void backupWhileWriting();
};

void TestDatabaseBackup::backupCopiesItems()
{
    TestEnvironment env;
    addLongItems(env, 300);
    QTemporaryDir out;
    const QString target = out.filePath(QStringLiteral("copy.mdb"));
    writeAll(target, "an older copy");
    int reports = 0;
    const BackupOutcome outcome = backupDatabaseFile(
        env.path(QStringLiteral("tb2.mdb")), target,
        [&](int done, int total) {
            ++reports;
            return done <= total;
        },
        20);
    QVERIFY2(outcome.ok(), qPrintable(outcome.error));
    QVERIFY(reports > 5); // stepped in chunks, not in one go
    // One self-contained file: rollback journal, nothing left beside it.
    const QByteArray header = readAll(target).left(20);
    QCOMPARE(header.left(15), QByteArray("SQLite format 3"));
    QCOMPARE(int(header.at(18)), 1);
    QCOMPARE(filesIn(out.path()), QStringList{QStringLiteral("copy.mdb")});
    const BackupCheck check = checkBackupFile(target, itemColumns(env.context().itemDatabase));
    QVERIFY2(check.ok(), qPrintable(check.problem));
    QCOMPARE(check.itemCount, 300);
    QCOMPARE(valueIn(target, QStringLiteral("SELECT Description FROM Items WHERE ID = 7")),
             QVariant(QString(1000, u'h')));
}

void TestDatabaseBackup::failureLeavesTarget_data()
{
    QTest::addColumn<QString>("failure");
    QTest::newRow("cancelled") << "cancel";
    QTest::newRow("no such database") << "source";
    QTest::newRow("folder not writable") << "folder";
    QTest::newRow("target is a folder") << "taken";
}

void TestDatabaseBackup::failureLeavesTarget()
{
    QFETCH(QString, failure);
    TestEnvironment env;
    addLongItems(env, 100);
    QTemporaryDir out;
    const QString target = out.filePath(QStringLiteral("copy.mdb"));
    const bool taken = failure == QLatin1String("taken");
    if (taken) {
        // Renaming the finished copy over it fails.
        QVERIFY(QDir().mkpath(target));
        writeAll(target + QStringLiteral("/keep"), "kept");
    } else {
        writeAll(target, "an older copy");
    }
    QString source = env.path(QStringLiteral("tb2.mdb"));
    if (failure == QLatin1String("source"))
        source = env.path(QStringLiteral("gone.mdb"));
    if (failure == QLatin1String("folder")) {
        if (::geteuid() == 0)
            QSKIP("root writes in any folder");
        QFile::setPermissions(out.path(), QFile::ReadOwner | QFile::ExeOwner);
    }
    const BackupOutcome outcome = backupDatabaseFile(
        source, target, [&](int, int) { return failure != QLatin1String("cancel"); }, 10);
    QFile::setPermissions(out.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QVERIFY(!outcome.ok());
    QCOMPARE(outcome.cancelled, failure == QLatin1String("cancel"));
    QCOMPARE(outcome.error.isEmpty(), failure == QLatin1String("cancel"));
    if (taken) {
        QCOMPARE(readAll(target + QStringLiteral("/keep")), QByteArray("kept"));
        QCOMPARE(filesIn(out.path()), QStringList{});
    } else {
        QCOMPARE(readAll(target), QByteArray("an older copy"));
        QCOMPARE(filesIn(out.path()), QStringList{QStringLiteral("copy.mdb")});
    }
}

void TestDatabaseBackup::checkFile_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("expected"); // a pattern the problem must match; "" = accepted
    QTest::newRow("a backup") << "good"
                              << "";
    QTest::newRow("missing") << "missing"
                             << "does not exist";
    QTest::newRow("text file") << "text"
                               << "not a database Tallybid can read";
    QTest::newRow("empty file") << "empty"
                                << "holds no Items table";
    QTest::newRow("other tables") << "other"
                                  << "holds no Items table";
    QTest::newRow("Items is a view") << "view"
                                     << "holds no Items table";
    QTest::newRow("column missing") << "column"
                                    << "has no column Category";
    QTest::newRow("damaged pages") << "damaged"
                                   << "damaged|not a database Tallybid can read";
}

void TestDatabaseBackup::checkFile()
{
    QFETCH(QString, kind);
    QFETCH(QString, expected);
    TestEnvironment env;
    addLongItems(env, 200);
    QTemporaryDir out;
    const QString file = out.filePath(QStringLiteral("candidate.mdb"));
    const auto build = [&](const QStringList& statements) {
        const QString name = QStringLiteral("build");
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
            db.setDatabaseName(file);
            QVERIFY(db.open());
            for (const QString& sql : statements)
                QVERIFY2(QSqlQuery(db).exec(sql), qPrintable(sql));
        }
        QSqlDatabase::removeDatabase(name);
    };
    if (kind == QLatin1String("good") || kind == QLatin1String("damaged")) {
        QVERIFY(backupDatabaseFile(env.path(QStringLiteral("tb2.mdb")), file).ok());
        if (kind == QLatin1String("damaged")) {
            QByteArray bytes = readAll(file);
            // Garbage over the middle pages, where the items' b-tree lies.
            for (qsizetype i = bytes.size() / 3; i < bytes.size() / 2; i += 7)
                bytes[i] = char(0xA5);
            writeAll(file, bytes);
        }
    } else if (kind == QLatin1String("text")) {
        writeAll(file, QByteArray("ID,EbayID\n1,2\n").repeated(100));
    } else if (kind == QLatin1String("empty")) {
        writeAll(file, {});
    } else if (kind == QLatin1String("other")) {
        build({QStringLiteral("CREATE TABLE Stock (ID INTEGER PRIMARY KEY)")});
    } else if (kind == QLatin1String("view")) {
        build({QStringLiteral("CREATE TABLE Stock (ID INTEGER PRIMARY KEY)"),
               QStringLiteral("CREATE VIEW Items AS SELECT * FROM Stock")});
    } else if (kind == QLatin1String("column")) {
        build({QStringLiteral("CREATE TABLE Items (ID INTEGER PRIMARY KEY, EbayID TEXT)")});
    }
    const BackupCheck check = checkBackupFile(file, itemColumns(env.context().itemDatabase));
    if (expected.isEmpty()) {
        QVERIFY2(check.ok(), qPrintable(check.problem));
        QCOMPARE(check.itemCount, 200);
    } else {
        QVERIFY2(check.problem.contains(QRegularExpression(expected)), qPrintable(check.problem));
        QVERIFY(check.problem.contains(file));
    }
}

void TestDatabaseBackup::restoreIntoOpenConnection()
{
    TestEnvironment env;
    addLongItems(env, 150);
    QTemporaryDir out;
    const QString file = out.filePath(QStringLiteral("backup.mdb"));
    QVERIFY(backupDatabaseFile(env.path(QStringLiteral("tb2.mdb")), file).ok());
    QSqlDatabase live = env.context().itemDatabase;
    QSqlQuery q(live);
    QVERIFY(q.exec(QStringLiteral("DELETE FROM Items WHERE ID > 20")));
    QVERIFY(q.exec(QStringLiteral("UPDATE Items SET ShortDescription = 'changed'")));
    env.addNumberedItems(3);
    q.finish();

    const BackupOutcome outcome = restoreDatabaseFrom(live, file, {}, 16);
    QVERIFY2(outcome.ok(), qPrintable(outcome.error));
    // The same connection reads the restored rows and keeps writing.
    QCOMPARE(env.itemCount(), 150);
    QCOMPARE(env.storedValue(150, QStringLiteral("ShortDescription")).toString(),
             QStringLiteral("Item 150"));
    QVERIFY(q.exec(QStringLiteral("INSERT INTO Items (ShortDescription) VALUES ('after')")));
    QCOMPARE(q.lastInsertId().toLongLong(), 151);
    QVERIFY(q.exec(QStringLiteral("PRAGMA integrity_check")) && q.next());
    QCOMPARE(q.value(0).toString(), QStringLiteral("ok"));
    q.finish();
    // And so does a connection opened afterwards.
    QCOMPARE(
        valueIn(env.path(QStringLiteral("tb2.mdb")), QStringLiteral("SELECT count(*) FROM Items")),
        QVariant(151));
}

void TestDatabaseBackup::restoreChangesNothing_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("expected");
    QTest::newRow("text file") << "text"
                               << "not a database Tallybid can read";
    QTest::newRow("the database in use") << "live"
                                         << "is the database in use";
    QTest::newRow("cancelled half-way") << "cancel"
                                        << "";
}

void TestDatabaseBackup::restoreChangesNothing()
{
    QFETCH(QString, kind);
    TestEnvironment env;
    env.addNumberedItems(12);
    QTemporaryDir out;
    QString file = out.filePath(QStringLiteral("candidate.mdb"));
    if (kind == QLatin1String("text"))
        writeAll(file, "not a database at all, just some words");
    else if (kind == QLatin1String("live"))
        file = env.path(QStringLiteral("tb2.mdb"));
    int steps = 0;
    if (kind == QLatin1String("cancel")) {
        // A backup of three other items, spread over many pages.
        QVERIFY(backupDatabaseFile(env.path(QStringLiteral("tb2.mdb")), file).ok());
        const QString name = QStringLiteral("shrink");
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
            db.setDatabaseName(file);
            QVERIFY(db.open());
            QSqlQuery q(db);
            QVERIFY(q.exec(QStringLiteral("DELETE FROM Items WHERE ID > 3")));
            QVERIFY(q.exec(QStringLiteral("UPDATE Items SET Description = zeroblob(50000)")));
        }
        QSqlDatabase::removeDatabase(name);
    }
    const BackupOutcome outcome = restoreDatabaseFrom(
        env.context().itemDatabase, file, [&](int, int) { return ++steps < 3; }, 4);
    QFETCH(QString, expected);
    QVERIFY2(outcome.error.contains(expected), qPrintable(outcome.error));
    QCOMPARE(outcome.cancelled, kind == QLatin1String("cancel"));
    if (outcome.cancelled)
        QCOMPARE(steps, 3);
    QCOMPARE(env.itemCount(), 12);
    QCOMPARE(env.storedValue(12, QStringLiteral("ShortDescription")).toString(),
             QStringLiteral("Item 12"));
}

// A second connection commits pairs of items and moves an amount between two rows in each
// transaction while the backup copies a few pages at a time. The copy must hold whole
// transactions only: every pair complete and the amounts summing to zero.
void TestDatabaseBackup::backupWhileWriting()
{
    TestEnvironment env;
    addLongItems(env, 600);
    QVERIFY(QSqlQuery(env.context().itemDatabase)
                .exec(QStringLiteral("UPDATE Items SET Reserve = 0 WHERE ID IN (1, 2)")));
    const QString database = env.path(QStringLiteral("tb2.mdb"));
    std::atomic<bool> stop{false};
    std::atomic<int> commits{0};
    std::atomic<int> failures{0};
    std::thread writer([&] {
        sqlite3* h = nullptr;
        if (sqlite3_open_v2(QFile::encodeName(database).constData(), &h, SQLITE_OPEN_READWRITE,
                            nullptr) != SQLITE_OK) {
            ++failures;
            sqlite3_close(h);
            return;
        }
        sqlite3_busy_timeout(h, 5000);
        const QByteArray text(1500, 'w');
        for (int n = 1; !stop; ++n) {
            const QByteArray sql =
                "BEGIN IMMEDIATE;"
                "INSERT INTO Items (ShortDescription, Description) VALUES ('pair " +
                QByteArray::number(n) + " a', '" + text +
                "');"
                "INSERT INTO Items (ShortDescription, Description) VALUES ('pair " +
                QByteArray::number(n) + " b', '" + text +
                "');"
                "UPDATE Items SET Reserve = Reserve + " +
                QByteArray::number(n) +
                " WHERE ID = 1;"
                "UPDATE Items SET Reserve = Reserve - " +
                QByteArray::number(n) +
                " WHERE ID = 2;"
                "UPDATE Items SET Description = 'rewritten " +
                QByteArray::number(n) + "' WHERE ID = " + QByteArray::number(3 + n % 500) +
                ";"
                "COMMIT;";
            if (sqlite3_exec(h, sql.constData(), nullptr, nullptr, nullptr) == SQLITE_OK)
                ++commits;
            else {
                ++failures;
                sqlite3_exec(h, "ROLLBACK", nullptr, nullptr, nullptr);
            }
        }
        sqlite3_close(h);
    });
    while (commits < 5 && failures == 0)
        QThread::msleep(1);

    QTemporaryDir out;
    const QString file = out.filePath(QStringLiteral("during.mdb"));
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
    const int pairs =
        valueIn(file,
                QStringLiteral("SELECT count(*) FROM Items WHERE ShortDescription LIKE 'pair %'"))
            .toInt();
    QCOMPARE(pairs % 2, 0);
    // The snapshot is the one read before the first step.
    QVERIFY(pairs / 2 >= 5 && pairs / 2 <= first);
    QCOMPARE(valueIn(file, QStringLiteral("SELECT count(*) FROM Items a WHERE a.ShortDescription "
                                          "LIKE 'pair % a' AND NOT EXISTS (SELECT 1 FROM Items b "
                                          "WHERE b.ShortDescription = substr(a.ShortDescription, "
                                          "1, length(a.ShortDescription) - 1) || 'b')")),
             QVariant(0));
    const int n = pairs / 2;
    QCOMPARE(valueIn(file, QStringLiteral("SELECT Reserve FROM Items WHERE ID = 1")).toLongLong(),
             qint64(n) * (n + 1) / 2);
    QCOMPARE(valueIn(file, QStringLiteral("SELECT sum(Reserve) FROM Items WHERE ID IN (1, 2)"))
                 .toLongLong(),
             0);
}

QTEST_GUILESS_MAIN(TestDatabaseBackup)
#include "tst_databasebackup.moc"
