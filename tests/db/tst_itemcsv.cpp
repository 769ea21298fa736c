// Items to and from CSV: files as other programs write them, the value forms read, the round
// trip through a real database, and imports that fail or are cancelled leaving no trace.
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

QByteArray readBytes(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// Every item, every column but ID, in key order.
QList<QVariantList> allItems(const QSqlDatabase& db)
{
    QList<QVariantList> out;
    QSqlQuery q(db);
    q.exec(QStringLiteral("SELECT * FROM Items ORDER BY ID"));
    while (q.next()) {
        QVariantList row;
        for (int c = 1; c < ItemColumns::names().size(); ++c)
            row << q.value(c);
        out << row;
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
    void recordLines();
    void separator_data();
    void separator();
    void format_data();
    void format();
    void importValue_data();
    void importValue();
    void plan_data();
    void plan();
    void exportedText();
    void roundTrip();
    void exportCancelledKeepsTheOldFile();
    void importRolledBack_data();
    void importRolledBack();
};

void TestItemCsv::parse_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("separator");
    QTest::addColumn<Records>("records");
    QTest::newRow("plain, CRLF") << "a,b\r\n1,2\r\n"
                                 << "," << Records{{"a", "b"}, {"1", "2"}};
    QTest::newRow("LF only, no final break") << "a,b\n1,2"
                                             << "," << Records{{"a", "b"}, {"1", "2"}};
    QTest::newRow("comma inside quotes") << "a,b\r\n\"Lamp, brass\",2\r\n"
                                         << "," << Records{{"a", "b"}, {"Lamp, brass", "2"}};
    QTest::newRow("doubled quotes") << "\"He said \"\"mint\"\"\",\"\"\"\"\n"
                                    << "," << Records{{"He said \"mint\"", "\""}};
    QTest::newRow("CRLF inside quotes") << "\"line 1\r\nline 2\",x\r\n"
                                        << "," << Records{{"line 1\r\nline 2", "x"}};
    QTest::newRow("blank lines skipped") << "a\r\n\r\nb\n\n"
                                         << "," << Records{{"a"}, {"b"}};
    QTest::newRow("empty fields kept") << ",\"\",\r\n"
                                       << "," << Records{{"", "", ""}};
    QTest::newRow("byte-order mark dropped") << "\uFEFFID,Cost\n"
                                             << "," << Records{{"ID", "Cost"}};
    QTest::newRow("semicolons, commas are text") << "a;b\r\n1,5;\"x;y\"\r\n"
                                                 << ";" << Records{{"a", "b"}, {"1,5", "x;y"}};
    QTest::newRow("stray quote kept as written") << "5\" tall,2\n"
                                                 << "," << Records{{"5\" tall", "2"}};
    QTest::newRow("old Mac line ends") << "a,b\r1,2\r"
                                       << "," << Records{{"a", "b"}, {"1", "2"}};
}

void TestItemCsv::parse()
{
    QFETCH(QString, text);
    QFETCH(QString, separator);
    QFETCH(Records, records);
    QCOMPARE(fieldsOf(ItemCsv::parse(text, separator.at(0))), records);
}

// The line a record starts on counts the breaks inside quoted fields before it, so the preview
// names the line an editor shows.
void TestItemCsv::recordLines()
{
    const auto records = ItemCsv::parse(u"h\r\n\"a\r\nb\r\nc\"\r\n\r\nnext\r\n\"open", u',');
    QCOMPARE(records.size(), 4);
    QCOMPARE(records.at(1).line, 2);
    QCOMPARE(records.at(2).line, 6);
    QCOMPARE(records.at(3).line, 7);
    QVERIFY(records.at(2).problem.isEmpty());
    QVERIFY(records.at(3).problem.contains(QLatin1String("not closed")));
}

void TestItemCsv::separator_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("separator");
    QTest::newRow("commas") << "ID,EbayID,Cost\n1;2;3;4\n"
                            << ",";
    QTest::newRow("semicolons") << "ID;EbayID;Cost\n1,2,3,4\n"
                                << ";";
    QTest::newRow("semicolon inside a quoted name") << "\"a;b;c\",d\n"
                                                    << ",";
}

void TestItemCsv::separator()
{
    QFETCH(QString, text);
    QFETCH(QString, separator);
    QCOMPARE(ItemCsv::detectSeparator(text), separator.at(0));
}

