// Kept view keys: used only for the database file exactly as they were read from it.
#include "../support/TestEnvironment.h"
#include "platform/Database.h"
#include "platform/KeyCache.h"

#include <QSqlQuery>
#include <QtTest>
#include <cstdio>
#include <numeric>

namespace {

const QString kSql = QStringLiteral("SELECT ID FROM (SELECT * FROM Items ORDER BY ID)");

// Keys no read of the database would give, so a test can tell kept keys from read ones.
const QList<qint64> kForged{7, 3, 900000};

} // namespace

class TestKeyCache : public QObject
{
    Q_OBJECT
    std::unique_ptr<TestEnvironment> m_env;
    QTemporaryDir m_cache;

    QString databaseFile() const { return m_env->context().state.databasePath; }
    QString keptFile() const { return KeyCache::keptFileFor(m_cache.path(), databaseFile()); }

    // Everything written so far copied into the file and the log emptied, as at the end of a run.
    void settle()
    {
        QVERIFY(QSqlQuery(m_env->context().itemDatabase)
                    .exec(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)")));
        QVERIFY(KeyCache::stateOf(databaseFile()).has_value());
    }

private slots:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        m_env->addNumberedItems(12);
        settle();
    }
    void cleanup() { m_env.reset(); }

    void roundTrip_data()
    {
        QTest::addColumn<QList<qint64>>("keys");
        QList<qint64> run(1000);
        std::iota(run.begin(), run.end(), 1);
        QTest::newRow("none") << QList<qint64>();
        QTest::newRow("a thousand in a row") << run;
        QTest::newRow("descending, with gaps") << QList<qint64>{900, 40, 39, 2};
        QTest::newRow("extremes") << QList<qint64>{std::numeric_limits<qint64>::max(), 0,
                                                   std::numeric_limits<qint64>::min(), -1};
    }
    void roundTrip()
    {
        QFETCH(QList<qint64>, keys);
        QVERIFY(KeyCache::save(keptFile(), *KeyCache::stateOf(databaseFile()), kSql, keys));
        QCOMPARE(KeyCache::load(keptFile(), databaseFile(), kSql), keys);
    }

