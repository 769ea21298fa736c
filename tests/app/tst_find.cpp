// Find and Find Again driven through the real dialog.
#include "ItemWindowFixture.h"

#include "app/frmFind.h"
#include "app/texts.h"

#include <QListWidget>
#include <QRadioButton>
#include <QTimer>
#include <functional>

namespace {

// Runs Find with the dialog driven by `drive` while it is shown modally.
void find(ItemWindow& w, const std::function<void(frmFind&)>& drive)
{
    QTimer::singleShot(0, w.window.get(), [&w, drive] { drive(w->findDialog()); });
    w->mnuFind_Click();
}

void click(frmFind& d, const char* button)
{
    QTest::mouseClick(d.findChild<QPushButton*>(QString::fromLatin1(button)), Qt::LeftButton);
}

void textSearch(ItemWindow& w, const QString& box, const QString& text, bool fromFirst)
{
    find(w, [=](frmFind& d) {
        for (QLineEdit* e : d.findChildren<QLineEdit*>())
            e->clear();
        // the test keyboard has no keys beyond ASCII
        QLineEdit* target = d.findChild<QLineEdit*>(box);
        if (text.toLatin1() == text.toUtf8())
            QTest::keyClicks(target, text);
        else
            target->insert(text);
        d.findChild<QRadioButton*>(fromFirst ? QStringLiteral("optFromBeg")
                                             : QStringLiteral("optCurrent"))
            ->setChecked(true);
        click(d, "cmdTextFind");
    });
}

QList<QVariantMap> catalogue()
{
    const auto item = [](const char* title, const char* text, const char* mail, const char* name,
                         const char* ebay) {
        return QVariantMap{{QStringLiteral("ShortDescription"), QString::fromUtf8(title)},
                           {QStringLiteral("Description"), QString::fromUtf8(text)},
                           {QStringLiteral("BuyerEmail"), QString::fromUtf8(mail)},
                           {QStringLiteral("BuyerName"), QString::fromUtf8(name)},
                           {QStringLiteral("EbayID"), QString::fromUtf8(ebay)}};
    };
    return {item("Teddy bear", "soft and brown", "ann@aol.com", "Ann Lee", "1001"),
            item("Bean bag", "a rare BEANIE inside", "bo@example.com", "Bo Ray", "1002"),
            item("Äpfel crate", "wooden", "cy@aol.com.au", "Cy O'Neil", "1003"),
            item("beanie baby", "mint", "ann@aol.com", "Ann Lee", "1004"),
            item("Lamp", "brass", "di@example.org", "Di Fox", "2001")};
}

} // namespace

class TestFind : public QObject
{
    Q_OBJECT
private slots:
    void positionSearch_data();
    void positionSearch();
    void textSearch_data();
    void textSearch();
    void shortDescriptionList();
    void findAgainAndCancel_data();
    void findAgainAndCancel();
    void missingInputKeepsDialogOpen();
    void thousandsOfItemsFromTheActiveView();
};

void TestFind::positionSearch_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("lands");
    QTest::newRow("inside") << "7" << 7;
    QTest::newRow("beyond the total") << "999" << 12;
    QTest::newRow("letters refused") << "x5" << 5;
}

void TestFind::positionSearch()
{
    TestEnvironment env;
    env.addNumberedItems(12);
    ItemWindow w(env);
    QFETCH(QString, typed);
    find(w, [&](frmFind& d) {
        QTest::keyClicks(d.itemNumberBox(), typed);
        click(d, "cmdItemFind");
    });
    QFETCH(int, lands);
    QCOMPARE(w.current(), QString::number(lands));
    QCOMPARE(w.field(3)->text(), QStringLiteral("Item %1").arg(lands));
    QCOMPARE(env.context().state.findCriteria, Texts::kItemSearch);
    // a position search is not repeated by Find Again
    w->mnuNext_Click();
    w->mnuFindAgain_Click();
    QCOMPARE(w.current(), QString::number(std::min(lands + 1, 12)));
}

void TestFind::textSearch_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("title"); // the item shown afterwards; the search starts on item 2
    QTest::addColumn<bool>("reported");
    QTest::newRow("anywhere, any case") << "txtDescription"
                                        << "beanie"
                                        << "Bean bag" << false;
    QTest::newRow("non-ASCII without case") << "txtDescription"
                                            << "äPFEL"
                                            << "Äpfel crate" << false;
    QTest::newRow("exact e-mail only: no match") << "txtBuyerEmail"
                                                 << "cy@aol.com"
                                                 << "Bean bag" << false;
    QTest::newRow("e-mail with wildcard") << "txtBuyerEmail"
                                          << "*aol.com.au"
                                          << "Äpfel crate" << false;
    QTest::newRow("eBay number pattern") << "txtEbayId"
                                         << "2*"
                                         << "Lamp" << false;
    QTest::newRow("quote inside the double-quoted description") << "txtDescription"
                                                                << "O'Neil"
                                                                << "Bean bag" << false;
    QTest::newRow("stray quote is reported") << "txtBuyerName"
                                             << "Cy O'Neil"
                                             << "Bean bag" << true;
}