void TestItemCsv::format_data()
{
    QTest::addColumn<QStringList>("fields");
    QTest::addColumn<QString>("line");
    QTest::newRow("plain") << QStringList{"a", "", "12.5"} << "a,,12.5\r\n";
    QTest::newRow("comma, quote, break")
        << QStringList{"a,b", "say \"hi\"", "1\n2"} << "\"a,b\",\"say \"\"hi\"\"\",\"1\n2\"\r\n";
    QTest::newRow("lone carriage return") << QStringList{"x\ry"} << "\"x\ry\"\r\n";
}

void TestItemCsv::format()
{
    QFETCH(QStringList, fields);
    QFETCH(QString, line);
    QCOMPARE(ItemCsv::formatRecord(fields), line);
    // What is written reads back the same.
    QCOMPARE(fieldsOf(ItemCsv::parse(line, u',')), Records{fields});
}

void TestItemCsv::importValue_data()
{
    QTest::addColumn<QString>("column");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("problem"); // a part of the reason; "" when the text is read
    const QVariant noMoney(QMetaType(QMetaType::LongLong));
    QTest::newRow("money blank is no amount, not 0") << "Cost"
                                                     << "  " << noMoney << "";
    QTest::newRow("money plain") << "Cost"
                                 << "12.5" << QVariant(125000LL) << "";
    QTest::newRow("money negative") << "SalePrice"
                                    << "-3" << QVariant(-30000LL) << "";
    QTest::newRow("money sign and grouping") << "Reserve"
                                             << "$1,234.56" << QVariant(12345600LL) << "";
    QTest::newRow("decimal comma refused") << "Cost"
                                           << "12,50" << QVariant() << "not an amount";
    QTest::newRow("bad grouping refused") << "Cost"
                                          << "1,2345" << QVariant() << "not an amount";
    QTest::newRow("words refused") << "LastPrice"
                                   << "ten" << QVariant() << "LastPrice: \"ten\"";
    QTest::newRow("date ISO") << "DateAuctionEnds"
                              << "2026-11-23 20:45:01" << QVariant("2026-11-23 20:45:01") << "";
    QTest::newRow("date ISO with T")
        << "LastChecked"
        << "2026-11-23T20:45:01" << QVariant("2026-11-23 20:45:01") << "";
    QTest::newRow("date ISO without seconds")
        << "LastChecked"
        << "2026-11-23T20:45" << QVariant("2026-11-23 20:45:00") << "";
    QTest::newRow("date only") << "DateItemShipped"
                               << "2026-02-03" << QVariant("2026-02-03 00:00:00") << "";
    QTest::newRow("date in the locale's form")
        << "DatePaymentRecd"
        << "2/3/2026" << QVariant("2026-02-03 00:00:00") << "";
    QTest::newRow("no such month") << "DateAuctionStarted"
                                   << "2026-13-01" << QVariant() << "not a date";
    QTest::newRow("Active blank is Yes") << "Active"
                                         << "" << QVariant(1LL) << "";
    QTest::newRow("FeedbackComplete blank is No") << "FeedbackComplete"
                                                  << "" << QVariant(0LL) << "";
    QTest::newRow("Yes/No words") << "Active"
                                  << "FALSE" << QVariant(0LL) << "";
    QTest::newRow("Yes/No unreadable") << "Active"
                                       << "maybe" << QVariant() << "not Yes or No";
    QTest::newRow("text too long") << "ShortDescription" << QString(256, u'x') << QVariant()
                                   << "too long (256 characters, at most 255)";
    QTest::newRow("description at its limit")
        << "Description" << QString(65536, u'x') << QVariant(QString(65536, u'x')) << "";
    QTest::newRow("description too long")
        << "Description" << QString(65537, u'x') << QVariant() << "too long";
}

void TestItemCsv::importValue()
{
    QFETCH(QString, column);
    QFETCH(QString, text);
    QFETCH(QVariant, stored);
    QFETCH(QString, problem);
    QString why;
    const QVariant value = ItemCsv::importValue(column, text, &why);
    if (problem.isEmpty()) {
        QCOMPARE(why, QString());
        QCOMPARE(value.isNull(), stored.isNull());
        if (!stored.isNull())
            QCOMPARE(value.toString(), stored.toString());
    } else {
        QVERIFY2(why.contains(problem), qPrintable(why));
    }
}

