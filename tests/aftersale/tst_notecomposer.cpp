// The buyer notes and the leave-feedback form as text: the checks in their order, the four
// bodies line by line, amounts in currency form, the form's tags filled once each.
#include "aftersale/FeedbackForm.h"
#include "aftersale/NoteComposer.h"
#include "aftersale/texts.h"

#include <QtTest>

using namespace AfterSaleTexts;

namespace {

struct Sale
{
    NoteFields fields;
    NoteItem item;
    NoteSettings settings;
};

// A sale with every field and setting filled, then changed by "name=value" items: a field or
// setting by its member name, the record's figures as "sale", "ship", "ins".
Sale sale(const QStringList& changes)
{
    Sale s;
    NoteFields& f = s.fields;
    // clang-format off
    f = {"$12.50", "pat@example.com", "Pat Buyer", {"12 Elm St", "Apt 4", ""}, "Springfield", "IL", "62701",
         "6/10/1999", "$3.20", "$0.00"};
    s.item = {"123456789", "Blue glass vase", Money::fromUnits(125000), Money::fromUnits(32000), Money()};
    NoteSettings& t = s.settings;
    t.payMsg = "Please send check or money order to:";
    t.sendAddress[0] = "Sam Seller";
    t.sendAddress[1] = "1 Main St";
    t.sendAddress[3] = "Townsville";
    t.closing = "It's been a pleasure doing business with you.";
    t.signature = "Sam";
    t.recdMsg = "We will ship as soon as payment clears.";
    t.defaultCc = "me@example.com";
    t.remoteSmtpHost = "mail.example.com";
    t.remoteSmtpPort = "25";
    const QHash<QString, QString*> texts{
        {"sellPrice", &f.sellPrice}, {"email", &f.buyerEmail}, {"name", &f.buyerName}, {"street1", &f.street[0]},
        {"street2", &f.street[1]}, {"city", &f.city}, {"state", &f.state}, {"zip", &f.zip},
        {"cleared", &f.datePaymentCleared}, {"insurance", &f.insuranceCost}, {"shipping", &f.shippingCost},
        {"taxMsg", &t.taxMsg}, {"payMsg", &t.payMsg}, {"closing", &t.closing}, {"signature", &t.signature},
        {"recdMsg", &t.recdMsg}, {"host", &t.remoteSmtpHost}, {"port", &t.remoteSmtpPort}};
    // clang-format on
    for (const QString& change : changes) {
        const QString name = change.section(u'=', 0, 0);
        const QString value = change.section(u'=', 1);
        const Money amount = Money::parse(value).value_or(Money());
        if (QString* text = texts.value(name))
            *text = value;
        else if (name == QLatin1String("sale"))
            s.item.salePrice = amount;
        else if (name == QLatin1String("ship"))
            s.item.shippingCost = amount;
        else if (name == QLatin1String("ins"))
            s.item.insuranceCost = amount;
        else if (name == QLatin1String("noSendAddress"))
            std::fill(std::begin(t.sendAddress), std::end(t.sendAddress), QString());
        else
            qFatal("unknown change %s", qPrintable(name));
    }
    return s;
}

QString lines(const QStringList& l)
{
    return l.join(QLatin1String("\r\n"));
}

constexpr int kWinner = int(NoteKind::WinningConfirmation);
constexpr int kReserve = int(NoteKind::DidntMakeReserve);
constexpr int kPayment = int(NoteKind::PaymentReceived);
constexpr int kShipped = int(NoteKind::ItemShipped);

} // namespace

class TestNoteComposer : public QObject
{
    Q_OBJECT
private slots:
    void currency_data();
    void currency();
    void checks_data();
    void checks();
    void headers();
    void bodies_data();
    void bodies();
    void feedbackForm_data();
    void feedbackForm();
};

void TestNoteComposer::currency_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isAmount");
    QTest::addColumn<qint64>("units");
    QTest::addColumn<QString>("shown");
    // clang-format off
    QTest::newRow("plain") << "12.5" << true << qint64(125000) << "$12.50";
    QTest::newRow("grouped, cents rounded") << "1234567.891" << true << qint64(12345678910) << "$1,234,567.89";
    QTest::newRow("currency form read back") << " $1,234.50 " << true << qint64(12345000) << "$1,234.50";
    QTest::newRow("half a cent rounds up") << "0.005" << true << qint64(50) << "$0.01";
    QTest::newRow("negative") << "-3" << true << qint64(-30000) << "($3.00)";
    QTest::newRow("bracketed negative") << "($3.00)" << true << qint64(-30000) << "($3.00)";
    QTest::newRow("letters") << "abc" << false << qint64(0) << "abc";
    QTest::newRow("empty") << "" << false << qint64(0) << "";
    QTest::newRow("two points") << "1.2.3" << false << qint64(0) << "1.2.3";
    // clang-format on
}

