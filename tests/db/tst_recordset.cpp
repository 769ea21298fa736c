#include "../support/TestEnvironment.h"
#include "db/ItemColumns.h"
#include "db/ItemSql.h"
#include "db/RecordSet.h"

#include <QSqlQuery>
#include <QtTest>
#include <memory>

Q_DECLARE_METATYPE(DataAction)
Q_DECLARE_METATYPE(RecordSet::FindResult)

namespace {

const QString kTitle = QStringLiteral("ShortDescription");

// "BE" for an empty set, "B" before the first row, "E" after the last, "D" on a deleted row,
// else the current title.
QString where(const RecordSet& rs)
{
    if (rs.bof() || rs.eof())
        return QLatin1String(rs.bof() ? "B" : "") + QLatin1String(rs.eof() ? "E" : "");
    return rs.hasCurrent() ? rs.text(kTitle) : QStringLiteral("D");
}

// One letter per operation: F L N P moves, X delete, U update, C close, A add, S find,
// K bookmark of the first row, Q absolute position 2.
void run(RecordSet& rs, const QString& operations, qint64 firstId = 0)
{
    for (const QChar op : operations) {
        switch (op.unicode()) {
        case 'F':
            rs.moveFirst();
            break;
        case 'L':
            rs.moveLast();
            break;
        case 'N':
            rs.moveNext();
            break;
        case 'P':
            rs.movePrevious();
            break;
        case 'X':
            rs.deleteCurrent();
            break;
        case 'U':
            rs.update();
            break;
        case 'C':
            rs.close();
            break;
        case 'A':
            rs.addNewAndUpdate();
            break;
        case 'S':
            rs.findFirst(ItemSql::byTitle(QStringLiteral("Item 3")));
            break;
        case 'K':
            rs.setBookmark(firstId);
            break;
        case 'Q':
            rs.setAbsolutePosition(2);
            break;
        }
    }
}

} // namespace

class TestRecordSet : public QObject
{
    Q_OBJECT
    // One application folder for the whole run, emptied before every case: a database per
    // case would make the run slow on a busy disk.
    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<RecordSet> open(const QString& source = ItemSql::kAllView)
    {
        auto rs = std::make_unique<RecordSet>(m_env->context().itemDatabase);
        rs->setRecordSource(source);
        if (!rs->refresh())
            qWarning() << rs->lastError();
        return rs;
    }

private slots:
    void initTestCase();
    void init();
    void views_data();
    void views();
    void moves_data();
    void moves();
    void positionsAndBookmarks();
    void find_data();
    void find();
    void invalidFindWritesNothing();
    void addNew();
    void editsWrittenWhenLeft_data();
    void editsWrittenWhenLeft();
    void editsKeptAsTyped();
};

void TestRecordSet::initTestCase()
{
    m_env = std::make_unique<TestEnvironment>();
    QSqlQuery(m_env->context().itemDatabase).exec(QStringLiteral("PRAGMA synchronous=OFF"));
}

void TestRecordSet::init()
{
    QSqlQuery q(m_env->context().itemDatabase);
    QVERIFY(q.exec(QStringLiteral("DELETE FROM Items")));
    QVERIFY(q.exec(QStringLiteral("DELETE FROM sqlite_sequence"))); // keys start at 1 again
}

void TestRecordSet::views_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("columnCount");
    QTest::newRow("all") << ItemSql::kAllView << "1 2 3 4 5 6" << 36;
    QTest::newRow("active") << ItemSql::kActiveView << "1 2 4 5" << 33;
    QTest::newRow("inactive") << ItemSql::kInactiveView << "3 6" << 36;
    QTest::newRow("table") << ItemSql::kItemsTable << "1 2 3 4 5 6" << 36;
}

