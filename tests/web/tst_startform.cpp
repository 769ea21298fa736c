#include "platform/TextRoutines.h"
#include "web/StartForm.h"

#include <QtTest>

using namespace Qt::StringLiterals;

// The form under tests/data/web/startform is filled and compared character for character with the
// expected pages there; variations are checked as the pieces in which they differ from the page
// filled for a fresh settings store.

namespace {

QString readData(const QString& name)
{
    QFile file(qEnvironmentVariable("TB_SOURCE_DIR") + u"/tests/data/web/startform/"_s + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// A fresh settings store and an item with a short description, minimum bid and listing, then
// the "name=value" assignments (names as the members, payment1..9, shipping1..4, picture1..3 for
// the paths, address1..3 for the web addresses, shipInternationally=true).
StartFormValues values(const QStringList& assignments)
{
    StartFormValues v;
    QHash<QString, QString*> fields = {
        {u"userEmail"_s, &v.userEmail},   {u"ebayPassword"_s, &v.ebayPassword},
        {u"location"_s, &v.location},     {u"region"_s, &v.region},
        {u"regionNum"_s, &v.regionNum},   {u"country"_s, &v.country},
        {u"countryNum"_s, &v.countryNum}, {u"shortDescription"_s, &v.shortDescription},
        {u"reserve"_s, &v.reserve},       {u"minBid"_s, &v.minBid},
        {u"length"_s, &v.length}};
    for (int k = 1; k <= 9; ++k)
        fields.insert(u"payment%1"_s.arg(k), &v.paymentOpt[k - 1]);
    for (int k = 1; k <= 4; ++k)
        fields.insert(u"shipping%1"_s.arg(k), &v.shippingOpt[k - 1]);
    for (int k = 1; k <= 3; ++k) {
        fields.insert(u"picture%1"_s.arg(k), &v.picturePaths[k - 1]);
        fields.insert(u"address%1"_s.arg(k), &v.pictureAddresses[k - 1]);
    }
    v.listingHtml = HtmlEscape(u"</BLOCKQUOTE>\r\n<br>\r\n<table><tr><td>Lamp</td></tr></table>"_s);
    const QStringList fresh = // the other option keys read as 0 when they are empty
        u"region=Do not list regionally|regionNum=Do not list regionally|country=United States|"
        u"countryNum=1|payment9=1|shipping4=1|shortDescription=Brass lamp|minBid=5|length=7"_s
            .split(u'|');
    for (const QString& assignment : fresh + assignments) {
        const QString name = assignment.section(u'=', 0, 0);
        if (name == u"shipInternationally")
            v.shipInternationally = true;
        else if (QString* field = fields.value(name))
            *field = assignment.section(u'=', 1);
        else
            qFatal("unknown value %s", qPrintable(name));
    }
    return v;
}

const QString kLogo = uR"(value="HTTP://pics.ebay.com/aw/pics/logo_lower_tb.gif">)"_s;

} // namespace

class TestStartForm : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_form = readData(u"form.htm"_s);
        QVERIFY(!m_form.isEmpty());
    }

    void filledPages_data()
    {
        QTest::addColumn<QStringList>("assignments");
        QTest::addColumn<QString>("expected");
        QTest::newRow("fresh store") << QStringList() << u"fresh.htm"_s;
        // Every field; keys that read as 1 in several ways and keys that do not; values that
        // would need escaping go in as they are; picture 2 is the first with a web address.
        // clang-format off
        QTest::newRow("rich item") << QString(
            uR"(userEmail=seller@example.com|ebayPassword=s3cret&<x>|location=Springfield, "IL"|region=New York|regionNum=44|country=Canada|countryNum=2|)"
            u"payment1=1|payment2= 1|payment3=1.0|payment5=1|payment6=|payment7=yes|payment8=2|payment9=0|shipping2=1|shipping4=0|shipInternationally=true|"
            uR"(shortDescription=  Brass lamp "Aurora"  |picture2= C:\My Pictures\lamp 1.jpg|address2=http://example.com/pics/lamp%201.jpg|)"
            u"picture3=/home/wren/pics/lamp#2.gif|address3=http://example.com/pics/lamp%232.gif|reserve=25.00|minBid=9.99|length=10"_s).split(u'|') << u"rich.htm"_s;
        // clang-format on
    }
    void filledPages()
    {
        QFETCH(QStringList, assignments);
        QFETCH(QString, expected);
        QCOMPARE(FillStartForm(m_form, values(assignments)), readData(expected));
    }