void TestNoteComposer::currency()
{
    QFETCH(QString, text);
    const std::optional<Money> amount = Currency::parse(text);
    QTEST(amount.has_value(), "isAmount");
    if (amount)
        QTEST(amount->units(), "units");
    QTEST(Currency::reformat(text), "shown");
}

void TestNoteComposer::checks_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QStringList>("changes");
    QTest::addColumn<QString>("message"); // "" when the note may be made
    QTest::addColumn<int>("focus");
    QTest::addColumn<bool>("options");
    // clang-format off
    QTest::newRow("winner: no e-mail comes first") << kWinner << QStringList{"email=  ", "host="} << kEmailRequired << -1 << false;
    QTest::newRow("winner: sell price 0 passes") << kWinner << QStringList{"sellPrice=0"} << "" << -1 << false;
    QTest::newRow("payment: blank port") << kPayment << QStringList{"port=  "} << kNoSmtpPort << -1 << true;
    QTest::newRow("payment: host before port") << kPayment << QStringList{"host= ", "port="} << kNoSmtpHost << -1 << true;
    QTest::newRow("reserve: no e-mail needed") << kReserve << QStringList{"email=", "sellPrice=abc"} << "" << -1 << false;
    QTest::newRow("shipped: cleared date first") << kShipped << QStringList{"cleared=  ", "host="} << kPaymentClearedRequired << 26 << false;
    QTest::newRow("shipped: the 1/1/1900 placeholder passes") << kShipped << QStringList{"cleared=1/1/1900"} << "" << -1 << false;
    // clang-format on
}

void TestNoteComposer::checks()
{
    QFETCH(int, kind);
    QFETCH(QStringList, changes);
    QFETCH(QString, message);
    const Sale s = sale(changes);
    const auto problem = firstNoteProblem(NoteKind(kind), s.fields, s.settings);
    QCOMPARE(problem.value_or(NoteProblem{}).message, message);
    if (problem) {
        QTEST(problem->focusField, "focus");
        QTEST(problem->opensOptions, "options");
    }
}

void TestNoteComposer::headers()
{
    const Sale s = sale({});
    QStringList shown;
    for (int kind : {kWinner, kReserve, kPayment, kShipped}) {
        const ComposedNote n = composeNote(NoteKind(kind), s.fields, s.item, s.settings, {});
        QCOMPARE(noteKindFromName(noteKindName(n.kind)), std::optional<NoteKind>(n.kind));
        shown << noteKindName(n.kind) + u'|' + n.caption + u'|' + n.subject;
        QCOMPARE(n.to + u'|' + n.cc, QStringLiteral("pat@example.com|me@example.com"));
    }
    // clang-format off
    QCOMPARE(shown, (QStringList{
        "WinningConfirmation|High Bidder Notification|eBay Item: 123456789 - Confirmation of winning bid.",
        "DidntMakeReserve|Didn't Make Reserve Notification|eBay Item: 123456789 - Failed to make reserve.",
        "PaymentReceived|Payment Received Notification|eBay Item: 123456789 - Payment Received for eBay Auction Item.",
        "ItemShipped|Item Shipped Notification|eBay Item: 123456789 - Item shipped for eBay Auction."}));
    // clang-format on
}

