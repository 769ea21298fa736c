// Find and Find Again driven through the real dialog.
#include "ItemWindowFixture.h"

#include "app/frmFind.h"

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
        d.findChild<QRadioButton*>(fromFirst ? u"optFromBeg"_s : u"optCurrent"_s)->setChecked(true);
        click(d, "cmdTextFind");
    });
}

QList<QVariantMap> catalogue()
{
    QList<QVariantMap> items;
    for (const QStringList& v :
         {QStringList{"Teddy bear", "soft and brown", "ann@aol.com", "Ann Lee", "1001"},
          QStringList{"Bean bag", "a rare BEANIE inside", "bo@example.com", "Bo Ray", "1002"},
          QStringList{u"Äpfel crate"_s, "wooden", "cy@aol.com.au", "Cy O'Neil", "1003"},
          QStringList{"beanie baby", "mint", "ann@aol.com", "Ann Lee", "1004"},
          QStringList{"Lamp", "brass", "di@example.org", "Di Fox", "2001"}})
        items << QVariantMap{{u"ShortDescription"_s, v[0]},
                             {u"Description"_s, v[1]},
                             {u"BuyerEmail"_s, v[2]},
                             {u"BuyerName"_s, v[3]},
                             {u"EbayID"_s, v[4]}};
    return items;
}

} // namespace

class TestFind : public QObject
{
    Q_OBJECT
private slots:
    void positionSearch_data()
    {
        addColumns<QString, int>("typed", "lands");
        QTest::newRow("inside") << "7" << 7;
        QTest::newRow("beyond the total") << "999" << 12;
        QTest::newRow("letters refused") << "x5" << 5;
    }
    void positionSearch()
    {
        QFETCH(QString, typed);
        QFETCH(int, lands);
        TestEnvironment env;
        env.addNumberedItems(12);
        ItemWindow w(env);
        find(w, [&](frmFind& d) {
            QTest::keyClicks(d.itemNumberBox(), typed);
            click(d, "cmdItemFind");
        });
        QCOMPARE(w.current(), QString::number(lands));
        QCOMPARE(w.field(3)->text(), u"Item %1"_s.arg(lands));
        QCOMPARE(env.context().state.findCriteria, Texts::kItemSearch);
        // a position search is not repeated by Find Again
        w->mnuNext_Click();
        w->mnuFindAgain_Click();
        QCOMPARE(w.current(), QString::number(std::min(lands + 1, 12)));
    }

    void textSearch_data()
    {
        // title: the item shown afterwards; the search starts on item 2
        addColumns<QString, QString, QString, bool>("box", "text", "title", "reported");
        // clang-format off
        QTest::newRow("anywhere, any case") << "txtDescription" << "beanie" << "Bean bag" << false;
        QTest::newRow("non-ASCII without case") << "txtDescription" << u"äPFEL"_s << u"Äpfel crate"_s << false;
        QTest::newRow("exact e-mail only: no match") << "txtBuyerEmail" << "cy@aol.com" << "Bean bag" << false;
        QTest::newRow("e-mail with wildcard") << "txtBuyerEmail" << "*aol.com.au" << u"Äpfel crate"_s << false;
        QTest::newRow("eBay number pattern") << "txtEbayId" << "2*" << "Lamp" << false;
        QTest::newRow("quote inside the double-quoted description") << "txtDescription" << "O'Neil" << "Bean bag" << false;
        QTest::newRow("stray quote is reported") << "txtBuyerName" << "Cy O'Neil" << "Bean bag" << true;
        // clang-format on
    }
    void textSearch()
    {
        QFETCH(QString, box);
        QFETCH(QString, text);
        QFETCH(bool, reported);
        TestEnvironment env;
        env.addItems(catalogue());
        ItemWindow w(env);
        w->mnuNext_Click();
        ::textSearch(w, box, text, true);
        QTEST(w.field(3)->text(), "title");
        QCOMPARE(env.prompts().shown().size(), reported ? 1 : 0);
        if (reported) {
            QCOMPARE(env.prompts().shown().first().title, Texts::kFindFailedTitle);
            QVERIFY(
                env.prompts().shown().first().text.startsWith("The search could not be run"_L1));
        }
        QCOMPARE(env.itemCount(), 5);
    }

    void shortDescriptionList()
    {
        TestEnvironment env;
        env.addItems(catalogue() << QVariantMap{{u"ShortDescription"_s, u"Lamp"_s}});
        ItemWindow w(env);
        w->mnuLast_Click();
        find(w, [&env](frmFind& d) {
            // the list is read through the dialog's own data control on the items table
            auto* data = d.findChild<RecordSet*>(u"Data1"_s);
            QVERIFY(data);
            QCOMPARE(data->recordSource(), u"Items"_s);
            QCOMPARE(data->database().databaseName(), env.context().itemDatabase.databaseName());
            auto* list = d.findChild<QListWidget*>(u"Text1"_s);
            QCOMPARE(list->count(), 5); // the second "Lamp" is listed once
            list->setCurrentItem(list->findItems(u"Lamp"_s, Qt::MatchExactly).first());
            click(d, "cmdSDescFind");
        });
        QCOMPARE(env.context().state.findCriteria, u"ShortDescription LIKE 'Lamp'"_s);
        QCOMPARE(w.current(), u"5"_s);
    }

    void findAgainAndCancel_data()
    {
        addColumns<bool, QString>("fromFirst", "visits");
        QTest::newRow("from current: each match in turn") << false << "2 4 4 4";
        QTest::newRow("from first: the same first match") << true << "2 2 2 2";
    }
    void findAgainAndCancel()
    {
        QFETCH(bool, fromFirst);
        TestEnvironment env;
        env.addItems(catalogue());
        ItemWindow w(env);
        ::textSearch(w, u"txtDescription"_s, u"bean"_s, fromFirst);
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

    void missingInputKeepsDialogOpen()
    {
        TestEnvironment env;
        env.addItems(catalogue());
        ItemWindow w(env);
        find(w, [&](frmFind& d) {
            click(d, "cmdItemFind");
            QVERIFY(d.isVisible());
            d.findChild<QListWidget*>(u"Text1"_s)->setCurrentRow(-1);
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

    void thousandsOfItemsFromTheActiveView()
    {
        TestEnvironment env;
        env.addNumberedItems(3000);
        ItemWindow w(env);
        w->mnuOpen_Click();
        ::textSearch(w, u"txtDescription"_s, u"Item 2999"_s, true);
        QCOMPARE(w->currentView(), frmItems::View::All); // searches run over all items
        QCOMPARE(w.counters(), u"2999/3000"_s);
        find(w, [](frmFind& d) {
            d.itemNumberBox()->setText(u"1500"_s);
            click(d, "cmdItemFind");
        });
        QCOMPARE(w.field(3)->text(), u"Item 1500"_s);
        QCOMPARE(env.itemCount(), 3000);
    }
};

QTEST_MAIN(TestFind)
#include "tst_find.moc"