void TestRecordSet::views()
{
    QFETCH(QString, source);
    QFETCH(int, columnCount);
    auto rs = open(source);
    QCOMPARE(where(*rs), QStringLiteral("BE")); // empty: moves keep it there
    run(*rs, QStringLiteral("NPFL"));
    QCOMPARE(where(*rs), QStringLiteral("BE"));
    QCOMPARE(rs->recordCount(), 0);
    QCOMPARE(rs->absolutePosition(), -1);
    QCOMPARE(rs->bookmark(), qint64(-1));

    m_env->addNumberedItems(6);
    rs->refresh();
    QCOMPARE(rs->columns(), ItemColumns::names().mid(0, columnCount));
    QCOMPARE(rs->absolutePosition(), 0);
    QStringList numbers;
    for (; !rs->eof(); rs->moveNext())
        numbers << rs->text(kTitle).mid(5);
    QTEST(numbers.join(u' '), "expected");
    QCOMPARE(rs->recordCount(), numbers.size());
}

void TestRecordSet::moves_data()
{
    QTest::addColumn<QString>("moves");
    QTest::addColumn<QString>("expected");
    const char* const table[][2] = {
        {"", "Item 1"},    {"N", "Item 2"},   {"L", "Item 3"}, {"P", "B"},
        {"PP", "B"},       {"PN", "Item 1"},  {"LN", "E"},     {"LNN", "E"},
        {"LNP", "Item 3"}, {"LNF", "Item 1"}, {"NX", "D"},     {"XN", "Item 2"},
        {"NXN", "Item 3"}, {"LXN", "E"},      {"XP", "B"},     {"LXP", "Item 2"},
        {"XNXNXN", "BE"},  {"XNXNXP", "BE"},
    };
    for (const auto& row : table)
        QTest::newRow(*row[0] ? row[0] : "refresh")
            << QString::fromLatin1(row[0]) << QString::fromLatin1(row[1]);
}

void TestRecordSet::moves()
{
    QFETCH(QString, moves);
    m_env->addItems({{{kTitle, QStringLiteral("Item 1")}},
                     {{kTitle, QStringLiteral("Item 2")}},
                     {{kTitle, QStringLiteral("Item 3")}}});
    auto rs = open();
    run(*rs, moves);
    QTEST(where(*rs), "expected");
    const int left = 3 - int(moves.count(u'X'));
    QCOMPARE(rs->recordCount(), left);
    QCOMPARE(m_env->itemCount(), left);
}

void TestRecordSet::positionsAndBookmarks()
{
    const QList<qint64> ids = m_env->addNumberedItems(5);
    auto rs = open();
    rs->setAbsolutePosition(3);
    QCOMPARE(rs->absolutePosition(), 3);
    QCOMPARE(rs->text(kTitle), QStringLiteral("Item 4"));
    QCOMPARE(rs->bookmark(), ids.at(3));
    rs->setAbsolutePosition(99); // a number past the end stands on the last item
    QCOMPARE(rs->text(kTitle), QStringLiteral("Item 5"));
    rs->setBookmark(ids.at(3));
    QCOMPARE(rs->text(QStringLiteral("ID")), QString::number(ids.at(3)));
    rs->setBookmark(12345);
    QCOMPARE(rs->absolutePosition(), 3);
}

void TestRecordSet::find_data()
{
    QTest::addColumn<QString>("criteria");
    QTest::addColumn<int>("start");
    QTest::addColumn<bool>("next");
    QTest::addColumn<RecordSet::FindResult>("result");
    QTest::addColumn<int>("position"); // where the find leaves the record set
    const auto found = RecordSet::FindResult::Found;
    const auto none = RecordSet::FindResult::NoMatch;
    const auto invalid = RecordSet::FindResult::Invalid;
    const QString beanie = QStringLiteral("(([ShortDescription] LIKE \"*beanie*\") OR "
                                          "([Description] LIKE \"*beanie*\")) ");
    const QString aol = QStringLiteral("BuyerEmail LIKE '*aol.com' ");
    QTest::newRow("eBay number") << ItemSql::byEbayId("1002") << 0 << false << found << 1;
    QTest::newRow("eBay number absent") << ItemSql::byEbayId("9") << 2 << false << none << 2;
    QTest::newRow("key") << ItemSql::byKey(3) << 0 << false << found << 2;
    QTest::newRow("title any case") << ItemSql::byTitle("LAMP") << 3 << false << found << 1;
    QTest::newRow("title with quote")
        << ItemSql::byTitle("Tom's hat") << 1 << false << invalid << 1;
    QTest::newRow("text search") << beanie << 3 << false << found << 0;
    QTest::newRow("text search next") << beanie << 0 << true << found << 1;
    QTest::newRow("text search skips") << beanie << 1 << true << found << 3;
    QTest::newRow("text search none after") << beanie << 3 << true << none << 3;
    QTest::newRow("email ending") << aol << 0 << true << found << 1;
    QTest::newRow("email exact") << "BuyerEmail LIKE 'sue@aol.com' " << 3 << false << found << 0;
    QTest::newRow("email not partial") << "BuyerEmail LIKE 'sue@aol' " << 3 << false << none << 3;
    QTest::newRow("two conditions")
        << "EbayID LIKE '1*' And BuyerName LIKE 'bob' " << 0 << false << found << 1;
    QTest::newRow("date") << "DateAuctionEnds = #6/8/1999#" << 0 << false << found << 2;
    QTest::newRow("unknown column") << "Colour = 'red'" << 2 << false << invalid << 2;
}

