// Items to and from CSV: files as other programs write them, the value forms read, the round
// trip through a real database, and exports and imports that fail or are cancelled leaving no
// trace.
#include "../support/TestEnvironment.h"
#include "db/ItemColumns.h"
#include "db/ItemCsv.h"

#include <QSqlQuery>
#include <QtTest>

using Records = QList<QStringList>;

namespace {

Records fieldsOf(const QList<ItemCsv::Record>& records)
{
    Records out;
    for (const ItemCsv::Record& r : records)
        out << r.fields;
    return out;
}

QString writeText(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

QString readText(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

// Every item, every column but ID, in key order: each value's type and text, NULL for none.
QStringList allItems(const QSqlDatabase& db)
{
    QStringList out;
    QSqlQuery q(db);
    q.exec(QStringLiteral("SELECT * FROM Items ORDER BY ID"));
    while (q.next()) {
        QStringList row;
        for (int c = 1; c < ItemColumns::names().size(); ++c) {
            const QVariant v = q.value(c);
            row << (v.isNull() ? QStringLiteral("NULL") : v.typeName() + (u':' + v.toString()));
        }
        out << row.join(u'|');
    }
    return out;
}

} // namespace

class TestItemCsv : public QObject
{
    Q_OBJECT
private slots:
    void parse_data();
    void parse();
    void importValue_data();
    void importValue();
    void plan_data();
    void plan();
    void exportedText();
    void roundTrip();
    void importRolledBack_data();
    void importRolledBack();
};

void TestItemCsv::parse_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<Records>("records");
    const auto add = [](const char* name, const QString& text, const Records& records) {
        QTest::newRow(name) << text << records;
    };
    add("LF only, no final break", "a,b\n1,2", {{"a", "b"}, {"1", "2"}});
    add("old Mac line ends", "a,b\r1,2\r", {{"a", "b"}, {"1", "2"}});
    add("quoted separator, quotes, breaks",
        "\"Lamp, brass\",\"say \"\"hi\"\"\",\"\"\"\"\n"
        "\"line 1\r\nline 2\",\"x\ry\",\n",
        {{"Lamp, brass", "say \"hi\"", "\""}, {"line 1\r\nline 2", "x\ry", ""}});
    add("blank lines skipped", "a\r\n\r\nb\n\n", {{"a"}, {"b"}});
    add("empty fields kept", ",\"\",\r\n", {{"", "", ""}});
    add("semicolons, commas are text", "a;b\r\n1,5;\"x;y\"\r\n", {{"a", "b"}, {"1,5", "x;y"}});
    add("separator told from the header only", "ID;Cost\n1,2,3,4\n", {{"ID", "Cost"}, {"1,2,3,4"}});
    add("semicolons inside a quoted name", "\"a;b;c\",d\n", {{"a;b;c", "d"}});
    add("blank line before a semicolon header", "\r\na;b\n1,5;2\n", {{"a", "b"}, {"1,5", "2"}});
    add("stray quote kept as written", "5\" tall,2\n", {{"5\" tall", "2"}});
}

// Read with the separator the header tells; written back record by record, it reads the same.
void TestItemCsv::parse()
{
    QFETCH(QString, text);
    QFETCH(Records, records);
    const QChar separator = ItemCsv::detectSeparator(text);
    QCOMPARE(fieldsOf(ItemCsv::parse(text, separator)), records);
    QString written;
    for (const QStringList& fields : records)
        written += ItemCsv::formatRecord(fields, separator);
    QVERIFY(written.endsWith(QLatin1String("\r\n")));
    QCOMPARE(fieldsOf(ItemCsv::parse(written, separator)), records);
}

void TestItemCsv::importValue_data()
{
    QTest::addColumn<QString>("column");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("problem"); // a part of the reason; "" when the text is read
    const auto add = [](const char* name, const char* column, const QString& text,
                        const QVariant& stored, const char* problem = "") {
        QTest::newRow(name) << QString::fromLatin1(column) << text << stored
                            << QString::fromLatin1(problem);
    };
    add("money blank is no amount, not 0", "Cost", "  ", QVariant(QMetaType(QMetaType::LongLong)));
    add("money sign and grouping", "Reserve", "$1,234.56", 12345600LL);
    add("decimal comma refused", "Cost", "12,50", {}, "not an amount");
    add("bad grouping refused", "Cost", "1,2345", {}, "not an amount");
    add("date ISO with T", "LastChecked", "2026-11-23T20:45:01", "2026-11-23 20:45:01");
    add("date ISO without seconds", "LastChecked", "2026-11-23T20:45", "2026-11-23 20:45:00");
    add("date only", "DateItemShipped", "2026-02-03", "2026-02-03 00:00:00");
    add("date in the locale's form", "DatePaymentRecd", "2/3/2026", "2026-02-03 00:00:00");
    add("no such month", "DateAuctionStarted", "2026-13-01", {}, "not a date");
    add("another zone's clock", "LastChecked", "2026-07-01T12:00:00+02:00", "2026-07-01 06:00:00");
    add("eBay number of digits", "EbayID", " 0123 ", " 0123 ");
    add("eBay number as a spreadsheet shows it", "EbayID", "1.23457E+11", {}, "not an eBay number");
    add("Active blank is Yes", "Active", "", 1LL);
    add("FeedbackComplete blank is No", "FeedbackComplete", "", 0LL);
    add("Yes/No words", "Active", "FALSE", 0LL);
    add("Yes/No unreadable", "Active", "maybe", {}, "not Yes or No");
    add("text too long", "ShortDescription", QString(256, u'x'), {},
        "ShortDescription: too long (256 characters, at most 255)");
    add("description at its limit", "Description", QString(65536, u'x'), QString(65536, u'x'));
    add("description too long", "Description", QString(65537, u'x'), {}, "too long");
}

void TestItemCsv::importValue()
{
    QFETCH(QString, column);
    QFETCH(QString, text);
    QFETCH(QVariant, stored);
    QFETCH(QString, problem);
    QString why;
    const QVariant value = ItemCsv::importValue(column, text, &why);
    QVERIFY2(problem.isEmpty() ? why.isEmpty() : why.contains(problem), qPrintable(why));
    if (problem.isEmpty()) // a null value shows as NULL, never as an empty or zero amount
        QCOMPARE(value.isNull() ? QStringLiteral("NULL") : value.toString(),
                 stored.isNull() ? QStringLiteral("NULL") : stored.toString());
}

void TestItemCsv::plan_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QStringList>("columns");
    QTest::addColumn<QStringList>("unknown");
    QTest::addColumn<int>("good");
    QTest::addColumn<QStringList>("problems"); // "line: reason"; or the file's error alone
    const auto add = [](const char* name, const QByteArray& file, const QStringList& columns,
                        const QStringList& unknown, int good, const QStringList& problems) {
        QTest::newRow(name) << file << columns << unknown << good << problems;
    };
    add("spreadsheet, BOM, CRLF, quotes",
        "\xEF\xBB\xBFShortDescription,Description,Cost\r\n"
        "\"Lamp, brass\",\"Two lines\r\nof \"\"text\"\"\",12.50\r\n"
        "Vase,,\r\n",
        {"ShortDescription", "Description", "Cost"}, {}, 2, {});
    add("semicolons, header letter case", "shortdescription;COST;active\n\"a;b\";1,000.5;No\n",
        {"ShortDescription", "Cost", "Active"}, {}, 1, {});
    add("unknown columns and ID skipped", "ID,Colour,EbayID,Weight,EbayID,\n7,red,123,2kg,456,\n",
        {"EbayID"}, {"Colour", "Weight", "EbayID"}, 1, {});
    // Lines are counted as an editor shows them: breaks inside quotes and blank lines too.
    add("bad rows with reasons",
        "ShortDescription,Cost,DateAuctionEnds\n"
        "\"ok,\r\nover two lines\",1,2026-01-02\r\n"
        "\n"
        "money,1.2.3,\n"
        "date,,31/31/2026\n"
        "short row,1\n"
        "long row,1,,extra\n"
        "ok too,,\n"
        "\"never closed,1,\n",
        {"ShortDescription", "Cost", "DateAuctionEnds"}, {}, 2,
        {"5: Cost: \"1.2.3\" is not an amount", "6: DateAuctionEnds: \"31/31/2026\" is not a date",
         "7: 2 fields where the header has 3", "8: 4 fields where the header has 3",
         "10: a quoted field is not closed"});
    add("Windows-1252 text", "ShortDescription\nCaf\xE9 chair\n", {"ShortDescription"}, {}, 1, {});
    const QString utf16 = QStringLiteral("ShortDescription;Cost\r\nCaf\u00E9 chair;1\r\n");
    add("UTF-16 with its byte-order mark",
        "\xFF\xFE" + QByteArray(reinterpret_cast<const char*>(utf16.utf16()), utf16.size() * 2),
        {"ShortDescription", "Cost"}, {}, 1, {});
    add("a spreadsheet's empty rows are no items", "ShortDescription,Cost\nLamp,1\n,\n , \n,,\n",
        {"ShortDescription", "Cost"}, {}, 1, {});
    add("no column of Items", "Name,Price\nx,1\n", {}, {}, 0, {"names no column"});
    add("empty file", "\xEF\xBB\xBF\r\n", {}, {}, 0, {"The file is empty."});
}

