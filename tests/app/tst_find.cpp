// Find and Find Again driven through the real dialog.
#include "ItemWindowFixture.h"

#include "app/frmFind.h"
#include "app/texts.h"

#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <functional>

class TestFind : public QObject
{
    Q_OBJECT
private slots:
    void positionSearch_data();
    void positionSearch();
    void descriptionSearch_data();
    void descriptionSearch();
    void shortDescriptionList();
    void findSwitchesToAllView();
    void findAgainRepeats_data();
    void findAgainRepeats();
    void strayQuoteIsReportedNotFatal();
    void missingInputKeepsDialogOpen();
    void cancelKeepsRequest();
    void thousandsOfItems();

private:
    // Runs Find with the dialog driven by `drive` while it is shown modally.
    static void find(ItemWindow& w, const std::function<void(frmFind&)>& drive)
    {
        QTimer::singleShot(0, w.window.get(), [&w, drive] { drive(w->findDialog()); });
        w->mnuFind_Click();
    }
    static void textSearch(ItemWindow& w, const QString& box, const QString& text, bool fromFirst)
    {
        find(w, [=](frmFind& d) {
            for (QLineEdit* e : d.findChildren<QLineEdit*>())
                e->clear();
            QLineEdit* target = d.findChild<QLineEdit*>(box);
            bool ascii = true;
            for (const QChar c : text)
                ascii = ascii && c.unicode() < 128;
            if (ascii)
                QTest::keyClicks(target, text);
            else
                target->insert(text); // the test keyboard has no keys beyond ASCII
            d.findChild<QRadioButton*>(fromFirst ? QStringLiteral("optFromBeg")
                                                 : QStringLiteral("optCurrent"))
                ->setChecked(true);
            QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("cmdTextFind")),
                              Qt::LeftButton);
        });
    }
    static QList<QVariantMap> catalogue()
    {
        const auto item = [](const char* title, const char* text, const char* mail,
                             const char* name, const char* ebay) {
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
};

void TestFind::positionSearch_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("lands");
    QTest::newRow("inside") << "7" << "7";
    QTest::newRow("beyond the total") << "999" << "12";
    QTest::newRow("letters refused") << "x5" << "5";
}

void TestFind::positionSearch()
{
    TestEnvironment env;
    env.addNumberedItems(12);
    ItemWindow w(env);
    QFETCH(QString, typed);
    find(w, [&](frmFind& d) {
        QTest::keyClicks(d.itemNumberBox(), typed);
        QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("cmdItemFind")), Qt::LeftButton);
    });
    QFETCH(QString, lands);
    QCOMPARE(w.current(), lands);
    QCOMPARE(w.field(3)->text(), QLatin1String("Item ") + lands);
    QCOMPARE(env.context().state.findCriteria, Texts::kItemSearch);
    // a position search is not repeated by Find Again
    w->mnuNext_Click();
    w->mnuFindAgain_Click();
    QCOMPARE(w.current(), QString::number(std::min(lands.toInt() + 1, 12)));
}

void TestFind::descriptionSearch_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("title");
    QTest::newRow("anywhere, any case") << "txtDescription" << "beanie" << "Bean bag";
    QTest::newRow("non-ASCII without case") << "txtDescription" << "äPFEL" << "Äpfel crate";
    QTest::newRow("exact e-mail only") << "txtBuyerEmail" << "cy@aol.com" << "Teddy bear";
    QTest::newRow("e-mail with wildcard") << "txtBuyerEmail" << "*aol.com.au" << "Äpfel crate";
    QTest::newRow("eBay number pattern") << "txtEbayId" << "2*" << "Lamp";
    QTest::newRow("quote inside the double-quoted description") << "txtDescription" << "O'Neil" << "Teddy bear";
}

void TestFind::descriptionSearch()
{
    TestEnvironment env;
    env.addItems(catalogue());
    ItemWindow w(env);
    QFETCH(QString, box);
    QFETCH(QString, text);
    textSearch(w, box, text, true);
    QTEST(w.field(3)->text(), "title");
    QVERIFY(env.prompts().unexpected().isEmpty());
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
        QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("cmdSDescFind")), Qt::LeftButton);
    });
    QCOMPARE(env.context().state.findCriteria, QStringLiteral("ShortDescription LIKE 'Lamp'"));
    QCOMPARE(w.current(), QStringLiteral("5"));
}