void TestItemCsv::plan_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QStringList>("columns");
    QTest::addColumn<QStringList>("unknown");
    QTest::addColumn<int>("good");
    QTest::addColumn<QStringList>("problems"); // "line: part of the reason"
    QTest::addColumn<QString>("error");
    QTest::newRow("spreadsheet, BOM, CRLF, quotes")
        << QByteArray("\xEF\xBB\xBFShortDescription,Description,Cost\r\n"
                      "\"Lamp, brass\",\"Two lines\r\nof \"\"text\"\"\",12.50\r\n"
                      "Vase,,\r\n")
        << QStringList{"ShortDescription", "Description", "Cost"} << QStringList{} << 2
        << QStringList{} << "";
    QTest::newRow("semicolons, header letter case")
        << QByteArray("shortdescription;COST;active\n\"a;b\";1,000.5;No\n")
        << QStringList{"ShortDescription", "Cost", "Active"} << QStringList{} << 1 << QStringList{}
        << "";
    QTest::newRow("unknown columns and ID skipped")
        << QByteArray("ID,Colour,EbayID,Weight,EbayID,\n7,red,123,2kg,456,\n")
        << QStringList{"EbayID"} << QStringList{"Colour", "Weight", "EbayID"} << 1 << QStringList{}
        << "";
    QTest::newRow("bad rows with reasons")
        << QByteArray("ShortDescription,Cost,DateAuctionEnds\n"
                      "ok,1,2026-01-02\n"
                      "money,1.2.3,\n"
                      "date,,31/31/2026\n"
                      "short row,1\n"
                      "long row,1,,extra\n"
                      "ok too,,\n"
                      "\"never closed,1,\n")
        << QStringList{"ShortDescription", "Cost", "DateAuctionEnds"} << QStringList{} << 2
        << QStringList{"3: Cost: \"1.2.3\" is not an amount",
                       "4: DateAuctionEnds: \"31/31/2026\" is not a date",
                       "5: 2 fields where the header has 3", "6: 4 fields where the header has 3",
                       "8: a quoted field is not closed"}
        << "";
    QTest::newRow("Windows-1252 text")
        << QByteArray("ShortDescription\nCaf\xE9 chair\n") << QStringList{"ShortDescription"}
        << QStringList{} << 1 << QStringList{} << "";
    QTest::newRow("no column of Items")
        << QByteArray("Name,Price\nx,1\n") << QStringList{} << QStringList{"Name", "Price"} << 0
        << QStringList{} << "names no column";
    QTest::newRow("empty file") << QByteArray("\xEF\xBB\xBF\r\n") << QStringList{} << QStringList{}
                                << 0 << QStringList{} << "empty";
}

void TestItemCsv::plan()
{
    QFETCH(QByteArray, file);
    QFETCH(QStringList, columns);
    QFETCH(QStringList, unknown);
    QFETCH(int, good);
    QFETCH(QStringList, problems);
    QFETCH(QString, error);
    QTemporaryDir dir;
    const ItemCsv::ImportPlan plan =
        ItemCsv::planImportFile(writeText(dir.filePath(QStringLiteral("in.csv")), file));
    if (!error.isEmpty()) {
        QVERIFY2(plan.error.contains(error), qPrintable(plan.error));
        return;
    }
    QCOMPARE(plan.error, QString());
    QCOMPARE(plan.columns, columns);
    QCOMPARE(plan.unknownColumns, unknown);
    QCOMPARE(plan.goodRows, good);
    QStringList seen;
    for (const ItemCsv::ImportRow& row : plan.rows)
        if (!row.problem.isEmpty())
            seen << QStringLiteral("%1: %2").arg(row.line).arg(row.problem);
    QCOMPARE(seen, problems);
    QCOMPARE(plan.badRows, int(problems.size()));
}

