#include "../support/TestEnvironment.h"
#include "db/ItemColumns.h"
#include "platform/Database.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QUuid>
#include <QtTest>
#include <memory>

namespace {

QStringList fieldNames(const QSqlRecord& record)
{
    QStringList names;
    for (int i = 0; i < record.count(); ++i)
        names << record.fieldName(i);
    return names;
}

// Opens path under a throw-away connection name and removes the connection afterwards.
struct Opened
{
    explicit Opened(const QString& path) : result(openDatabase(path, name)) {}
    ~Opened()
    {
        result.database = QSqlDatabase();
        QSqlDatabase::removeDatabase(name);
    }
    QString name = QUuid::createUuid().toString();
    DatabaseOpenResult result;
};

} // namespace

class TestDatabase : public QObject
{
    Q_OBJECT
    std::unique_ptr<TestEnvironment> m_env; // six items, the second one inactive
    QStringList select(const QString& sql, const QString& bound = {})
    {
        QSqlQuery q(m_env->context().itemDatabase);
        q.prepare(sql);
        if (!bound.isNull())
            q.addBindValue(bound);
        QStringList out;
        for (q.exec(); q.next();)
            out << q.value(0).toString();
        return out;
    }

private slots:
    void initTestCase();
    void refusesBadFiles_data();
    void refusesBadFiles();
    void opensPathWithOddCharacters();
    void schemaAndClosedItems();
    void likeFollowsJetRules_data();
    void likeFollowsJetRules();
};

void TestDatabase::initTestCase()
{
    m_env = std::make_unique<TestEnvironment>();
    QList<QVariantMap> rows;
    for (const char* title : {"Rare BEANIE", "beanie", "100%", "abc", "äpfel rot", "Lot 12"})
        rows << QVariantMap{{QStringLiteral("ShortDescription"), QString::fromUtf8(title)}};
    rows[1].insert(QStringLiteral("Active"), 0);
    rows[1].insert(QStringLiteral("TransNotes"), QStringLiteral("paid"));
    m_env->addItems(rows);
}

void TestDatabase::refusesBadFiles_data()
{
    QTest::addColumn<QByteArray>("content"); // null: no file at all
    QTest::addColumn<int>("error");
    QTest::newRow("missing") << QByteArray() << kErrFileNotFound;
    QTest::newRow("text file") << QByteArray("Not a database, just text.\n") << kErrNotADatabase;
    QTest::newRow("empty file") << QByteArray("") << kErrNoItemsTable;
}

void TestDatabase::refusesBadFiles()
{
    QFETCH(QByteArray, content);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("tb2.mdb"));
    QFile f(path);
    if (!content.isNull()) {
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(content);
        f.close();
    }
    const Opened opened(path);
    QTEST(opened.result.errorNumber, "error");
    QVERIFY(!opened.result.description.isEmpty() && !opened.result.source.isEmpty());
    QCOMPARE(f.exists(), !content.isNull()); // a missing file is never created
    if (!content.isNull()) {
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), content); // and a foreign file is left as it was
    }
}

void TestDatabase::opensPathWithOddCharacters()
{
    QTemporaryDir dir;
    const QString folder = dir.filePath(QStringLiteral("My Items #2 100% ?"));
    QVERIFY(QDir().mkpath(folder));
    QFile schema(QStringLiteral(TB_SCHEMA_FILE));
    QVERIFY(schema.open(QIODevice::ReadOnly));
    const QString path = folder + QStringLiteral("/tb2.mdb");
    QCOMPARE(createDatabaseIfMissing(path, QString::fromUtf8(schema.readAll())), QString());
    const Opened opened(path);
    QVERIFY2(opened.result.ok(), qPrintable(opened.result.description));
    QVERIFY(
        QSqlQuery(opened.result.database).exec(QStringLiteral("INSERT INTO Items DEFAULT VALUES")));
    QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList{QStringLiteral("My Items #2 100% ?")});
}

void TestDatabase::schemaAndClosedItems()
{
    const QSqlDatabase db = m_env->context().itemDatabase;
    QCOMPARE(fieldNames(db.record(QStringLiteral("Items"))), ItemColumns::names());
    QCOMPARE(fieldNames(db.record(QStringLiteral("ClosedItems"))), ItemColumns::names());
    QCOMPARE(select(QStringLiteral("SELECT ShortDescription || TransNotes FROM ClosedItems")),
             QStringList{QStringLiteral("beaniepaid")});
    const qint64 id = m_env->addItems({{}}).first(); // the table's own defaults
    QCOMPARE(select(QStringLiteral("SELECT Active || FeedbackComplete || ifnull(Reserve, 'null') "
                                   "FROM Items WHERE ID = ?"),
                    QString::number(id)),
             QStringList{QStringLiteral("10null")});
    // A deleted last item's key is not handed out again.
    QVERIFY(QSqlQuery(db).exec(QStringLiteral("DELETE FROM Items WHERE ID = %1").arg(id)));
    QVERIFY(m_env->addItems({{}}).first() > id);
    // Creating over an existing file leaves it alone.
    QCOMPARE(createDatabaseIfMissing(m_env->path(QStringLiteral("tb2.mdb")), {}), QString());
    QCOMPARE(m_env->itemCount(), 7);
}

void TestDatabase::likeFollowsJetRules_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QStringList>("found");
    QTest::newRow("contains any case") << "*beanie*" << QStringList{"Rare BEANIE", "beanie"};
    QTest::newRow("no wildcard is exact") << "beanie" << QStringList{"beanie"};
    QTest::newRow("percent is literal") << "100%" << QStringList{"100%"};
    QTest::newRow("underscore is literal") << "a_c" << QStringList{};
    QTest::newRow("non-ASCII case") << "ÄPFEL*" << QStringList{"äpfel rot"};
    QTest::newRow("digit") << "Lot ##" << QStringList{"Lot 12"};
}

void TestDatabase::likeFollowsJetRules()
{
    QFETCH(QString, pattern);
    QTEST(select(QStringLiteral("SELECT ShortDescription FROM Items WHERE ShortDescription LIKE ? "
                                "ORDER BY ID"),
                 pattern),
          "found");
}

QTEST_GUILESS_MAIN(TestDatabase)
#include "tst_database.moc"
