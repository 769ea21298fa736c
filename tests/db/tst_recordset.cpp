#include "../support/TestEnvironment.h"
#include "db/ItemColumns.h"
#include "db/ItemSql.h"
#include "db/RecordSet.h"

#include <QSqlQuery>
#include <QtTest>
#include <memory>

Q_DECLARE_METATYPE(DataAction)

namespace {
const QString kTitle = QStringLiteral("ShortDescription");

// "BE" for an empty set, "B" before the first row, "E" after the last, "D" on a deleted row,
// else the current title; marked when the last find matched nothing.
QString where(const RecordSet& rs)
{
    const QString mark = rs.noMatch() ? QStringLiteral(" (no match)") : QString();
    if (rs.bof() || rs.eof())
        return QLatin1String(rs.bof() ? "B" : "") + QLatin1String(rs.eof() ? "E" : "") + mark;
    return (rs.hasCurrent() ? rs.text(kTitle) : QStringLiteral("D")) + mark;
}

// One letter per operation. Moves: F L N P; K the first row's bookmark (keys start at 1), ? an
// unknown one, Q position 2, 9 position 99. Edits: X delete, U update, C close, A add. Finds:
// S "Item 3", 2 key 2, T next like "ITEM*", Z "Item" (none), I unreadable, O unknown column.
void run(RecordSet& rs, const QString& operations)
{
    // clang-format off
    const QHash<QChar, std::function<void()>> ops{
        {u'F', [&] { rs.moveFirst(); }},         {u'L', [&] { rs.moveLast(); }},
        {u'N', [&] { rs.moveNext(); }},          {u'P', [&] { rs.movePrevious(); }},
        {u'X', [&] { rs.deleteCurrent(); }},     {u'U', [&] { rs.update(); }},
        {u'C', [&] { rs.close(); }},             {u'A', [&] { rs.addNewAndUpdate(); }},
        {u'K', [&] { rs.setBookmark(1); }},      {u'?', [&] { rs.setBookmark(12345); }},
        {u'Q', [&] { rs.setAbsolutePosition(2); }}, {u'9', [&] { rs.setAbsolutePosition(99); }},
        {u'2', [&] { rs.findFirst(ItemSql::byKey(2)); }},
        {u'O', [&] { rs.findFirst("Colour = 'red'"); }},
        {u'S', [&] { rs.findFirst(ItemSql::byTitle("Item 3")); }},
        {u'Z', [&] { rs.findFirst(ItemSql::byTitle("Item")); }},
        {u'I', [&] { rs.findFirst(ItemSql::byTitle("it's")); }},
        {u'T', [&] { rs.findNext("([ShortDescription] LIKE \"ITEM*\")"); }}};
    // clang-format on
    for (const QChar op : operations)
        ops.value(op)();
}
// A find from the place the moves (as in run()) lead to, FindNext or else FindFirst, and where
// it leaves the record set.
// clang-format off
struct Find { QString source, moves; bool next; QString criteria, expected; };
// clang-format on
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
        rs->refresh();
        return rs;
    }

