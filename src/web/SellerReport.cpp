#include "web/SellerReport.h"

#include "platform/DateText.h"
#include "platform/TextRoutines.h"
#include "web/PageCursor.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace {

// The line starting at `pos` up to and including its line feed, moving `pos` past it; "" with
// `pos` unchanged when no line feed follows.
QStringView nextLine(QStringView text, qsizetype& pos)
{
    const qsizetype feed = text.indexOf(u'\n', pos);
    if (feed < 0)
        return {};
    const QStringView line = text.mid(pos, feed + 1 - pos);
    pos = feed + 1;
    return line;
}

// Moves past the next "<td ...>" and leaves the cursor at the cell's text.
void enterCell(PageCursor& row)
{
    row.cutAfter(u"<td");
    row.cutAfter(u">");
}

// The text up to the marker; empty when the marker is missing, as the cleared row held.
QStringView upTo(const PageCursor& row, QStringView marker)
{
    return row.takeUpTo(marker).value_or(QStringView());
}

// The bidder cell: "No Bids", or the address of a mailto link (any link that is not to a web
// page); anything else leaves the bidder blank.
QString readBidder(PageCursor& row)
{
    if (row.startsWith(u"No Bids"))
        return QStringLiteral("No Bids");
    // Compared in capitals: any letter case of the tag and of the scheme.
    if (row.rest().startsWith(u"<A HREF=", Qt::CaseInsensitive) &&
        !row.rest().startsWith(u"<A HREF=\"HTTP", Qt::CaseInsensitive)) {
        row.cutAfter(u"mailto:");
        return upTo(row, u"\">").toString();
    }
    return {};
}

std::optional<ReportRow> readRow(QStringView line, int bias, int daylightDiff)
{
    PageCursor row(line);
    ReportRow r;
    row.cutAfter(u"\">");
    r.ItemNumber = upTo(row, u"<").toString();
    if (r.ItemNumber.trimmed().isEmpty())
        return r; // the caller stops here

    enterCell(row);
    r.Started = readSiteDate(upTo(row, u"</td>"));
    row.cutAfter(u"</td>");
    enterCell(row);
    r.Ends = readPacificTime(upTo(row, u"<"), bias, daylightDiff);
    enterCell(row);
    if (row.startsWith(u"<b>"))
        row.drop(3);
    const std::optional<Money> price = readSiteMoney(upTo(row, u"<"));
    enterCell(row);
    r.Title = upTo(row, u"<").toString();
    enterCell(row);
    r.HighBidder = readBidder(row);
    // A further plain cell after the bidder's holds the bidder as the site wants it shown.
    if (row.contains(u"<td>")) {
        row.cutAfter(u"<td>");
        row.cutAfter(u">");
        if (const auto cell = row.takeUpTo(u"<"))
            r.HighBidder = cell->toString();
    }
    // A row with no readable dates or price is left out rather than storing made-up values.
    if (!r.Started.isValid() || !r.Ends.isValid() || !price)
        return std::nullopt;
    r.Price = *price;
    return r;
}

// Compared as clock readings: both are local times, whatever zone object they carry.
bool isBefore(const QDateTime& a, QDate date, QTime time)
{
    const QDate day = a.date();
    return day < date || (day == date && a.time() < time);
}

// The stored form of a date, the text DateText::toStorage gives, written digit by digit: going
// through the locale's formatter costs more than the update itself over thousands of rows.
QString storageText(const QDateTime& value)
{
    const QDate d = value.date();
    const QTime t = value.time();
    if (d.year() < 1000 || d.year() > 9999)
        return DateText::toStorage(value);
    char text[19];
    const auto put = [&text](int at, int number, int digits) {
        for (int i = at + digits - 1; i >= at; --i, number /= 10)
            text[i] = char('0' + number % 10);
    };
    put(0, d.year(), 4);
    put(5, d.month(), 2);
    put(8, d.day(), 2);
    put(11, t.hour(), 2);
    put(14, t.minute(), 2);
    put(17, t.second(), 2);
    text[4] = text[7] = '-';
    text[10] = ' ';
    text[13] = text[16] = ':';
    return QString::fromLatin1(text, sizeof text);
}

// A value placed in the address's query, with the characters that would end or garble it
// escaped; an e-mail address passes unchanged.
QString queryValue(const QString& value)
{
    QString out;
    for (const QChar c : value) {
        if (c == u'%' || c == u'&' || c == u'#' || c == u'+' || c == u' ' || c == u'=')
            out += u'%' + QString::number(c.unicode(), 16).toUpper().rightJustified(2, u'0');
        else
            out += c;
    }
    return out;
}

} // namespace

QString TakeLine(QString& text)
{
    qsizetype pos = 0;
    const QString line = nextLine(text, pos).toString();
    text.remove(0, pos);
    return line;
}