void TestRecordSet::find()
{
    QFETCH(QString, criteria);
    QFETCH(int, start);
    QFETCH(bool, next);
    QList<QVariantMap> rows;
    const char* const table[][5] = {{"1001", "Rare Beanie Baby", "", "sue@aol.com", "Sue"},
                                    {"1002", "Lamp", "a BEANIE lamp", "bob@AOL.com", "Bob"},
                                    {"2001", "Tom's hat", "", "o'neil@x.com", "Bob"},
                                    {"", "Beanie", "", "", ""}};
    for (const auto& r : table)
        rows << QVariantMap{{QStringLiteral("EbayID"), r[0]},
                            {kTitle, r[1]},
                            {QStringLiteral("Description"), r[2]},
                            {QStringLiteral("BuyerEmail"), r[3]},
                            {QStringLiteral("BuyerName"), r[4]}};
    rows[2].insert(QStringLiteral("DateAuctionEnds"), QStringLiteral("1999-06-08 00:00:00"));
    m_env->addItems(rows);
    auto rs = open();
    rs->setAbsolutePosition(start);
    QList<DataAction> actions;
    rs->setValidateHook([&](DataAction a) { actions << a; });
    const RecordSet::FindResult result = next ? rs->findNext(criteria) : rs->findFirst(criteria);
    QTEST(result, "result");
    QCOMPARE(rs->noMatch(), result != RecordSet::FindResult::Found);
    QTEST(rs->absolutePosition(), "position");
    if (result != RecordSet::FindResult::Invalid)
        QCOMPARE(actions, QList<DataAction>{DataAction::Find});
}

void TestRecordSet::invalidFindWritesNothing()
{
    const QList<qint64> ids = m_env->addNumberedItems(3);
    auto rs = open();
    rs->moveNext();
    rs->setText(kTitle, QStringLiteral("Edited"));
    QCOMPARE(rs->findFirst(ItemSql::byTitle(QStringLiteral("it's"))),
             RecordSet::FindResult::Invalid);
    QCOMPARE(rs->absolutePosition(), 1);
    QCOMPARE(m_env->storedValue(ids.at(1), kTitle).toString(), QStringLiteral("Item 2"));
    rs->moveNext(); // the edit was kept pending and is written now
    QCOMPARE(m_env->storedValue(ids.at(1), kTitle).toString(), QStringLiteral("Edited"));
}

void TestRecordSet::addNew()
{
    auto rs = open();
    // An empty view gets its first item, current only after the move to the last row.
    const qint64 first = rs->addNewAndUpdate();
    QCOMPARE(rs->recordCount(), 1);
    QVERIFY(rs->eof());
    rs->moveLast();
    QCOMPARE(rs->bookmark(), first);
    QCOMPARE(rs->text(QStringLiteral("Active")), QStringLiteral("1"));
    QCOMPARE(rs->text(QStringLiteral("Reserve")), QString());
    // Adding while on a row keeps that row current and puts the new one last.
    const qint64 second = rs->addNewAndUpdate();
    QCOMPARE(rs->bookmark(), first);
    rs->moveLast();
    QCOMPARE(rs->bookmark(), second);
    QCOMPARE(open(ItemSql::kActiveView)->recordCount(), 2);
    QCOMPARE(open(ItemSql::kInactiveView)->recordCount(), 0);
}

