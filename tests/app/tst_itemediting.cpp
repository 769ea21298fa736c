// Editing an item as a user does: keys typed into the real boxes, focus moved, commands run;
// what ends up in tb2.mdb is read back.
#include "ItemWindowFixture.h"

#include "app/texts.h"
#include "platform/DateText.h"

#include <QComboBox>
#include <QImage>
#include <QPushButton>

class TestItemEditing : public QObject
{
    Q_OBJECT
private slots:
    void init() { QLocale::setDefault(QLocale(QStringLiteral("en_US"))); }
    void ebayIdTakesDigitsOnly_data();
    void ebayIdTakesDigitsOnly();
    void moneyKeyFilter_data();
    void moneyKeyFilter();
    void emptiedMoneyBoxShowsZero();
    void blanksBecomeDefaultsWhenLeft();
    void picturePathMustBeAFile_data();
    void picturePathMustBeAFile();
    void veryLargePictureWarnsAndKeepsPath();
    void pictureFindButtonsUseTheDialog();
    void startDatePlusLengthGivesEnd();
    void choosingALengthMovesTheEnd();
    void emptiedLengthBecomesSeven();
    void addFromEmptyActiveViewOpensAll();
    void deleteRules();
    void deleteCancelled();
    void duplicateAuction();
    void typedValuesSurviveRestart();
    void uploadNeedsAPicture();

private:
    static void leave(ItemWindow& w, QWidget* from, QWidget* to)
    {
        w->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(w.window.get()));
        from->setFocus(Qt::TabFocusReason);
        to->setFocus(Qt::TabFocusReason);
    }
};

void TestItemEditing::ebayIdTakesDigitsOnly_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("kept");
    QTest::addColumn<bool>("warned");
    QTest::newRow("digits") << "123456" << "123456" << false;
    QTest::newRow("a letter empties the whole box") << "1234x" << "" << true;
    QTest::newRow("typing goes on in the emptied box") << "12.5" << "5" << true;
}

void TestItemEditing::ebayIdTakesDigitsOnly()
{
    TestEnvironment env;
    ItemWindow w(env);
    QFETCH(QString, typed);
    QTest::keyClicks(w.field(1), typed);
    QTEST(w.field(1)->text(), "kept");
    QFETCH(bool, warned);
    QCOMPARE(env.prompts().shown().size(), warned ? 1 : 0);
    if (warned) {
        const auto& m = env.prompts().shown().first();
        QCOMPARE(m.text, Texts::kEbayIdDigits);
        QCOMPARE(m.title, Texts::kEbayIdTitle);
        QCOMPARE(m.icon, PromptIcon::Exclamation);
    }
}

void TestItemEditing::moneyKeyFilter_data()
{
    QTest::addColumn<int>("box");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<int>("beeps");
    QTest::newRow("min bid 12.5") << 9 << "12.5" << "12.5" << 0;
    QTest::newRow("dollar sign refused") << 9 << "$7" << "7" << 1;
    QTest::newRow("reserve letters refused") << 8 << "1a2b" << "12" << 2;
    QTest::newRow("cost comma refused") << 10 << "1,000" << "1000" << 1;
}

void TestItemEditing::moneyKeyFilter()
{
    TestEnvironment env;
    env.addItems({{}});
    ItemWindow w(env);
    QFETCH(int, box);
    QFETCH(QString, typed);
    w.field(box)->selectAll(); // opening the view gave the blank boxes their defaults
    QTest::keyClicks(w.field(box), typed);
    QTEST(w.field(box)->text(), "shown");
    QTEST(w->beepCount(), "beeps");
}

void TestItemEditing::emptiedMoneyBoxShowsZero()
{
    TestEnvironment env;
    env.addItems({{{QStringLiteral("Cost"), 150000}}});
    ItemWindow w(env);
    QCOMPARE(w.field(10)->text(), QStringLiteral("15"));
    w.field(10)->selectAll();
    QTest::keyClick(w.field(10), Qt::Key_Backspace);
    QCOMPARE(w.field(10)->text(), QStringLiteral("0"));
}