void TestItemCsv::plan()
{
    QFETCH(QByteArray, file);
    QFETCH(QStringList, problems);
    QTemporaryDir dir;
    const ItemCsv::ImportPlan plan =
        ItemCsv::planImportFile(writeText(dir.filePath(QStringLiteral("in.csv")), file));
    QTEST(plan.columns, "columns");
    if (plan.columns.isEmpty()) {
        QVERIFY2(plan.error.contains(problems.value(0)) && !plan.ok(), qPrintable(plan.error));
        return;
    }
    QCOMPARE(plan.error, QString());
    QTEST(plan.unknownColumns, "unknown");
    QTEST(plan.goodRows, "good");
    QStringList seen;
    for (const ItemCsv::ImportRow& row : plan.rows)
        if (!row.problem.isEmpty())
            seen << QStringLiteral("%1: %2").arg(row.line).arg(row.problem);
    QCOMPARE(seen, problems);
    QCOMPARE(plan.badRows, int(problems.size()));
    if (QTest::currentDataTag() == QLatin1String("Windows-1252 text") ||
        QTest::currentDataTag() == QLatin1String("UTF-16 with its byte-order mark"))
        QCOMPARE(plan.rows.first().values.first().toString(), QStringLiteral("Caf\u00E9 chair"));
}

