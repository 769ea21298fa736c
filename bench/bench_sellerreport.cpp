// Reading and applying a 5000-row seller report over a 100,000-item database, against the same
// 5000 updates run straight through the SQLite C API on a second connection to the same file.
// Prints both times (median of several runs, wall clock and CPU) and their ratio. An argument
// gives another item count, e.g. a small one when profiling the reading alone.
#include "../tests/support/TestEnvironment.h"

#include "platform/DateText.h"
#include "web/SellerReport.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSqlQuery>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

namespace {

int gItems = 100000;
constexpr int kRuns = 11;

QString ebayId(int i)
{
    return QString::number(1000000 + i);
}

void fillItems(TestEnvironment& env)
{
    QSqlDatabase db = env.context().itemDatabase;
    const QString paragraph = QStringLiteral(
        "<p><font face=\"Arial\">Solid oak, hand finished, from a smoke-free home. "
        "Shipping by parcel post; insurance optional. Please ask any questions before "
        "bidding.</font></p>\n");
    db.transaction();
    QSqlQuery insert(db);
    insert.prepare(QStringLiteral(
        "INSERT INTO Items (EbayID, ShortDescription, Description, Active, LastPrice, MinBid, "
        "DateAuctionStarted, DateAuctionEnds) VALUES (?, ?, ?, ?, ?, ?, ?, ?)"));
    for (int i = 0; i < gItems; ++i) {
        insert.bindValue(0, ebayId(i));
        insert.bindValue(1, QStringLiteral("Oak chair no. %1").arg(i));
        insert.bindValue(2, QString(QStringLiteral("<h2>Item %1</h2>\n").arg(i) +
                                    paragraph.repeated(12 + i % 20)));
        insert.bindValue(3, i % 4 == 0 ? 0 : 1);
        insert.bindValue(4, qint64(i % 500) * 10000);
        insert.bindValue(5, 10000);
        insert.bindValue(6, QStringLiteral("1999-06-01 10:00:00"));
        insert.bindValue(7, QStringLiteral("1999-06-08 10:00:00"));
        if (!insert.exec())
            qFatal("insert failed");
    }
    db.commit();
}

// Every 20th item, half of them already ended, in the forms the site has used.
QString makeReport()
{
    QString page = QStringLiteral("<html><body><table>\r\n<tr><th>Item</th><th>Start</th>"
                                  "<th>End</th><th>Price</th><th>Title</th>"
                                  "<th>High Bidder</th></tr>\r\n");
    for (int k = 0; k < 5000; ++k) {
        const int i = k * 20;
        const bool ended = k % 2 == 0;
        page += QStringLiteral("<tr><td><a href=\"/item/%1\">%1</a></td><td>06/01/99 10:00:00</td>"
                               "<td>%2</td><td><b>$%3.50</b></td><td>Oak chair no. %4</td>"
                               "<td><a href=\"mailto:buyer%4@example.com\">buyer%4@example.com</a>"
                               "</td></tr>\r\n")
                    .arg(ebayId(i),
                         ended ? QStringLiteral("Jun-08-99 10:00:00")
                               : QStringLiteral("Jun 27, 2099 08:00:00"),
                         QString::number(1000 + k), QString::number(i));
    }
    return page + QStringLiteral("</table></body></html>\r\n");
}

// Wall time and this process's CPU time; the CPU figure stays meaningful on a busy machine.
struct Stopwatch
{
    QElapsedTimer wall;
    std::clock_t cpu = std::clock();
    Stopwatch() { wall.start(); }
    std::pair<double, double> ms() const
    {
        return {wall.nsecsElapsed() / 1e6, (std::clock() - cpu) * 1000.0 / CLOCKS_PER_SEC};
    }
};

struct Update
{
    bool ended;
    std::string buyer, started, ends, item;
    qint64 price;
};

// The same statements with the values already worked out: what the database alone costs.
std::pair<double, double> runDirect(sqlite3* db, const std::vector<Update>& updates,
                                    const std::string& checked)
{
    sqlite3_stmt* running = nullptr;
    sqlite3_stmt* ended = nullptr;
    const Stopwatch timer;
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_prepare_v2(db,
                       "UPDATE Items SET LastPrice = ?, LastChecked = ?, DateAuctionStarted = ?, "
                       "DateAuctionEnds = ? WHERE EbayID = ?",
                       -1, &running, nullptr);
    sqlite3_prepare_v2(db,
                       "UPDATE Items SET BuyerEmail = ?, SalePrice = ?, LastPrice = ?, "
                       "LastChecked = ?, DateAuctionStarted = ?, DateAuctionEnds = ? "
                       "WHERE EbayID = ?",
                       -1, &ended, nullptr);
    for (const Update& u : updates) {
        sqlite3_stmt* s = u.ended ? ended : running;
        int i = 1;
        if (u.ended) {
            sqlite3_bind_text(s, i++, u.buyer.c_str(), -1, SQLITE_STATIC);
            sqlite3_bind_int64(s, i++, u.price);
        }
        sqlite3_bind_int64(s, i++, u.price);
        sqlite3_bind_text(s, i++, checked.c_str(), -1, SQLITE_STATIC);
        sqlite3_bind_text(s, i++, u.started.c_str(), -1, SQLITE_STATIC);
        sqlite3_bind_text(s, i++, u.ends.c_str(), -1, SQLITE_STATIC);
        sqlite3_bind_text(s, i++, u.item.c_str(), -1, SQLITE_STATIC);
        if (sqlite3_step(s) != SQLITE_DONE)
            qFatal("update failed: %s", sqlite3_errmsg(db));
        sqlite3_reset(s);
    }
    sqlite3_finalize(running);
    sqlite3_finalize(ended);
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    return timer.ms();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc > 1)
        gItems = std::max(1, QByteArray(argv[1]).toInt());
    TestEnvironment env;
    QElapsedTimer fill;
    fill.start();
    fillItems(env);
    std::printf("%d items written in %.1f s\n", gItems, fill.elapsed() / 1000.0);