void TestItemEditing::blanksBecomeDefaultsWhenLeft()
{
    TestEnvironment env;
    const QList<qint64> ids = env.addNumberedItems(2);
    ItemWindow w(env);
    // Opening the view moves to the last item and back, leaving the first with its defaults.
    QCOMPARE(env.storedValue(ids.at(0), QStringLiteral("Reserve")).toLongLong(), 0);
    QCOMPARE(env.storedValue(ids.at(0), QStringLiteral("MinBid")).toLongLong(), 10000);
    QCOMPARE(env.storedValue(ids.at(0), QStringLiteral("Cost")).toLongLong(), 0);
    QCOMPARE(w.field(9)->text(), QStringLiteral("1"));
    // a new item keeps its blanks until it is left by a move
    w->mnuAdd_Click();
    const qint64 added = ids.at(1) + 1;
    QVERIFY(env.storedValue(added, QStringLiteral("MinBid")).isNull());
    w->mnuFirst_Click();
    QCOMPARE(env.storedValue(added, QStringLiteral("MinBid")).toLongLong(), 10000);
}

void TestItemEditing::picturePathMustBeAFile_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("rejected");
    QTest::newRow("web address") << "http://example.com/vase.jpg" << true;
    QTest::newRow("missing file") << "/no/such/picture.gif" << true;
    QTest::newRow("only blanks") << "   " << false;
    QTest::newRow("existing file") << "@picture" << false;
}

void TestItemEditing::picturePathMustBeAFile()
{
    TestEnvironment env;
    env.addItems({{}});
    QImage img(40, 30, QImage::Format_RGB32);
    img.fill(Qt::red);
    const QString picture = env.path(QStringLiteral("vase.png"));
    img.save(picture);
    ItemWindow w(env);
    QFETCH(QString, typed);
    if (typed == QLatin1String("@picture"))
        typed = picture;
    QTest::keyClicks(w.field(6), typed);
    leave(w, w.field(6), w.field(3));
    QFETCH(bool, rejected);
    if (rejected) {
        QCOMPARE(env.prompts().shown().size(), 1);
        QCOMPARE(env.prompts().shown().first().text, Texts::cantFindPicture(typed));
        QCOMPARE(w.field(6)->text(), QString());
    } else {
        QCOMPARE(env.prompts().shown().size(), 0);
        QCOMPARE(w.field(6)->text(), typed);
    }
}

void TestItemEditing::veryLargePictureWarnsAndKeepsPath()
{
    TestEnvironment env;
    env.addItems({{}});
    QImage wide(2600, 40, QImage::Format_RGB32); // overhang beyond 32000 twips
    wide.fill(Qt::blue);
    const QString path = env.path(QStringLiteral("wide.png"));
    wide.save(path);
    QImage fits(300, 220, QImage::Format_RGB32);
    fits.fill(Qt::green);
    const QString small = env.path(QStringLiteral("fits.png"));
    fits.save(small);
    ItemWindow w(env);
    w->setFieldText(5, small);
    QCOMPARE(env.prompts().shown().size(), 0);
    QVERIFY(w.child<QScrollBar>(QStringLiteral("HScroll1"))->isVisible());
    QCOMPARE(w.child<QScrollBar>(QStringLiteral("HScroll1"))->maximum(), (300 - 260) * 15);

    w->setFieldText(5, path);
    QCOMPARE(env.prompts().shown().size(), 1);
    QCOMPARE(env.prompts().shown().first().title, Texts::kImageTooLargeTitle);
    QCOMPARE(env.prompts().shown().first().text, Texts::kImageTooLarge);
    QCOMPARE(w.field(5)->text(), path);
    QCOMPARE(w.child<QScrollBar>(QStringLiteral("HScroll1"))->maximum(), 32000);
    QVERIFY(!w.child<QScrollBar>(QStringLiteral("VScroll1"))->isVisible());
}

void TestItemEditing::pictureFindButtonsUseTheDialog()
{
    TestEnvironment env;
    env.addItems({{}});
    ItemWindow w(env);
    env.prompts().queueFile(QStringLiteral("/pictures/third.gif"));
    QTest::mouseClick(w.child<QPushButton>(QStringLiteral("cmdFind_2")), Qt::LeftButton);
    QCOMPARE(w.field(7)->text(), QStringLiteral("/pictures/third.gif"));
    QCOMPARE(env.prompts().shown().first().text, Texts::kPictureFilter);
    QVERIFY(w->toolButton(QStringLiteral("Upload")) != nullptr);
}