void TestFind::textSearch()
{
    TestEnvironment env;
    env.addItems(catalogue());
    ItemWindow w(env);
    w->mnuNext_Click();
    QFETCH(QString, box);
    QFETCH(QString, text);
    ::textSearch(w, box, text, true);
    QTEST(w.field(3)->text(), "title");
    QFETCH(bool, reported);
    QCOMPARE(env.prompts().shown().size(), reported ? 1 : 0);
    if (reported) {
        QCOMPARE(env.prompts().shown().first().title, Texts::kFindFailedTitle);
        QVERIFY(env.prompts().shown().first().text.startsWith(
            QLatin1String("The search could not be run")));
    }
    QCOMPARE(env.itemCount(), 5);
}

void TestFind::shortDescriptionList()
{
    TestEnvironment env;
    QList<QVariantMap> items = catalogue();
    items << QVariantMap{{QStringLiteral("ShortDescription"), QStringLiteral("Lamp")}};
    env.addItems(items);
    ItemWindow w(env);
    w->mnuLast_Click();
    find(w, [](frmFind& d) {
        auto* list = d.findChild<QListWidget*>(QStringLiteral("Text1"));
        QCOMPARE(list->count(), 5); // the second "Lamp" is listed once
        list->setCurrentItem(list->findItems(QStringLiteral("Lamp"), Qt::MatchExactly).first());
        click(d, "cmdSDescFind");
    });
    QCOMPARE(env.context().state.findCriteria, QStringLiteral("ShortDescription LIKE 'Lamp'"));
    QCOMPARE(w.current(), QStringLiteral("5"));
}

void TestFind::findAgainAndCancel_data()
{
    QTest::addColumn<bool>("fromFirst");
    QTest::addColumn<QString>("visits");
    QTest::newRow("from current: each match in turn") << false << "2 4 4 4";
    QTest::newRow("from first: the same first match") << true << "2 2 2 2";
}

void TestFind::findAgainAndCancel()
{
    TestEnvironment env;
    env.addItems(catalogue());
    ItemWindow w(env);
    QFETCH(bool, fromFirst);
    ::textSearch(w, QStringLiteral("txtDescription"), QStringLiteral("bean"), fromFirst);
    const QString request = env.context().state.findCriteria;
    QStringList visits{w.current()};
    w->mnuFindAgain_Click();
    visits << w.current();
    w->mnuFindAgain_Click(); // no further match: stays
    visits << w.current();
    // Cancel keeps the request, which the window then carries out once more
    find(w, [](frmFind& d) { click(d, "cmdCancel"); });
    visits << w.current();
    QTEST(visits.join(u' '), "visits");
    QCOMPARE(env.context().state.findCriteria, request);
}

void TestFind::missingInputKeepsDialogOpen()
{
    TestEnvironment env;
    env.addItems(catalogue());
    ItemWindow w(env);
    find(w, [&](frmFind& d) {
        click(d, "cmdItemFind");
        QVERIFY(d.isVisible());
        d.findChild<QListWidget*>(QStringLiteral("Text1"))->setCurrentRow(-1);
        click(d, "cmdSDescFind");
        QVERIFY(d.isVisible());
        click(d, "cmdCancel");
    });
    const auto& shown = env.prompts().shown();
    QCOMPARE(shown.size(), 2);
    QCOMPARE(shown.at(0).text + u'|' + shown.at(0).title,
             Texts::kMissingItemNumber + u'|' + Texts::kMissingItemNumberTitle);
    QCOMPARE(shown.at(0).icon, PromptIcon::Information);
    QCOMPARE(shown.at(1).text + u'|' + shown.at(1).title,
             Texts::kMissingShortDesc + u'|' + Texts::kMissingShortDescTitle);
}

void TestFind::thousandsOfItemsFromTheActiveView()
{
    TestEnvironment env;
    env.addNumberedItems(3000);
    ItemWindow w(env);
    w->mnuOpen_Click();
    ::textSearch(w, QStringLiteral("txtDescription"), QStringLiteral("Item 2999"), true);
    QCOMPARE(w->currentView(), frmItems::View::All); // searches run over all items
    QCOMPARE(w.current() + u'/' + w.total(), QStringLiteral("2999/3000"));
    find(w, [](frmFind& d) {
        d.itemNumberBox()->setText(QStringLiteral("1500"));
        click(d, "cmdItemFind");
    });
    QCOMPARE(w.field(3)->text(), QStringLiteral("Item 1500"));
    QCOMPARE(env.itemCount(), 3000);
}

QTEST_MAIN(TestFind)
#include "tst_find.moc"
