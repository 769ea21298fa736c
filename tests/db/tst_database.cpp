#include "../support/TestEnvironment.h"
#include "platform/Database.h"

#include <QSqlQuery>
#include <QtTest>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
// A change made between asking for keys and taking them (on another connection when
// elsewhere), and whether the keys are then taken.
// clang-format off
struct Prefetch { QString change; bool elsewhere, sameStatement, taken; KeyOrder order; };
// clang-format on
} // namespace

class TestDatabase : public QObject
{
    Q_OBJECT
    std::unique_ptr<TestEnvironment> m_env;

private slots:
    void initTestCase() { m_env = std::make_unique<TestEnvironment>(); }

    void opening_data()
    {
        QTest::addColumn<QByteArray>("content"); // null: no file at all
        QTest::addColumn<int>("error");
        QTest::newRow("missing") << QByteArray() << kErrFileNotFound;
        QTest::newRow("text file") << QByteArray("Not a database.\n") << kErrNotADatabase;
        QTest::newRow("empty file") << QByteArray("") << kErrNoItemsTable;
        QTest::newRow("made from the schema") << QByteArray("schema") << 0;
    }
    void opening()
    {
        QFETCH(QByteArray, content);
        QTemporaryDir dir; // blanks, # and % in the folder name must not trouble the driver
        const QString path = dir.filePath(u"My Items #2 100% ?/tb2.mdb"_s);
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QFile schema(QStringLiteral(TB_SCHEMA_FILE));
        if (content == "schema" && schema.open(QIODevice::ReadOnly)) {
            QCOMPARE(createDatabaseIfMissing(path, QString::fromUtf8(schema.readAll())), QString());
            QCOMPARE(createDatabaseIfMissing(path, {}), QString()); // leaves the file alone
        } else if (QFile f(path); !content.isNull() && f.open(QIODevice::WriteOnly))
            f.write(content);
        {
            const DatabaseOpenResult opened = openDatabase(path, QTest::currentDataTag());
            QTEST(opened.errorNumber, "error");
            QCOMPARE(opened.description.isEmpty() || opened.source.isEmpty(), opened.ok());
            // A new item takes the table's defaults; a deleted last item's key is not reused.
            QSqlQuery q(opened.database);
            for (const char* sql :
                 {"INSERT INTO Items DEFAULT VALUES", "DELETE FROM Items",
                  "INSERT INTO Items DEFAULT VALUES",
                  "SELECT ID || Active || FeedbackComplete || ifnull(Reserve, 'null') FROM Items"})
                QVERIFY(!opened.ok() || q.exec(sql));
            QCOMPARE(q.next() ? q.value(0).toString() : QString(), opened.ok() ? "210null" : "");
        }
        QSqlDatabase::removeDatabase(QTest::currentDataTag());
        // A missing file is never created, and a foreign one is left as it was.
        QFile f(path);
        QCOMPARE(f.exists(), !content.isNull());
        if (content != "schema" && f.open(QIODevice::ReadOnly))
            QCOMPARE(f.readAll(), content);
    }