void TestRecordSet::editsWrittenWhenLeft_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<DataAction>("action");
    QTest::newRow("first") << "F" << DataAction::MoveFirst;
    QTest::newRow("previous") << "P" << DataAction::MovePrevious;
    QTest::newRow("next") << "N" << DataAction::MoveNext;
    QTest::newRow("last") << "L" << DataAction::MoveLast;
    QTest::newRow("update") << "U" << DataAction::Update;
    QTest::newRow("close") << "C" << DataAction::Close;
    QTest::newRow("add") << "A" << DataAction::AddNew;
    QTest::newRow("find") << "S" << DataAction::Find;
    QTest::newRow("bookmark") << "K" << DataAction::Bookmark;
    QTest::newRow("position") << "Q" << DataAction::Bookmark;
    QTest::newRow("delete") << "X" << DataAction::Delete;
}

void TestRecordSet::editsWrittenWhenLeft()
{
    QFETCH(QString, operation);
    QFETCH(DataAction, action);
    const QList<qint64> ids = m_env->addNumberedItems(3);
    const qint64 id = ids.at(1);
    auto rs = open();
    rs->moveNext();
    QList<DataAction> actions;
    // Like the item window's hook: a blank minimum bid is filled before the row is left.
    rs->setValidateHook([&](DataAction a) {
        actions << a;
        if (rs->text(QStringLiteral("MinBid")).isEmpty())
            rs->setText(QStringLiteral("MinBid"), QStringLiteral("1"));
    });
    rs->setText(kTitle, QStringLiteral("Edited"));
    rs->setText(QStringLiteral("Reserve"), QStringLiteral("12.5"));
    rs->setText(QStringLiteral("Cost"), QStringLiteral("3"));
    rs->setText(QStringLiteral("Cost"), QString()); // set back: nothing to write
    QCOMPARE(m_env->storedValue(id, kTitle).toString(), QStringLiteral("Item 2"));

    run(*rs, operation, ids.at(0));
    QCOMPARE(actions, QList<DataAction>{action});
    if (action == DataAction::Delete) {
        QVERIFY(!m_env->storedValue(id, kTitle).isValid());
        return;
    }
    QVERIFY(!rs->isDirty());
    QCOMPARE(m_env->storedValue(id, QStringLiteral("Reserve")).toLongLong(), qint64(125000));
    QVERIFY(m_env->storedValue(id, QStringLiteral("Cost")).isNull());
    auto fresh = open();
    fresh->setBookmark(id);
    QCOMPARE(fresh->text(kTitle), QStringLiteral("Edited"));
    QCOMPARE(fresh->text(QStringLiteral("Reserve")), QStringLiteral("12.5"));
    QCOMPARE(fresh->text(QStringLiteral("MinBid")), QStringLiteral("1"));
}

void TestRecordSet::editsKeptAsTyped()
{
    const QList<qint64> ids = m_env->addItems({{{QStringLiteral("Reserve"), 50000}}, {}});
    auto rs = open(ItemSql::kItemsTable);
    QCOMPARE(rs->text(QStringLiteral("Reserve")), QStringLiteral("5"));
    const QStringList edits{
        "Reserve",    "$5",           "DateAuctionEnds",    "next week",
        "BuyerEmail", "o'neil@x.com", "DateAuctionStarted", "6/1/1999 10:00:00 AM"};
    for (qsizetype i = 0; i < edits.size(); i += 2)
        rs->setText(edits.at(i), edits.at(i + 1));
    run(*rs, QStringLiteral("NP"));
    for (qsizetype i = 0; i < edits.size(); i += 2)
        QCOMPARE(rs->text(edits.at(i)).replace(QChar(0x202F), u' '), edits.at(i + 1));
    QCOMPARE(m_env->storedValue(ids.at(0), QStringLiteral("DateAuctionStarted")).toString(),
             QStringLiteral("1999-06-01 10:00:00"));
}

QTEST_GUILESS_MAIN(TestRecordSet)
#include "tst_recordset.moc"