void TestItemEditing::startDatePlusLengthGivesEnd()
{
    TestEnvironment env;
    env.addItems({{}});
    ItemWindow w(env);
    w.child<QComboBox>(QStringLiteral("comboLength"))->setCurrentText(QStringLiteral("7"));
    QTest::keyClicks(w.field(12), QStringLiteral("06/01/1999 10:00"));
    leave(w, w.field(12), w.field(3));
    QCOMPARE(DateText::fromDisplay(w.field(13)->text()),
             QDateTime(QDate(1999, 6, 8), QTime(10, 0)));
}

void TestItemEditing::choosingALengthMovesTheEnd()
{
    TestEnvironment env;
    env.addItems({{{QStringLiteral("DateAuctionStarted"), QStringLiteral("1999-06-01 22:30:00")},
                   {QStringLiteral("DateAuctionEnds"), QStringLiteral("1999-06-08 22:30:00")}}});
    ItemWindow w(env);
    auto* length = w.child<QComboBox>(QStringLiteral("comboLength"));
    length->setCurrentIndex(length->findText(QStringLiteral("10")));
    emit length->activated(length->currentIndex());
    QCOMPARE(DateText::fromDisplay(w.field(13)->text()),
             QDateTime(QDate(1999, 6, 11), QTime(22, 30)));
}

void TestItemEditing::emptiedLengthBecomesSeven()
{
    TestEnvironment env;
    env.addItems({{}});
    ItemWindow w(env);
    auto* length = w.child<QComboBox>(QStringLiteral("comboLength"));
    length->setCurrentText(QString());
    leave(w, length, w.field(3));
    QCOMPARE(length->currentText(), QStringLiteral("7"));
}

void TestItemEditing::addFromEmptyActiveViewOpensAll()
{
    TestEnvironment env;
    env.addItems({{{QStringLiteral("Active"), 0}}});
    env.store().save(QStringLiteral("Tallybid"), QStringLiteral("System"), QStringLiteral("ItemsViewed"),
                     QStringLiteral("Open"));
    ItemWindow w(env);
    QCOMPARE(w.total(), QStringLiteral("0"));
    w->mnuAdd_Click();
    QCOMPARE(w->currentView(), frmItems::View::All);
    QCOMPARE(w.current(), QStringLiteral("2"));
    QCOMPARE(w.total(), QStringLiteral("2"));
    QCOMPARE(env.itemCount(), 2);
    QCOMPARE(QApplication::focusWidget(), w.field(3));
}

void TestItemEditing::deleteRules()
{
    TestEnvironment env;
    env.addNumberedItems(3);
    ItemWindow w(env);
    // at the last place of the view: asked, then refused
    w->mnuLast_Click();
    env.prompts().queueAnswer(PromptAnswer::Ok);
    w->mnuDelete_Click();
    QCOMPARE(env.prompts().shown().size(), 2);
    QCOMPARE(env.prompts().shown().at(0).text, Texts::kDeleteAsk);
    QCOMPARE(env.prompts().shown().at(0).title, Texts::kDeleteTitle);
    QCOMPARE(env.prompts().shown().at(0).icon, PromptIcon::Exclamation);
    QCOMPARE(env.prompts().shown().at(1).text, Texts::kDeleteLast);
    QCOMPARE(env.itemCount(), 3);
    // on the first: deleted, the former second shows as 1 of 2
    w->mnuFirst_Click();
    env.prompts().queueAnswer(PromptAnswer::Ok);
    w->mnuDelete_Click();
    QCOMPARE(env.itemCount(), 2);
    QCOMPARE(w.field(3)->text(), QStringLiteral("Item 2"));
    QCOMPARE(w.current() + u'/' + w.total(), QStringLiteral("1/2"));
    QCOMPARE(w.navigation(), QStringLiteral("10111"));
}

void TestItemEditing::deleteCancelled()
{
    TestEnvironment env;
    env.addNumberedItems(3);
    ItemWindow w(env);
    env.prompts().queueAnswer(PromptAnswer::Cancel);
    w->mnuDelete_Click();
    QCOMPARE(env.itemCount(), 3);
    QCOMPARE(w.total(), QStringLiteral("3"));
}