    // Finds match with the Jet LIKE installed in the database: * ? # [set] [!set], any case.
    void like_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("value");
        QTest::addColumn<bool>("matches");
        // clang-format off
        const std::tuple<const char*, const char*, bool> cases[] = {
            {"bob@aol.com", "bob@aol.com.au", false}, {"ÄPFEL*", "äpfel rot", true},
            {"*Beanie*", "Rare BEANIE baby", true},   {"*Beanie*", "Beanie", true},
            {"*Beanie*", "Bean", false},              {"*aol.com", "sue@aol.com.x", false},
            {"*ab*ab", "xabyabab", true},             {"a*b*c", "a-b-", false},
            {"b?g", "bag", true},                     {"Lot ##", "Lot 12", true},
            {"12#", "12a", false},                    {"[a-c]at", "Bat", true},
            {"[a-c]at", "rat", false},                {"[!x]1", "y1", true},
            {"[!x]1", "X1", false},                   {"a[*]", "a*", true},
            {"a[b", "a[b", true},                     {"100%", "1000", false},
            {"a_c", "abc", false},                    {"", "x", false},
            // Plain patterns over ASCII are matched on the bytes; these must agree with folding.
            {"ab*ba", "aba", false},                  {"a*b*c", "aXXcYYb", false},
            {"*kelvin*", "\u212Aelvin", true},        {"*sun*", "\u017Fun", true},
            {"*CAFE*", "café", false},                {"???", "日本語", true},
            {"[!a-c]x", "éx", true},                  {"*", "", true}};
        // clang-format on
        for (const auto& [pattern, value, matches] : cases)
            QTest::addRow("%s ~ %s", pattern, value)
                << QString::fromUtf8(pattern) << QString::fromUtf8(value) << matches;
    }
    void like()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, value);
        QSqlQuery q(m_env->context().itemDatabase);
        QVERIFY(q.exec(u"SELECT '%1' LIKE '%2'"_s.arg(value, pattern)) && q.next());
        QTEST(q.value(0).toBool(), "matches");
    }

    // The row shown on every move is read past Qt SQL; each value must still be what a
    // QSqlQuery gives, in type and content, or the boxes and the edit check would change.
    void rowReaderMatchesQtSql_data()
    {
        QTest::addColumn<QString>("value");
        for (const char* v : {"NULL", "0", "-9223372036854775808", "42", "1.5", "0.1", "1e300",
                              "'text'", "''", "'Tom''s hat'", "'Müller ✓'", "X'00ff10'", "x''"})
            QTest::addRow("%s", v) << QString::fromUtf8(v);
    }
    void rowReaderMatchesQtSql()
    {
        QFETCH(QString, value);
        const QSqlDatabase db = m_env->context().itemDatabase;
        QSqlQuery q(db);
        QVERIFY(q.prepare(u"SELECT ?, %1, ? * 2"_s.arg(value)));
        q.addBindValue(7);
        q.addBindValue(7);
        QVERIFY(q.exec() && q.next());
        RowReader reader;
        QVariantList row;
        for (int pass = 0; pass < 2; ++pass) { // the second read reuses the kept statement
            QVERIFY(reader.read(db, u"SELECT ?1, %1, ?1 * 2"_s.arg(value), 7, row));
            QCOMPARE(row.size(), 3);
            for (int c = 0; c < 3; ++c) {
                QCOMPARE(row.at(c).typeId(), q.value(c).typeId());
                QCOMPARE(row.at(c).isNull(), q.value(c).isNull());
                QCOMPARE(row.at(c), q.value(c));
            }
        }
        QVERIFY(!reader.read(db, u"SELECT 1 WHERE ?1 = 0"_s, 7, row));
        QVERIFY(row.isEmpty());
    }

    // Keys read ahead on another connection are taken only while they are still the table's.
    void keyPrefetch_data()
    {
        QTest::addColumn<Prefetch>("row");
        const QString insert = "INSERT INTO Items DEFAULT VALUES";
        const QString deleteFirst = "DELETE FROM Items WHERE ID = (SELECT min(ID) FROM Items)";
        // clang-format off
        QTest::newRow("unchanged")             << Prefetch{{}, false, true, true, KeyOrder::Listed};
        QTest::newRow("unchanged, ascending")  << Prefetch{{}, false, true, true, KeyOrder::Ascending};
        QTest::newRow("another statement")     << Prefetch{{}, false, false, false, KeyOrder::Listed};
        QTest::newRow("row added here")        << Prefetch{insert, false, true, false, KeyOrder::Ascending};
        QTest::newRow("row deleted elsewhere") << Prefetch{deleteFirst, true, true, false, KeyOrder::Listed};
        // clang-format on
    }
    void keyPrefetch()
    {
        QFETCH(Prefetch, row);
        const QSqlDatabase db = m_env->context().itemDatabase;
        m_env->addNumberedItems(5);
        const QString sql = u"SELECT ID FROM Items WHERE Active = 1"_s, other = u"other"_s;
        KeyPrefetch prefetch(db, sql, row.order);
        if (!row.change.isEmpty()) {
            const QString path = m_env->context().state.databasePath;
            QVERIFY(QSqlQuery(row.elsewhere ? openDatabase(path, other).database : db)
                        .exec(row.change));
        }
        QSqlDatabase::removeDatabase(other);
        const auto keys = prefetch.take(db, row.sameStatement ? sql : sql + u" + 0"_s);
        QCOMPARE(keys.has_value(), row.taken);
        if (keys)
            QCOMPARE(*keys, scanIds(db, sql).ids); // the statement lists them ascending too
        QVERIFY(!prefetch.take(db, sql));          // once only
    }

    // Keys gathered inside SQLite are the statement's keys, ascending whatever the statement's
    // order; a statement that cannot be read says why.
    void keysAscending_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<bool>("readable");
        // clang-format off
        QTest::newRow("all items")            << "SELECT ID FROM Items" << true;
        QTest::newRow("no rows")              << "SELECT ID FROM Items WHERE 0" << true;
        QTest::newRow("a view, newest first") << "SELECT ID FROM (SELECT * FROM ClosedItems ORDER BY ID DESC)" << true;
        QTest::newRow("many runs")            << "SELECT ID FROM (SELECT * FROM Items ORDER BY ID % 10)" << true;
        QTest::newRow("a null key")           << "SELECT NULL AS ID UNION ALL SELECT 7" << true;
        QTest::newRow("no such table")        << "SELECT ID FROM Nowhere" << false;
        // clang-format on
    }
    void keysAscending()
    {
        QFETCH(QString, sql);
        const QSqlDatabase db = m_env->context().itemDatabase;
        m_env->addNumberedItems(300);
        QSqlQuery(db).exec(u"UPDATE Items SET Active = ID % 3 = 0"_s);
        const IdScan ascending = SourceReader().keys(db, sql, KeyOrder::Ascending);
        QTEST(ascending.ok(), "readable");
        if (!ascending.ok())
            return;
        QList<qint64> listed = SourceReader().keys(db, sql, KeyOrder::Listed).ids;
        std::sort(listed.begin(), listed.end());
        QCOMPARE(ascending.ids, listed);
    }

    // A statement that never ends is stopped at its time limit and the connection stays usable,
    // also when the statement is kept prepared for the next search.
    void scanStopsAtItsTimeLimit_data()
    {
        QTest::addColumn<bool>("kept");
        QTest::newRow("prepared each time") << false;
        QTest::newRow("kept prepared") << true;
    }
    void scanStopsAtItsTimeLimit()
    {
        QFETCH(bool, kept);
        const QSqlDatabase db = m_env->context().itemDatabase;
        KeyScanner scanner;
        const auto scan = [&](const QString& sql, const QVariantList& values, int limit) {
            return kept ? scanner.scan(db, sql, values, limit) : scanIds(db, sql, values, limit);
        };
        const QString endlessSql =
            u"WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n) SELECT x FROM n "
            "WHERE x < ?"_s;
        for (int pass = 0; pass < 2; ++pass) {
            QElapsedTimer clock;
            clock.start();
            const IdScan endless = scan(endlessSql, {0}, 200);
            QVERIFY(endless.timedOut && !endless.ok());
            QVERIFY(clock.elapsed() < 3000);
            const IdScan few =
                scan(u"SELECT column1 FROM (VALUES (1), (2), (5)) WHERE column1 < ?"_s, {3}, 200);
            QVERIFY2(few.ok(), qPrintable(few.error));
            QCOMPARE(few.ids, (QList<qint64>{1, 2}));
        }
        const IdScan after = scan(u"SELECT ? + 1"_s, {41}, 0);
        QVERIFY2(after.ok(), qPrintable(after.error));
        QCOMPARE(after.ids, QList<qint64>{42});
        QVERIFY(!scan(u"SELECT nonsense FROM"_s, {}, 0).ok());
    }
};

QTEST_GUILESS_MAIN(TestDatabase)
#include "tst_database.moc"