// The header names every column in table order; money is plain, dates ISO, Yes/No 1/0; a value
// kept as typed goes out as kept; fields are quoted only when they must be. A cancelled or
// failed export leaves the file that was there as it was, and nothing beside it.
void TestItemCsv::exportedText()
{
    TestEnvironment env;
    const QList<qint64> ids = env.addItems(
        {{{"ShortDescription", "Lamp, \"brass\""},
          {"Cost", 125000LL},
          {"SalePrice", -1LL},
          {"DateAuctionEnds", "2026-11-23 20:45:01"},
          {"Active", 0}},
         {{"ShortDescription", "typed"}, {"Reserve", "about ten"}, {"LastChecked", "soon"}}});
    const QString path = env.path(QStringLiteral("out.csv"));
    const QSqlDatabase db = env.context().itemDatabase;
    const ItemCsv::Outcome out = ItemCsv::exportItems(db, {ids.at(1), ids.at(0)}, path);
    QVERIFY2(out.ok(), qPrintable(out.error));
    QCOMPARE(out.count, 2);
    const QString text = readText(path);
    const QStringList lines = text.split(QStringLiteral("\r\n"));
    QCOMPARE(lines.size(), 4); // header, two items, the last break
    QCOMPARE(lines.first(), ItemColumns::names().join(u','));
    QVERIFY2(lines.at(1).contains(QLatin1String(",typed,")), qPrintable(lines.at(1)));
    QVERIFY2(lines.at(2).contains(QLatin1String(",\"Lamp, \"\"brass\"\"\",")),
             qPrintable(lines.at(2)));
    const auto records = ItemCsv::parse(text, u',');
    // clang-format off
    const std::tuple<int, const char*, const char*> fields[] = {
        {1, "Reserve", "about ten"}, {1, "LastChecked", "soon"}, {1, "Active", "1"},
        {2, "Cost", "12.5"}, {2, "SalePrice", "-0.0001"}, {2, "Active", "0"},
        {2, "DateAuctionEnds", "2026-11-23 20:45:01"}, {2, "Reserve", ""}};
    // clang-format on
    for (const auto& [record, column, value] : fields)
        QCOMPARE(records.at(record).fields.at(ItemColumns::names().indexOf(QLatin1String(column))),
                 QLatin1String(value));

    const QList<qint64> more = env.addNumberedItems(1200);
    const ItemCsv::Outcome cancelled =
        ItemCsv::exportItems(db, more, path, [](qsizetype done, qsizetype) { return done < 500; });
    QVERIFY(cancelled.cancelled && !cancelled.ok());
    QCOMPARE(readText(path), text);
    QCOMPARE(
        QDir(env.appPath()).entryList({QStringLiteral("out.csv*")}, QDir::Files | QDir::Hidden),
        QStringList{QStringLiteral("out.csv")});
    const ItemCsv::Outcome failed =
        ItemCsv::exportItems(db, more, env.path(QStringLiteral("no/such/folder/x.csv")));
    QVERIFY(!failed.ok() && !failed.error.isEmpty());
    // Never over the database in use: the next start would find a text file.
    const QString live = env.path(QStringLiteral("tb2.mdb"));
    QVERIFY(!ItemCsv::exportItems(db, more, live).ok());
    QFile database(live);
    QVERIFY(database.open(QIODevice::ReadOnly));
    QVERIFY(database.read(16).startsWith("SQLite format 3"));
}