    void variations_data()
    {
        // "|" between the assignments.
        QTest::addColumn<QStringList>("assignments");
        // Pairs: a piece of the fresh filled page and what it becomes, in page order.
        QTest::addColumn<QStringList>("pieces");
        const auto row = [](const QString& name, const QString& assignments,
                            const QStringList& pieces = {}) {
            QTest::newRow(qPrintable(name)) << assignments.split(u'|') << pieces;
        };
        // A check box's field named, and the same field checked, for each field.
        const auto checked = [](const QString& fields) {
            QStringList pieces;
            for (const QString& field : fields.split(u'|'))
                pieces << u"name=\"%1\""_s.arg(field) << u"name=\"%1\" checked"_s.arg(field);
            return pieces;
        };

        for (const QString& reserve : {u"0"_s, u""_s, u"about 20"_s, u"-3"_s})
            row(u"reserve '%1'"_s.arg(reserve), u"reserve="_s + reserve);
        const QString reserve = uR"(name="reserve" size=13 maxlength=11)"_s;
        row("reserve with blanks inside", u"reserve= 1 5"_s,
            {reserve + u'>', reserve + uR"( value=" 1 5">)"_s});
        const QStringList seven = {u"<option value=7 selected>7"_s, uR"(<option value="7">7)"_s};
        for (const QString length : {"3", "5"}) // 10 is in the rich page
            row(u"length "_s + length, u"length="_s + length,
                QStringList{u"<option value=%1>%1"_s.arg(length),
                            uR"(<option value="%1" selected>%1)"_s.arg(length)} +
                    seven);
        for (const QString& length : {u"10 "_s, u"14"_s})
            row(u"length '%1'"_s.arg(length), u"length="_s + length);

        const QStringList zero = {uR"(<OPTION SELECTED VALUE="0">)"_s, uR"(<OPTION VALUE="0">)"_s};
        // clang-format off
        row("not regionally, any case, blanks", u"region= do NOT list Regionally  |regionNum=0"_s);
        row("region found after trimming", u"region=  Boston |regionNum=12"_s,
            zero + QStringList{uR"(<OPTION VALUE="12">)"_s, uR"(<OPTION SELECTED VALUE="12">)"_s});
        row("region number not on the form", u"region=Boston|regionNum=13"_s, zero);

        row("payments 1 to 8 read as 1", u"payment1=1|payment2= 1|payment3=1.0|payment4=1e0|payment5=01|payment6=+1|payment7=1 |payment8=1abc"_s,
            checked(u"moneyOrderAccepted|paymentCOD|personalChecksAccepted|onlineEscrow|visaMasterCardAccepted|amExAccepted|discoverAccepted|otherAccepted"_s));
        row("payment keys not 1, payment 9 not 0", u"payment1=2|payment2=|payment3=yes|payment4=0.5|payment5=11|payment6=-1|payment9=2"_s);
        row("shipping 1 to 3", u"shipping1=1|shipping2=1|shipping3= 1"_s,
            checked(u"sellerPaysShipping|buyerPaysShippingActual|buyerPaysShippingFixed"_s));
        // clang-format on

        const QString empty = uR"(value="http://">)"_s;
        const auto pictures = [&](const char* address) {
            return QStringList{empty, kLogo, empty, uR"(value="%1">)"_s.arg(address)};
        };
        row("picture in slot 3 only", u"picture3=C:\\c.jpg|address3=http://h/c.jpg"_s,
            pictures("http://h/c.jpg"));
        row("pictures 1 to 3: 1 wins",
            u"picture1=a.jpg|address1=http://h/a.jpg|picture2=b.jpg|address2=http://h/b.jpg|"
            u"picture3=c.jpg|address3=http://h/c.jpg"_s,
            pictures("http://h/a.jpg"));
        row("picture without a web address", u"picture1=a.jpg"_s, {empty, kLogo});
        row("blank picture paths", u"picture1=   |address1=http://h/a.jpg"_s);
    }
    void variations()
    {
        QFETCH(QStringList, assignments);
        QFETCH(QStringList, pieces);
        QString expected = readData(u"fresh.htm"_s);
        qsizetype from = 0;
        for (qsizetype i = 0; i + 1 < pieces.size(); i += 2) {
            const qsizetype at = expected.indexOf(pieces.at(i), from);
            QVERIFY2(at >= 0, qPrintable(pieces.at(i)));
            expected.replace(at, pieces.at(i).size(), pieces.at(i + 1));
            from = at + pieces.at(i + 1).size();
        }
        QCOMPARE(FillStartForm(m_form, values(assignments)), expected);
    }

    void leadingNumbers()
    {
        const std::pair<const char*, double> rows[] = {
            {"", 0},      {"abc", 0},     {"$5", 0},     {".", 0},   {" 1 ", 1},
            {"\t1\n", 1}, {"1 0", 10},    {"12abc", 12}, {"1,5", 1}, {"- 3", -3},
            {"+.5", 0.5}, {"1.2.3", 1.2}, {"2D1", 20},   {"1e+", 1}, {"1e999", 0}};
        for (const auto& [text, number] : rows)
            QVERIFY2(leadingNumber(QString::fromLatin1(text)) == number, text);
    }

private:
    QString m_form;
};

QTEST_GUILESS_MAIN(TestStartForm)
#include "tst_startform.moc"