// The header names every column in table order; money is plain, dates ISO, Yes/No 1/0; a value
// kept as typed goes out as kept.
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
    const ItemCsv::Outcome out =
        ItemCsv::exportItems(env.context().itemDatabase, {ids.at(1), ids.at(0)}, path);
    QVERIFY2(out.ok(), qPrintable(out.error));
    QCOMPARE(out.count, 2);
    const QString text = QString::fromUtf8(readBytes(path));
    const QStringList lines = text.split(QStringLiteral("\r\n"));
    QCOMPARE(lines.first(), ItemColumns::names().join(u','));
    QCOMPARE(lines.size(), 4); // header, two items, the last break
    const auto fields = ItemCsv::parse(text, u',');
    const auto field = [&](int record, const char* column) {
        return fields.at(record).fields.at(ItemColumns::names().indexOf(QLatin1String(column)));
    };
    QCOMPARE(field(1, "ShortDescription"), QStringLiteral("typed")); // the order asked for
    QCOMPARE(field(1, "Reserve"), QStringLiteral("about ten"));
    QCOMPARE(field(1, "LastChecked"), QStringLiteral("soon"));
    QCOMPARE(field(1, "Active"), QStringLiteral("1"));
    QCOMPARE(field(2, "ShortDescription"), QStringLiteral("Lamp, \"brass\""));
    QCOMPARE(field(2, "Cost"), QStringLiteral("12.5"));
    QCOMPARE(field(2, "SalePrice"), QStringLiteral("-0.0001"));
    QCOMPARE(field(2, "DateAuctionEnds"), QStringLiteral("2026-11-23 20:45:01"));
    QCOMPARE(field(2, "Active"), QStringLiteral("0"));
    QCOMPARE(field(2, "Reserve"), QString());
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
    from.addItems(rows);
    from.addItems({{}}); // an item with nothing but defaults
    QList<qint64> ids;
    QSqlQuery q(from.context().itemDatabase);
    q.exec(QStringLiteral("SELECT ID FROM Items ORDER BY ID"));
    while (q.next())
        ids << q.value(0).toLongLong();
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
    const QList<QVariantList> before = allItems(from.context().itemDatabase);
    const QList<QVariantList> after = allItems(to.context().itemDatabase);
    QCOMPARE(after.size(), before.size());
    for (qsizetype r = 0; r < before.size(); ++r)
        for (qsizetype c = 0; c < before.at(r).size(); ++c)
            QVERIFY2(
                before.at(r).at(c) == after.at(r).at(c) ||
                    (before.at(r).at(c).isNull() && after.at(r).at(c).isNull()),
                qPrintable(QStringLiteral("row %1, %2: %3 became %4")
                               .arg(r)
                               .arg(ItemColumns::names().at(c + 1), before.at(r).at(c).toString(),
                                    after.at(r).at(c).toString())));
}

// A cancelled or failed export leaves the file that was there as it was.
void TestItemCsv::exportCancelledKeepsTheOldFile()
{
    TestEnvironment env;
    const QList<qint64> ids = env.addNumberedItems(1200);
    const QString path = writeText(env.path(QStringLiteral("old.csv")), "old");
    const ItemCsv::Outcome cancelled =
        ItemCsv::exportItems(env.context().itemDatabase, ids, path,
                             [](qsizetype done, qsizetype) { return done < 500; });
    QVERIFY(cancelled.cancelled);
    QCOMPARE(readBytes(path), QByteArray("old"));
    QCOMPARE(
        QDir(env.appPath()).entryList({QStringLiteral("old.csv*")}, QDir::Files | QDir::Hidden),
        QStringList{QStringLiteral("old.csv")});

    const ItemCsv::Outcome failed = ItemCsv::exportItems(
        env.context().itemDatabase, ids, env.path(QStringLiteral("no/such/folder/x.csv")));
    QVERIFY(!failed.ok() && !failed.error.isEmpty());
}

void TestItemCsv::importRolledBack_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("a trigger refuses a row") << "trigger";
    QTest::newRow("cancelled after 1000 rows") << "cancel";
    QTest::newRow("database closed") << "closed";
}

// Nothing of a failed or cancelled import stays, not even the rows before the failure.
void TestItemCsv::importRolledBack()
{
    QFETCH(QString, how);
    TestEnvironment env;
    env.addNumberedItems(3);
    QSqlDatabase db = env.context().itemDatabase;
    QByteArray file("ShortDescription,Cost\n");
    for (int i = 0; i < 1200; ++i)
        file += QByteArray("row ") + QByteArray::number(i) + ",1\n";
    file += "boom,2\n";
    const ItemCsv::ImportPlan plan =
        ItemCsv::planImportFile(writeText(env.path(QStringLiteral("in.csv")), file));
    QCOMPARE(plan.goodRows, 1201);
    QSqlQuery q(db);
    QVERIFY(q.exec(QStringLiteral(
        "CREATE TRIGGER NoBoom BEFORE INSERT ON Items WHEN NEW.ShortDescription = 'boom' "
        "BEGIN SELECT RAISE(ABORT, 'no boom here'); END")));
    ItemCsv::Progress progress;
    if (how == QLatin1String("cancel"))
        progress = [](qsizetype done, qsizetype) { return done < 1000; };
    if (how == QLatin1String("closed"))
        db.close();
    const ItemCsv::Outcome out = ItemCsv::importItems(db, plan, progress);
    QVERIFY(!out.ok());
    QCOMPARE(out.count, 0);
    if (how == QLatin1String("trigger"))
        QVERIFY2(out.error.contains(QLatin1String("no boom here")), qPrintable(out.error));
    if (how == QLatin1String("cancel"))
        QVERIFY(out.cancelled);
    if (how == QLatin1String("closed"))
        QVERIFY(db.open());
    QCOMPARE(env.itemCount(), 3);
}

QTEST_GUILESS_MAIN(TestItemCsv)
#include "tst_itemcsv.moc"