// Exported from one database and imported into an empty one: the same items, IDs aside.
void TestItemCsv::roundTrip()
{
    TestEnvironment from;
    QList<QVariantMap> rows;
    for (int i = 0; i < 1234; ++i) // more than one read batch
        rows << QVariantMap{
            {"EbayID", QString::number(1000000 + i)},
            {"ShortDescription", QStringLiteral("Item %1, \"boxed\"").arg(i)},
            {"Description", QStringLiteral("Line one\r\nline two;\u00E9\u4E2D")},
            {"Cost", qlonglong(i * 12345)},
            {"SalePrice", i % 2 ? QVariant(-qlonglong(i)) : QVariant()},
            {"DateAuctionStarted", "2026-01-02 03:04:05"},
            {"DateItemShipped", i % 3 ? QVariant("2026-02-03 00:00:00") : QVariant()},
            {"Active", i % 3 == 0 ? 0 : 1},
            {"FeedbackComplete", i % 5 == 0 ? 1 : 0},
            {"TransNotes", i % 7 ? QVariant() : QVariant(" spaced ")}};
    rows << QVariantMap(); // an item with nothing but defaults
    const QList<qint64> ids = from.addItems(rows);
    const QString path = from.path(QStringLiteral("items.csv"));
    QList<qsizetype> steps;
    const ItemCsv::Outcome out = ItemCsv::exportItems(from.context().itemDatabase, ids, path,
                                                      [&](qsizetype done, qsizetype) {
                                                          steps << done;
                                                          return true;
                                                      });
    QVERIFY2(out.ok(), qPrintable(out.error));
    QCOMPARE(steps, (QList<qsizetype>{0, 500, 1000}));

    TestEnvironment to;
    const ItemCsv::ImportPlan plan = ItemCsv::planImportFile(path);
    QVERIFY2(plan.ok(), qPrintable(plan.error));
    QCOMPARE(plan.badRows, 0);
    const ItemCsv::Outcome in = ItemCsv::importItems(to.context().itemDatabase, plan);
    QVERIFY2(in.ok(), qPrintable(in.error));
    QCOMPARE(in.count, ids.size());
    QCOMPARE(allItems(to.context().itemDatabase), allItems(from.context().itemDatabase));
}

void TestItemCsv::importRolledBack_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("a trigger refuses the last row") << "trigger";
    QTest::newRow("cancelled after 1000 rows") << "cancel";
    QTest::newRow("database closed") << "closed";
}

// Nothing of a failed or cancelled import stays, not even the rows before the failure.
void TestItemCsv::importRolledBack()
{
    QFETCH(QString, how);
    TestEnvironment env;
    env.addNumberedItems(3);
    QByteArray file("ShortDescription,Cost\n");
    for (int i = 0; i < 1200; ++i)
        file += "row " + QByteArray::number(i) + ",1\n";
    const ItemCsv::ImportPlan plan =
        ItemCsv::planImportFile(writeText(env.path(QStringLiteral("in.csv")), file + "boom,2\n"));
    QCOMPARE(plan.goodRows, 1201);
    QSqlDatabase db = env.context().itemDatabase;
    QVERIFY(QSqlQuery(db).exec(QStringLiteral(
        "CREATE TRIGGER NoBoom BEFORE INSERT ON Items WHEN NEW.ShortDescription = 'boom' "
        "BEGIN SELECT RAISE(ABORT, 'no boom here'); END")));
    ItemCsv::Progress progress;
    if (how == u"cancel")
        progress = [](qsizetype done, qsizetype) { return done < 1000; };
    if (how == u"closed")
        db.close();
    const ItemCsv::Outcome out = ItemCsv::importItems(db, plan, progress);
    QVERIFY(!out.ok());
    QCOMPARE(out.count, 0);
    QCOMPARE(out.cancelled, how == u"cancel");
    if (how == u"trigger")
        QVERIFY2(out.error.contains(QLatin1String("no boom here")), qPrintable(out.error));
    QVERIFY(db.isOpen() || db.open());
    QCOMPARE(env.itemCount(), 3);
}

QTEST_GUILESS_MAIN(TestItemCsv)
#include "tst_itemcsv.moc"