void TestNoteComposer::bodies_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QStringList>("changes");
    QTest::addColumn<QString>("body");
    // clang-format off
    const QStringList winner{"Congratulations pat@example.com, ", "", "You were the high bidder on my following Ebay Auction. ", "",
                             "   Ebay ID: 123456789", "   Description: Blue glass vase", "   Your bid: $12.50", "   Shipping: $3.20",
                             "   Total: $15.70", ""};
    const QStringList shipped{"The following item: ", "", "   Ebay ID: 123456789", "   Description: Blue glass vase", "",
                              "has been shipped to...", "   pat@example.com"};
    const QStringList reserve{"Dear pat@example.com,", "", "You were high bidder on the following item: ", "",
                              "   Ebay ID: 123456789", "   Description: Blue glass vase", "", "but it failed to reach the reserve price. ", "",
                              "I'm very sorry, but I cannot sell the item below my reserve price.", ""};
    QTest::newRow("winner, no insurance") << kWinner << QStringList{}
        << lines(winner + QStringList{"Please send check or money order to:", "", "Sam Seller", "1 Main St", "Townsville", "",
                                      "It's been a pleasure doing business with you.", "", "Sam", ""});
    QTest::newRow("winner, insured, blank tax message, no address, no signature") << kWinner
        << QStringList{"insurance=2", "ins=2", "taxMsg=  ", "noSendAddress", "signature="}
        << lines(winner + QStringList{"If you would like it insured, please add an additional $2.00 for a total of $17.70.", "",
                                      "Please send check or money order to:", "", "", "It's been a pleasure doing business with you.", ""});
    QTest::newRow("winner, sums from the record, rounded insurance, tax message only") << kWinner
        << QStringList{"sellPrice=1234.5", "shipping=10", "sale=1234.5", "ship=10", "insurance=$1.005", "ins=1.005",
                       "taxMsg=Tax is 6.25%", "payMsg=", "noSendAddress", "closing=", "signature="}
        << lines({"Congratulations pat@example.com, ", "", "You were the high bidder on my following Ebay Auction. ", "",
                  "   Ebay ID: 123456789", "   Description: Blue glass vase", "   Your bid: 1234.5", "   Shipping: $10.00",
                  "   Total: $1,244.50", "", "If you would like it insured, please add an additional $1.01 for a total of $1245.51.", "",
                  "Tax is 6.25%", ""});
    QTest::newRow("reserve") << kReserve << QStringList{} << lines(reserve + QStringList{"", "Sam", ""});
    QTest::newRow("payment, empty message keeps its lines") << kPayment << QStringList{"recdMsg="}
        << lines({"Payment has been received for the following item: ", "", "   Ebay ID: 123456789",
                  "   Description: Blue glass vase", "", "", "", "Sam", ""});
    QTest::newRow("shipped, full address") << kShipped << QStringList{}
        << lines(shipped + QStringList{"   Pat Buyer", "   12 Elm St", "   Apt 4", "   Springfield, IL 62701", "",
                                       "you should receive it shortly.", "Thanks again!", "", "Sam", ""});
    QTest::newRow("shipped, nothing but the e-mail") << kShipped
        << QStringList{"name= ", "street1=", "street2=", "city=", "state=", "zip=", "signature= "}
        << lines(shipped + QStringList{"", "", "you should receive it shortly.", "Thanks again!", ""});
    QTest::newRow("shipped, city and zip without state") << kShipped << QStringList{"state=", "street2=  "}
        << lines(shipped + QStringList{"   Pat Buyer", "   12 Elm St", "   Springfield 62701", "",
                                       "you should receive it shortly.", "Thanks again!", "", "Sam", ""});
    // clang-format on
}

void TestNoteComposer::bodies()
{
    QFETCH(int, kind);
    QFETCH(QStringList, changes);
    const Sale s = sale(changes);
    QTEST(composeNote(NoteKind(kind), s.fields, s.item, s.settings, {}).body, "body");
}

void TestNoteComposer::feedbackForm_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QString>("filled");
    const auto tag = [](const char* type, const char* name, const char* rest) {
        return QStringLiteral("<input type=\"%1\" name=\"%2\" %3>")
            .arg(QLatin1String(type), QLatin1String(name), QLatin1String(rest));
    };
    const QString user = tag("text", "userid", "size=\"40\"");
    const QString pass = tag("password", "pass", "size=\"40\"");
    const QString buyer = tag("text", "otheruserid", "size=\"40\"");
    const QString item = tag("text", "itemno", "size=\"40\"");
    const QString positive = tag("radio", "which", "value=\"positive\"");
    const QString comment = tag("text", "comment", "size=\"80\" maxlength=\"80\"");
    QTest::newRow("each tag once, values escaped but the item number")
        << user + pass + buyer + item + positive + comment + user
        << tag("text", "userid", "size=\"40\" value=sam&#39;s") +
               tag("password", "pass", "size=\"40\" value=a&quot;b&lt;c&gt;") +
               tag("text", "otheruserid", "size=\"40\"  value='pat@example.com'") +
               tag("text", "itemno", "size=\"40\"  value='1'2'") +
               tag("radio", "which", "value=\"positive\" checked") +
               tag("text", "comment", "size=\"80\" maxlength=\"80\" value='A&B'") + user;
    QTest::newRow("tags written otherwise stay")
        << QStringLiteral("<INPUT type=\"text\" name=\"userid\" size=\"40\"><input type='text' "
                          "name='itemno' size='40'>")
        << QStringLiteral("<INPUT type=\"text\" name=\"userid\" size=\"40\"><input type='text' "
                          "name='itemno' size='40'>");
}

void TestNoteComposer::feedbackForm()
{
    QFETCH(QString, page);
    QTEST(fillFeedbackForm(page, {"sam's", "a\"b<c>", "pat@example.com", "1'2", "A&B"}), "filled");
}

QTEST_MAIN(TestNoteComposer)
#include "tst_notecomposer.moc"
