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

QString take(const PageCursor& row, QStringView marker)
{
    return row.takeUpTo(marker).value_or(QString());
}

// The bidder cell: "No Bids", or the address of a mailto link (any link that is not to a web
// page); anything else leaves the bidder blank.
QString readBidder(PageCursor& row)
{
    if (row.startsWith(u"No Bids"))
        return QStringLiteral("No Bids");
    const QString head = row.rest().left(13).toString().toUpper();
    if (head.startsWith(QLatin1String("<A HREF=")) &&
        !head.startsWith(QLatin1String("<A HREF=\"HTTP"))) {
        row.cutAfter(u"mailto:");
        return take(row, u"\">");
    }
    return {};
}

std::optional<ReportRow> readRow(const QString& line, int bias, int daylightDiff)
{
    PageCursor row(line);
    ReportRow r;
    row.cutAfter(u"\">");
    r.ItemNumber = take(row, u"<");
    if (r.ItemNumber.trimmed().isEmpty())
        return r; // the caller stops here

    enterCell(row);
    r.Started = readSiteDate(take(row, u"</td>"));
    row.cutAfter(u"</td>");
    enterCell(row);
    r.Ends = pacificToLocal(readSiteDate(take(row, u"<")), bias, daylightDiff);
    enterCell(row);
    if (row.startsWith(u"<b>"))
        row.drop(3);
    const std::optional<Money> price = readSiteMoney(take(row, u"<"));
    enterCell(row);
    r.Title = take(row, u"<");
    enterCell(row);
    r.HighBidder = readBidder(row);
    // A further plain cell after the bidder's holds the bidder as the site wants it shown.
    if (row.contains(u"<td>")) {
        row.cutAfter(u"<td>");
        row.cutAfter(u">");
        r.HighBidder = row.takeUpTo(u"<").value_or(r.HighBidder);
    }
    // A row with no readable dates or price is left out rather than storing made-up values.
    if (!r.Started.isValid() || !r.Ends.isValid() || !price)
        return std::nullopt;
    r.Price = *price;
    return r;
}

// Wall-clock comparison: both are local clock readings, whatever zone object they carry.
bool isBefore(const QDateTime& a, const QDateTime& b)
{
    return QDateTime(a.date(), a.time(), Qt::UTC) < QDateTime(b.date(), b.time(), Qt::UTC);
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
        const std::optional<ReportRow> row = readRow(line.toString(), bias, daylightDiff);
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
    if (!db.transaction())
        return fail(db.lastError().text());

    const QDateTime localNow = now.toLocalTime();
    const QString checked = DateText::toStorage(localNow);
    QSqlQuery running(db);
    QSqlQuery ended(db);
    const bool prepared =
        running.prepare(QStringLiteral(
            "UPDATE Items SET LastPrice = ?, LastChecked = ?, DateAuctionStarted = ?, "
            "DateAuctionEnds = ? WHERE EbayID = ?")) &&
        ended.prepare(QStringLiteral(
            "UPDATE Items SET BuyerEmail = ?, SalePrice = ?, LastPrice = ?, LastChecked = ?, "
            "DateAuctionStarted = ?, DateAuctionEnds = ? WHERE EbayID = ?"));
    if (!prepared) {
        const QString error = (running.lastError().isValid() ? running : ended).lastError().text();
        db.rollback();
        return fail(error);
    }

    for (const ReportRow& row : rows) {
        if (row.ItemNumber.trimmed().isEmpty())
            break;
        // Between apostrophes in the statement, an apostrophe in the number would have matched
        // other items (or none, with an error): such a row is not applied.
        if (row.ItemNumber.contains(u'\'') || !row.Started.isValid() || !row.Ends.isValid())
            continue;
        const bool over = isBefore(row.Ends, localNow);
        QSqlQuery& update = over ? ended : running;
        int i = 0;
        if (over) {
            update.bindValue(i++, storedBuyerEmail(row.HighBidder));
            update.bindValue(i++, row.Price.units());
        }
        update.bindValue(i++, row.Price.units());
        update.bindValue(i++, checked);
        update.bindValue(i++, DateText::toStorage(row.Started));
        update.bindValue(i++, DateText::toStorage(row.Ends));
        update.bindValue(i++, row.ItemNumber);
        if (!update.exec()) {
            const QString error = update.lastError().text();
            db.rollback();
            return fail(error);
        }
        ++result.statements;
    }
    if (!db.commit()) {
        const QString error = db.lastError().text();
        db.rollback();
        return fail(error);
    }
    return result;
}