private slots:
    void initTestCase()
    {
        m_env = std::make_unique<TestEnvironment>();
        QSqlQuery(m_env->context().itemDatabase).exec(QStringLiteral("PRAGMA synchronous=OFF"));
    }
    void init()
    {
        QSqlQuery q(m_env->context().itemDatabase);
        // Keys start at 1 again.
        QVERIFY(q.exec("DELETE FROM Items") && q.exec("DELETE FROM sqlite_sequence"));
    }

    void views_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("columnCount");
        QTest::newRow("all") << ItemSql::kAllView << "1 2 3 4 5 6" << 36;
        QTest::newRow("active") << ItemSql::kActiveView << "1 2 4 5" << 33;
        QTest::newRow("inactive") << ItemSql::kInactiveView << "3 6" << 36;
        QTest::newRow("table") << ItemSql::kItemsTable << "1 2 3 4 5 6" << 36;
    }
    void views()
    {
        QFETCH(QString, source);
        QFETCH(int, columnCount);
        auto rs = open(source);
        run(*rs, QStringLiteral("NPFL")); // an empty set stays before the first and after the last
        QCOMPARE(where(*rs), QStringLiteral("BE"));
        m_env->addNumberedItems(6);
        rs->refresh();
        QCOMPARE(rs->columns(), ItemColumns::names().mid(0, columnCount));
        QStringList numbers;
        for (; !rs->eof(); rs->moveNext())
            numbers << rs->text(kTitle).mid(5);
        QTEST(numbers.join(u' '), "expected");
    }

    void moves_data()
    {
        QTest::addColumn<QString>("moves");
        QTest::addColumn<QString>("expected");
        // clang-format off
        const char* const table[][2] = {
            {"", "Item 1"},    {"N", "Item 2"},   {"L", "Item 3"},   {"P", "B"},
            {"PP", "B"},       {"PN", "Item 1"},  {"LN", "E"},       {"LNN", "E"},
            {"LNP", "Item 3"}, {"LNF", "Item 1"}, {"NX", "D"},       {"XN", "Item 2"},
            {"NXN", "Item 3"}, {"LXN", "E"},      {"XP", "B"},       {"LXP", "Item 2"},
            {"XNXNXN", "BE"},  {"XNXNXP", "BE"},  {"Q", "Item 3"},   {"9", "Item 3"},
            {"LK", "Item 1"},  {"N?", "Item 2"},  {"NA", "Item 2"},  {"AL", ""},
            {"S", "Item 3"},   {"L2", "Item 2"},  {"TT", "Item 3"},  {"LT", "Item 3 (no match)"},
            {"Z", "Item 1 (no match)"}, {"ZS", "Item 3"}, {"NI", "Item 2 (no match)"},
            {"NO", "Item 2 (no match)"}};
        // clang-format on
        for (const auto& [moves, expected] : table)
            QTest::newRow(*moves ? moves : "refresh") << QString::fromLatin1(moves) << expected;
    }
    void moves()
    {
        QFETCH(QString, moves);
        m_env->addNumberedItems(3);
        auto rs = open();
        run(*rs, moves);
        QTEST(where(*rs), "expected");
        const int left = 3 - int(moves.count(u'X')) + int(moves.count(u'A'));
        QCOMPARE(rs->recordCount(), left);
        QCOMPARE(m_env->itemCount(), left);
    }

    void bookmarks_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<qint64>("key");
        QTest::addColumn<int>("position");
        const QString byTitle =
            QStringLiteral("SELECT * FROM Items ORDER BY ShortDescription DESC");
        QTest::newRow("key order") << QString(ItemSql::kAllView) << qint64(3) << 2;
        QTest::newRow("key order, unknown key") << QString(ItemSql::kAllView) << qint64(7) << 0;
        QTest::newRow("key order, added row") << QString(ItemSql::kAllView) << qint64(5) << 4;
        QTest::newRow("title order") << byTitle << qint64(1) << 3;
        QTest::newRow("title order, added row") << byTitle << qint64(5) << 4;
    }
    // A bookmark finds its row whatever order the source lists its rows in, rows added since
    // the source was read among them.
    void bookmarks()
    {
        QFETCH(QString, source);
        QFETCH(qint64, key);
        m_env->addNumberedItems(4);
        auto rs = open(source);
        QCOMPARE(rs->addNewAndUpdate(), 5);
        rs->moveFirst();
        rs->setBookmark(key);
        QTEST(int(rs->absolutePosition()), "position");
    }

    void editsWrittenWhenLeft_data()
    {
        QTest::addColumn<QString>("operations");
        QTest::addColumn<QList<DataAction>>("actions"); // what the validate hook saw
        using A = DataAction;
        const auto row = [](const char* operations, QList<DataAction> actions) {
            QTest::newRow(operations) << QString::fromLatin1(operations) << actions;
        };
        // clang-format off
        row("F", {A::MoveFirst}); row("P", {A::MovePrevious}); row("N", {A::MoveNext});
        row("L", {A::MoveLast});  row("U", {A::Update});       row("C", {A::Close});
        row("A", {A::AddNew});    row("S", {A::Find});         row("K", {A::Bookmark});
        row("Q", {A::Bookmark});  row("X", {A::Delete});       row("O", {A::Find});
        row("I", {}); row("IN", {A::MoveNext}); // an unreadable find does not leave the row
        // clang-format on
    }
    void editsWrittenWhenLeft()
    {
        QFETCH(QString, operations);
        QFETCH(QList<DataAction>, actions);
        const qint64 id = m_env->addNumberedItems(3).at(1);
        auto rs = open();
        rs->moveNext();
        QList<DataAction> seen;
        // Like the item window's hook, it may still edit the row it is about to leave.
        rs->setValidateHook([&](DataAction a) {
            seen << a;
            rs->setText("MinBid", "1");
        });
        // Values are written in their stored forms; what cannot be read is kept as typed. Cost is
        // set back to what was kept, which withdraws its earlier edit.
        rs->setText("Cost", "3");
        // clang-format off
        const QStringList edits{kTitle, "Edited", "Reserve", "12.5", "SalePrice", "$5",
            "DateAuctionStarted", "6/1/1999 10:00:00 AM", "DateAuctionEnds", "next week",
            "BuyerEmail", "o'neil@x.com", "Cost", ""};
        // clang-format on
        for (qsizetype i = 0; i < edits.size(); i += 2)
            rs->setText(edits.at(i), edits.at(i + 1));
        run(*rs, operations);
        QCOMPARE(seen, actions);
        // Not left: the edits wait and nothing is written. Deleted: the row is gone.
        if (actions.isEmpty() || actions.first() == DataAction::Delete) {
            QCOMPARE(rs->isDirty(), actions.isEmpty());
            QCOMPARE(m_env->storedValue(id, kTitle).toString(), actions.isEmpty() ? "Item 2" : "");
            return;
        }
        auto fresh = open();
        fresh->setBookmark(id);
        QCOMPARE(fresh->text("MinBid"), "1");
        for (qsizetype i = 0; i < edits.size(); i += 2)
            QCOMPARE(fresh->text(edits.at(i)).replace(QChar(0x202F), u' '), edits.at(i + 1));
    }

    // Finds ask the database for the first match past a key; these are the places where that
    // could part from walking the list.
    void finds_data()
    {
        QTest::addColumn<Find>("find");
        const QString all = ItemSql::kAllView, active = ItemSql::kActiveView;
        const QString beanie = "(([ShortDescription] LIKE \"*beanie*\") OR ([Description] LIKE "
                               "\"*beanie*\")) ";
        const auto row = [](const char* name, const Find& find) { QTest::newRow(name) << find; };
        row("first match", {all, "L", false, beanie, "Beanie Bear"});
        row("next past the current", {all, "", true, beanie, "beanie baby"});
        row("description only", {all, "NNN", true, beanie, "Teapot"});
        row("match before the current", {all, "L", true, beanie, "Ünïcode (no match)"});
        row("from a deleted row",
            {all, "NNX", true, "ShortDescription LIKE '*baby'", "beanie baby"});
        row("non-ASCII letter case",
            {all, "", false, "ShortDescription LIKE '*CAFÉ*'", "Café Sign"});
        row("date literal",
            {all, "", false, "DateAuctionEnds = #6/8/1999 10:00:00 AM#", "Café Sign"});
        row("digit wildcard", {all, "", false, "EbayID LIKE '1##'", "Teapot"});
        row("view in key order", {active, "", true, beanie, "Teapot"});
        row("another view's row",
            {active, "", false, "ShortDescription = 'beanie baby'", "Beanie Bear (no match)"});
        row("quote typed into a box",
            {all, "L", false, "EbayID LIKE '' OR '1'='1' ", "Beanie Bear"});
        row("union", {all, "", false, "ID = 1 UNION SELECT 6", "Beanie Bear (no match)"});
        row("empty view",
            {"SELECT * FROM Items WHERE ID < 0 ORDER BY ID", "", false, beanie, "BE (no match)"});
    }
    void finds()
    {
        QFETCH(Find, find);
        const auto& [source, moves, next, criteria, expected] = find;
        const auto item = [](const char* title, const char* description, int active,
                             const char* ends = nullptr, const char* ebayId = nullptr) {
            QVariantMap m{{"ShortDescription", QString::fromUtf8(title)},
                          {"Description", QString::fromUtf8(description)},
                          {"Active", active}};
            if (ends)
                m.insert("DateAuctionEnds", QString::fromLatin1(ends));
            if (ebayId)
                m.insert("EbayID", QString::fromLatin1(ebayId));
            return m;
        };
        m_env->addItems({item("Beanie Bear", "<p>soft</p>", 1, "1999-06-01 00:00:00"),
                         item("Café Sign", "Enamel", 0, "1999-06-08 10:00:00", "1234"),
                         item("Tom's hat", "felt", 1), item("beanie baby", "", 0),
                         item("Teapot", "has a BEANIE inside", 1, nullptr, "123"),
                         item("Ünïcode", "", 1)});
        auto rs = open(source);
        run(*rs, moves);
        next ? rs->findNext(criteria) : rs->findFirst(criteria);
        QCOMPARE(where(*rs), expected);
    }

    // A row added behind the list's back is not one of its rows: the search goes on past it.
    void findSkipsRowsTheListDoesNotHold()
    {
        m_env->addItems({{{"ShortDescription", "lamp"}}, {{"ShortDescription", "vase"}}});
        auto rs = open();
        m_env->addItems({{{"ShortDescription", "lamp"}}});
        rs->moveNext();
        QCOMPARE(rs->findNext("ShortDescription = 'lamp'"), RecordSet::FindResult::NoMatch);
        QCOMPARE(rs->findFirst("ShortDescription = 'lamp'"), RecordSet::FindResult::Found);
        QCOMPARE(rs->absolutePosition(), 0);
    }

    // A record set moving between sources reads each one's own columns and rows, as a record
    // set made for that source alone does: between the views, again once the table has gained
    // a column, and between more sources than it keeps statements for.
    void sourcesInTurn()
    {
        m_env->addNumberedItems(6);
        const QStringList views{ItemSql::kAllView, ItemSql::kActiveView, ItemSql::kInactiveView,
                                ItemSql::kItemsTable};
        QStringList many = views;
        for (int n = 0; n < 5; ++n)
            many << QStringLiteral("SELECT * FROM Items WHERE ID > %1 ORDER BY ID").arg(n)
                 << QStringLiteral("SELECT ID, ShortDescription FROM Items WHERE ID <> %1 "
                                   "ORDER BY ShortDescription DESC")
                        .arg(n);
        const auto titles = [](RecordSet& rs) {
            QStringList out;
            for (rs.moveFirst(); !rs.eof(); rs.moveNext())
                out << rs.text(kTitle);
            return out;
        };
        QSqlQuery q(m_env->context().itemDatabase);
        const auto dropColumn =
            qScopeGuard([&q] { q.exec("ALTER TABLE Items DROP COLUMN Extra"); });
        auto kept = open();
        struct Round
        {
            const QStringList& sources;
            bool widen;
        };
        for (const Round& round : {Round{views, false}, Round{views, true}, Round{many, false}}) {
            if (round.widen)
                QVERIFY(q.exec("ALTER TABLE Items ADD COLUMN Extra TEXT"));
            for (const QString& source : round.sources) {
                kept->setRecordSource(source);
                QVERIFY(kept->refresh());
                const auto fresh = open(source);
                QCOMPARE(kept->columns(), fresh->columns());
                QCOMPARE(titles(*kept), titles(*fresh));
            }
        }
    }

    // A closing ORDER BY ID is found where the pattern it stands for would find it.
    void keyOrderClause_data()
    {
        QTest::addColumn<QString>("sql");
        for (const char* sql :
             {"SELECT * FROM Items ORDER BY ID", "SELECT * FROM Items\n\tORDER  BY  ID ;  ",
              "SELECT * FROM Items order by items.id asc",
              R"(SELECT * FROM Items ORDER BY "Items"."ID")",
              R"(SELECT * FROM Items ORDER BY Items."ID"ASC;)",
              "SELECT * FROM Items ORDER BY IDASC", "SELECT * FROM Items ORDER BY ID DESC",
              "SELECT * FROM Items ORDER BY ItemID", "SELECT * FROM Items ORDER BY ID, Title",
              "SELECT * FROM Items xORDER BY ID", "SELECT * FROM Items ORDER BYID",
              "SELECT * FROM Items ORDER BY Item.ID", "SELECT * FROM Items ORDER BY ID ORDER BY ID",
              "ORDER BY ID", " ORDER BY ID;;", "SELECT * FROM Items ORDER BY Items..ID", "", ";"})
            QTest::newRow(sql) << QString::fromUtf8(sql);
        QTest::newRow("long s") << QStringLiteral("SELECT 1 ORDER BY Item\u017F.ID A\u017FC");
        QTest::newRow("no-break space") << QStringLiteral("SELECT 1\u00A0ORDER BY ID");
    }
    void keyOrderClause()
    {
        QFETCH(QString, sql);
        static const QRegularExpression pattern(
            QStringLiteral(R"(\s+ORDER\s+BY\s+(?:"?Items"?\.)?"?ID"?\s*(?:ASC\s*)?;?\s*$)"),
            QRegularExpression::CaseInsensitiveOption);
        const QRegularExpressionMatch match = pattern.match(sql);
        QCOMPARE(RecordSet::keyOrderClauseStart(sql),
                 match.hasMatch() ? match.capturedStart() : -1);
    }
};

QTEST_GUILESS_MAIN(TestRecordSet)
#include "tst_recordset.moc"