    const QString page = makeReport();
    const QDateTime now(QDate(2024, 6, 25), QTime(12, 0));
    const QList<ReportRow> rows = ReadSellerReport(page, 300, 0);
    if (rows.size() != 5000)
        qFatal("report read %d rows", int(rows.size()));
    std::vector<Update> updates;
    for (const ReportRow& r : rows)
        updates.push_back({r.Ends < now, r.HighBidder.toStdString(),
                           DateText::toStorage(r.Started).toStdString(),
                           DateText::toStorage(r.Ends).toStdString(), r.ItemNumber.toStdString(),
                           r.Price.units()});
    const std::string checked = DateText::toStorage(now).toStdString();

    sqlite3* direct = nullptr;
    if (sqlite3_open(qPrintable(env.context().state.databasePath), &direct) != SQLITE_OK)
        qFatal("cannot open the database a second time");
    sqlite3_busy_timeout(direct, 5000);

    std::vector<double> ours, oursCpu, theirs, theirsCpu, reading;
    QSqlDatabase db = env.context().itemDatabase;
    for (int run = 0; run < kRuns; ++run) {
        const Stopwatch timer;
        const QList<ReportRow> read = ReadSellerReport(page, 300, 0);
        reading.push_back(timer.ms().second);
        const ApplyResult result = ApplySellerReport(db, read, now);
        const auto [wall, cpu] = timer.ms();
        ours.push_back(wall);
        oursCpu.push_back(cpu);
        if (!result.ok || result.statements != 5000)
            qFatal("report not applied: %s", qPrintable(result.error));
        const auto [directWall, directCpu] = runDirect(direct, updates, checked);
        theirs.push_back(directWall);
        theirsCpu.push_back(directCpu);
    }
    sqlite3_close(direct);

    std::printf("medians of %d runs     wall ms   cpu ms\n", kRuns);
    std::printf("read + apply 5000 rows %7.1f  %7.1f  (reading alone %.1f cpu ms)\n", median(ours),
                median(oursCpu), median(reading));
    std::printf("sqlite3 C API          %7.1f  %7.1f\n", median(theirs), median(theirsCpu));
    std::printf("ratio                  %7.2f  %7.2f  (goal: at most 2)\n",
                median(ours) / median(theirs), median(oursCpu) / median(theirsCpu));
    return 0;
}