    // What happens between keeping the keys and the next start decides whether they are used.
    void keptKeysUsed_data()
    {
        QTest::addColumn<QString>("change");
        QTest::addColumn<bool>("held"); // by its first bytes
        QTest::addColumn<bool>("used");
        // clang-format off
        QTest::newRow("nothing")                               << ""          << true  << true;
        QTest::newRow("a row added and checkpointed")          << "insert"    << false << false;
        QTest::newRow("a write still in the log")              << "unsettled" << false << false;
        QTest::newRow("the file replaced by a copy of itself") << "copy"      << false << false;
        QTest::newRow("another statement")                     << "statement" << false << false;
        QTest::newRow("a damaged byte in its head")            << "damage"    << false << false;
        QTest::newRow("a damaged key")                         << "damagekey" << true  << false;
        QTest::newRow("cut short")                             << "truncate"  << true  << false;
        QTest::newRow("an empty file")                         << "empty"     << false << false;
        // clang-format on
    }
    void keptKeysUsed()
    {
        QFETCH(QString, change);
        QSqlDatabase db = m_env->context().itemDatabase;
        QVERIFY(KeyCache::save(keptFile(), *KeyCache::stateOf(databaseFile()), kSql, kForged));
        QFile kept(keptFile());
        if (change == u"insert" || change == u"unsettled") {
            QVERIFY(QSqlQuery(db).exec(QStringLiteral("INSERT INTO Items DEFAULT VALUES")));
            if (change == u"insert")
                settle();
        } else if (change == u"copy") {
            const QString copy = databaseFile() + QLatin1String(".copy");
            db.close();
            QVERIFY(QFile::copy(databaseFile(), copy));
            QVERIFY(std::rename(QFile::encodeName(copy).constData(),
                                QFile::encodeName(databaseFile()).constData()) == 0);
            QVERIFY(db.open());
        } else if (change.startsWith(u"damage") || change == u"truncate" || change == u"empty") {
            QVERIFY(kept.open(QIODevice::ReadWrite));
            QByteArray content = kept.readAll();
            // The middle lies in the head (state, statement); the last key just before the sum.
            const qsizetype at = change == u"damage" ? content.size() / 2 : content.size() - 9;
            if (change.startsWith(u"damage"))
                content[at] = char(content.at(at) ^ 0x10);
            else
                content.chop(change == u"empty" ? content.size() : 3);
            QVERIFY(kept.resize(0) && kept.seek(0) && kept.write(content) == content.size());
            kept.close();
        }
        const QString asked = change == u"statement" ? kSql + u' ' : kSql;
        QTEST(KeyCache::holds(keptFile(), databaseFile(), asked), "held");
        const bool used = KeyCache::load(keptFile(), databaseFile(), asked) == kForged;
        QTEST(used, "used");

        // Read ahead at a start, kept keys stand in for the read, and only they do, however the
        // reading left to the caller is started (or not at all).
        const QList<qint64> read = SourceReader().keys(db, asked, KeyOrder::Ascending).ids;
        for (const char* start : {"by take", "here", "aside"}) {
            KeyPrefetch prefetch(db, asked, KeyOrder::Ascending, keptFile());
            if (qstrcmp(start, "here") == 0)
                prefetch.readKeptHere();
            else if (qstrcmp(start, "aside") == 0)
                prefetch.readKeptAside();
            const auto taken = prefetch.take(db, asked);
            QVERIFY2(taken.has_value(), start);
            QCOMPARE(*taken, used ? kForged : read);
        }
    }

    // A start that read the keys keeps them for the next, unless the file changed meanwhile.
    void readKeysAreKept()
    {
        QSqlDatabase db = m_env->context().itemDatabase;
        const QList<qint64> keys = SourceReader().keys(db, kSql, KeyOrder::Ascending).ids;
        {
            KeyPrefetch prefetch(db, kSql, KeyOrder::Ascending, keptFile());
            QCOMPARE(prefetch.take(db, kSql), keys);
        }
        QCOMPARE(KeyCache::load(keptFile(), databaseFile(), kSql), keys);
    }

    // The end of a run leaves the keys of the database as it is, reading only when needed.
    void keptAtTheEnd()
    {
        QSqlDatabase db = m_env->context().itemDatabase;
        keepKeysForNextStart(databaseFile(), kSql, KeyOrder::Ascending, keptFile());
        QCOMPARE(KeyCache::load(keptFile(), databaseFile(), kSql),
                 SourceReader().keys(db, kSql, KeyOrder::Ascending).ids);
        const QDateTime written = QFileInfo(keptFile()).lastModified();
        QTest::qWait(20);
        keepKeysForNextStart(databaseFile(), kSql, KeyOrder::Ascending, keptFile());
        QCOMPARE(QFileInfo(keptFile()).lastModified(), written); // already held

        QVERIFY(QSqlQuery(db).exec(QStringLiteral("DELETE FROM Items WHERE ID = 5")));
        keepKeysForNextStart(databaseFile(), kSql, KeyOrder::Ascending, keptFile());
        QVERIFY(!KeyCache::load(keptFile(), databaseFile(), kSql)); // the log still holds it
        settle();
        keepKeysForNextStart(databaseFile(), kSql, KeyOrder::Ascending, keptFile());
        const auto kept = KeyCache::load(keptFile(), databaseFile(), kSql);
        QVERIFY(kept && !kept->contains(5));
        QCOMPARE(*kept, SourceReader().keys(db, kSql, KeyOrder::Ascending).ids);
    }
};

QTEST_GUILESS_MAIN(TestKeyCache)
#include "tst_keycache.moc"