void TestItemEditing::duplicateAuction()
{
    TestEnvironment env;
    const qint64 id = env.addItems({{{QStringLiteral("EbayID"), QStringLiteral("987654")},
                                     {QStringLiteral("ShortDescription"), QStringLiteral("Lamp")},
                                     {QStringLiteral("Description"), QStringLiteral("Brass lamp")},
                                     {QStringLiteral("Picture2Path"), QStringLiteral("/tmp/none.gif")},
                                     {QStringLiteral("Reserve"), 200000},
                                     {QStringLiteral("MinBid"), 50000},
                                     {QStringLiteral("Cost"), 75000},
                                     {QStringLiteral("LastPrice"), 210000},
                                     {QStringLiteral("DateAuctionStarted"), QStringLiteral("2026-01-01 09:00:00")},
                                     {QStringLiteral("DateAuctionEnds"), QStringLiteral("2026-01-06 09:00:00")},
                                     {QStringLiteral("BuyerEmail"), QStringLiteral("b@example.com")}}})
                           .first();
    ItemWindow w(env);
    w.menu(QStringLiteral("mnuDupAuc"))->trigger();
    QCOMPARE(w.current() + u'/' + w.total(), QStringLiteral("2/2"));
    QCOMPARE(w.field(1)->text(), QString());
    QCOMPARE(w.field(3)->text(), QStringLiteral("Lamp"));
    QCOMPARE(w.child<QComboBox>(QStringLiteral("comboLength"))->currentText(), QStringLiteral("5"));
    w->mnuFirst_Click(); // leaving the copy writes it
    const qint64 copy = id + 1;
    QCOMPARE(env.storedValue(copy, QStringLiteral("Description")).toString(), QStringLiteral("Brass lamp"));
    QCOMPARE(env.storedValue(copy, QStringLiteral("Picture2Path")).toString(), QStringLiteral("/tmp/none.gif"));
    QCOMPARE(env.storedValue(copy, QStringLiteral("Reserve")).toLongLong(), 200000);
    QCOMPARE(env.storedValue(copy, QStringLiteral("MinBid")).toLongLong(), 50000);
    QCOMPARE(env.storedValue(copy, QStringLiteral("Cost")).toLongLong(), 75000);
    for (const char* empty : {"EbayID", "LastPrice", "DateAuctionStarted", "DateAuctionEnds",
                              "BuyerEmail", "Category", "SalePrice"})
        QVERIFY2(env.storedValue(copy, QString::fromLatin1(empty)).isNull(), empty);
}

void TestItemEditing::typedValuesSurviveRestart()
{
    TestEnvironment env;
    {
        ItemWindow w(env); // an empty table: one new item
        QTest::keyClicks(w.field(3), QStringLiteral("Tin robot, 1950s"));
        QTest::keyClicks(w.field(8), QStringLiteral("45.25"));
        QTest::keyClicks(w.field(1), QStringLiteral("3141592"));
        w.child<QCheckBox>(QStringLiteral("chkActive"))->setChecked(false);
        w->close();
    }
    // leaving on exit writes what was typed but applies no defaults
    QVERIFY(env.storedValue(1, QStringLiteral("MinBid")).isNull());
    ItemWindow again(env);
    QCOMPARE(again.field(3)->text(), QStringLiteral("Tin robot, 1950s"));
    QCOMPARE(again.field(8)->text(), QStringLiteral("45.25"));
    QCOMPARE(again.field(1)->text(), QStringLiteral("3141592"));
    QVERIFY(!again.child<QCheckBox>(QStringLiteral("chkActive"))->isChecked());
}

void TestItemEditing::uploadNeedsAPicture()
{
    TestEnvironment env;
    env.addItems({{{QStringLiteral("Picture2Path"), QStringLiteral("   ")}},
                  {{QStringLiteral("Picture3Path"), QStringLiteral("/no/such/lamp.gif")}}});
    ItemWindow w(env);
    QVERIFY(!w->toolButton(QStringLiteral("Upload"))->isEnabled()); // blanks count as empty
    w->mnuNext_Click();
    QVERIFY(w.menu(QStringLiteral("mnuUpload"))->isEnabled());
    w.menu(QStringLiteral("mnuUpload"))->trigger();
    QCOMPARE(env.prompts().shown().size(), 1);
    QCOMPARE(env.prompts().shown().first().text,
             QStringLiteral("Can't find graphic file: /no/such/lamp.gif. Upload not performed."));
}

QTEST_MAIN(TestItemEditing)
#include "tst_itemediting.moc"