void TestFind::findSwitchesToAllView()
{
    TestEnvironment env;
    env.addNumberedItems(9);
    ItemWindow w(env);
    w->mnuOpen_Click();
    textSearch(w, QStringLiteral("txtDescription"), QStringLiteral("Item 6"), true);
    QCOMPARE(w->currentView(), frmItems::View::All);
    QCOMPARE(w.current(), QStringLiteral("6"));
    QCOMPARE(w.total(), QStringLiteral("9"));
}

void TestFind::findAgainRepeats_data()
{
    QTest::addColumn<bool>("fromFirst");
    QTest::addColumn<QString>("visits");
    QTest::newRow("from current: each match in turn") << false << "2 4 4";
    QTest::newRow("from first: the same first match") << true << "2 2 2";
}

void TestFind::findAgainRepeats()
{
    TestEnvironment env;
    env.addItems(catalogue());
    ItemWindow w(env);
    QFETCH(bool, fromFirst);
    textSearch(w, QStringLiteral("txtDescription"), QStringLiteral("bean"), fromFirst);
    QStringList visits{w.current()};
    w->mnuFindAgain_Click();
    visits << w.current();
    w->mnuFindAgain_Click(); // no further match: stays
    visits << w.current();
    QTEST(visits.join(u' '), "visits");
}

void TestFind::strayQuoteIsReportedNotFatal()
{
    TestEnvironment env;
    env.addItems(catalogue());
    ItemWindow w(env);
    w->mnuNext_Click();
    textSearch(w, QStringLiteral("txtBuyerName"), QStringLiteral("Cy O'Neil"), true);
    QCOMPARE(w.current(), QStringLiteral("2"));
    QCOMPARE(w.field(3)->text(), QStringLiteral("Bean bag"));
    QCOMPARE(env.prompts().shown().size(), 1);
    QCOMPARE(env.prompts().shown().first().title, Texts::kFindFailedTitle);
    QVERIFY(env.prompts().shown().first().text.startsWith(QLatin1String("The search could not be run")));
    QCOMPARE(env.itemCount(), 5);
}

void TestFind::missingInputKeepsDialogOpen()
{
    TestEnvironment env;
    env.addItems(catalogue());
    ItemWindow w(env);
    find(w, [&](frmFind& d) {
        QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("cmdItemFind")), Qt::LeftButton);
        QVERIFY(d.isVisible());
        d.findChild<QListWidget*>(QStringLiteral("Text1"))->setCurrentRow(-1);
        QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("cmdSDescFind")), Qt::LeftButton);
        QVERIFY(d.isVisible());
        QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    const auto& shown = env.prompts().shown();
    QCOMPARE(shown.size(), 2);
    QCOMPARE(shown.at(0).text, Texts::kMissingItemNumber);
    QCOMPARE(shown.at(0).title, Texts::kMissingItemNumberTitle);
    QCOMPARE(shown.at(0).icon, PromptIcon::Information);
    QCOMPARE(shown.at(1).text, Texts::kMissingShortDesc);
    QCOMPARE(shown.at(1).title, Texts::kMissingShortDescTitle);
}

void TestFind::cancelKeepsRequest()
{
    TestEnvironment env;
    env.addItems(catalogue());
    ItemWindow w(env);
    textSearch(w, QStringLiteral("txtEbayId"), QStringLiteral("1004"), true);
    const QString before = env.context().state.findCriteria;
    find(w, [](frmFind& d) {
        QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    QCOMPARE(env.context().state.findCriteria, before);
    QCOMPARE(w.current(), QStringLiteral("4"));
}

void TestFind::thousandsOfItems()
{
    TestEnvironment env;
    env.addNumberedItems(3000);
    ItemWindow w(env);
    textSearch(w, QStringLiteral("txtDescription"), QStringLiteral("Item 2999"), true);
    QCOMPARE(w.current(), QStringLiteral("2999"));
    find(w, [](frmFind& d) {
        d.itemNumberBox()->setText(QStringLiteral("1500"));
        QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("cmdItemFind")), Qt::LeftButton);
    });
    QCOMPARE(w.field(3)->text(), QStringLiteral("Item 1500"));
    QCOMPARE(env.itemCount(), 3000);
}

QTEST_MAIN(TestFind)
#include "tst_find.moc"