QList<ReportRow> ReadSellerReport(const QString& page, int bias, int daylightDiff)
{
    PageCursor head(page);
    head.cutAfter(u"High Bidder</th>");
    // The rows start after the header row's "</tr>" and its CR LF.
    head.cutFrom(u"</tr>", 7);
    const QStringView table = head.rest();

    QList<ReportRow> rows;
    qsizetype pos = 0;
    for (int k = 1; k <= kMaxReportRows; ++k) {
        const QStringView line = nextLine(table, pos);
        if (!line.startsWith(u"<tr><td>"))
            break;
        const std::optional<ReportRow> row = readRow(line, bias, daylightDiff);
        if (!row)
            continue;
        if (row->ItemNumber.trimmed().isEmpty())
            break;
        rows.append(*row);
    }
    return rows;
}

QString sellerReportAddress(const QString& ebaySellerReport, const QString& userEmail,
                            const QString& pastDays, const QString& ebayPassword)
{
    return ebaySellerReport + queryValue(userEmail) + QLatin1String("&since=") +
           queryValue(pastDays) + QLatin1String("&sort=2&requested=") + queryValue(userEmail) +
           QLatin1String("&pass=") + queryValue(ebayPassword);
}

QString storedBuyerEmail(const QString& highBidder)
{
    if (!highBidder.contains(u'\''))
        return highBidder;
    // The doubled text always holds a single "''" pair (ReplaceAll keeps one segment before
    // the last apostrophe), so reading it back as a quoted value is this one replacement.
    return ReplaceAll(highBidder, QStringLiteral("'"), QStringLiteral("''"))
        .replace(QLatin1String("''"), QLatin1String("'"));
}

ApplyResult ApplySellerReport(QSqlDatabase db, const QList<ReportRow>& rows, const QDateTime& now)
{
    ApplyResult result;
    const auto fail = [&](const QString& error) {
        result.ok = false;
        result.error = error;
        return result;
    };
    // One transaction for speed only: a report of thousands of rows would otherwise wait for the
    // disk after every row.
    if (!db.transaction())
        return fail(db.lastError().text());

    // Named values: binding by position makes Qt build a name for every value anyway.
    static const QString buyer = QStringLiteral(":buyer");
    static const QString sale = QStringLiteral(":sale");
    static const QString price = QStringLiteral(":price");
    static const QString checked = QStringLiteral(":checked");
    static const QString started = QStringLiteral(":started");
    static const QString ends = QStringLiteral(":ends");
    static const QString item = QStringLiteral(":item");
    QSqlQuery running(db);
    QSqlQuery ended(db);
    const bool prepared =
        running.prepare(QStringLiteral(
            "UPDATE Items SET LastPrice = :price, LastChecked = :checked, "
            "DateAuctionStarted = :started, DateAuctionEnds = :ends WHERE EbayID = :item")) &&
        ended.prepare(QStringLiteral(
            "UPDATE Items SET BuyerEmail = :buyer, SalePrice = :sale, LastPrice = :price, "
            "LastChecked = :checked, DateAuctionStarted = :started, DateAuctionEnds = :ends "
            "WHERE EbayID = :item"));
    if (!prepared) {
        const QString error = (running.lastError().isValid() ? running : ended).lastError().text();
        db.rollback();
        return fail(error);
    }
    const QDateTime localNow = now.toLocalTime();
    const QDate today = localNow.date();
    const QTime timeNow = localNow.time();
    running.bindValue(checked, DateText::toStorage(localNow));
    ended.bindValue(checked, DateText::toStorage(localNow));

    for (const ReportRow& row : rows) {
        if (row.ItemNumber.trimmed().isEmpty())
            break;
        // Between apostrophes in the statement, an apostrophe in the number would have matched
        // other items (or none, with an error): such a row is not applied.
        if (row.ItemNumber.contains(u'\'') || !row.Started.isValid() || !row.Ends.isValid())
            continue;
        const bool over = isBefore(row.Ends, today, timeNow);
        QSqlQuery& update = over ? ended : running;
        if (over) {
            update.bindValue(buyer, storedBuyerEmail(row.HighBidder));
            update.bindValue(sale, row.Price.units());
        }
        update.bindValue(price, row.Price.units());
        update.bindValue(started, storageText(row.Started));
        update.bindValue(ends, storageText(row.Ends));
        update.bindValue(item, row.ItemNumber);
        if (!update.exec()) {
            // The report stops at the failing row; the rows before it keep their new values.
            result.ok = false;
            result.error = update.lastError().text();
            break;
        }
        ++result.statements;
    }
    if (!db.commit()) {
        const QString error = db.lastError().text();
        db.rollback();
        result.statements = 0;
        return fail(result.error.isEmpty() ? error : result.error);
    }
    return result;
}
