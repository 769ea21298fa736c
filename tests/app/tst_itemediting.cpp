// Editing an item as a user does: keys typed into the real boxes, focus moved, commands run;
// what ends up in tb2.mdb is read back.
#include "ItemWindowFixture.h"

#include "app/texts.h"
#include "platform/DateText.h"

#include <QImage>

class TestItemEditing : public QObject
{
    Q_OBJECT
private slots:
    void typing_data();
    void typing();
    void blanksBecomeDefaultsWhenLeft();
    void picturePathMustBeAFile_data();
    void picturePathMustBeAFile();
    void veryLargePictureWarnsAndKeepsPath();
    void auctionLengthAndDates();
    void addFromEmptyActiveViewOpensAll();
    void deleteRules();
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

void TestItemEditing::typing_data()
{
    QTest::addColumn<int>("box");
    QTest::addColumn<QString>("typed"); // "<BS>" empties the box
    QTest::addColumn<QString>("shown");
    QTest::addColumn<int>("beeps");
    QTest::addColumn<bool>("warned");
    QTest::newRow("eBay number digits") << 1 << "123456"
                                        << "123456" << 0 << false;
    QTest::newRow("a letter empties the whole eBay number") << 1 << "1234x"
                                                            << "" << 0 << true;
    QTest::newRow("typing goes on in the emptied box") << 1 << "12.5"
                                                       << "5" << 0 << true;
    QTest::newRow("min bid 12.5") << 9 << "12.5"
                                  << "12.5" << 0 << false;
    QTest::newRow("dollar sign refused") << 9 << "$7"
                                         << "7" << 1 << false;
    QTest::newRow("reserve letters refused") << 8 << "1a2b"
                                             << "12" << 2 << false;
    QTest::newRow("cost comma refused") << 10 << "1,000"
                                        << "1000" << 1 << false;
    QTest::newRow("emptied cost shows 0") << 10 << "<BS>"
                                          << "0" << 0 << false;
}

void TestItemEditing::typing()
{
    TestEnvironment env;
    env.addItems({{{QStringLiteral("Cost"), 150000}}});
    ItemWindow w(env);
    QFETCH(int, box);
    QFETCH(QString, typed);
    w.field(box)->selectAll(); // opening the view gave the blank money boxes their defaults
    if (typed == QLatin1String("<BS>"))
        QTest::keyClick(w.field(box), Qt::Key_Backspace);
    else
        QTest::keyClicks(w.field(box), typed);
    QTEST(w.field(box)->text(), "shown");
    QTEST(w->beepCount(), "beeps");
    QFETCH(bool, warned);
    QCOMPARE(env.prompts().shown().size(), warned ? 1 : 0);
    if (warned) {
        const auto& m = env.prompts().shown().first();
        QCOMPARE(m.text + u'|' + m.title, Texts::kEbayIdDigits + u'|' + Texts::kEbayIdTitle);
        QCOMPARE(m.icon, PromptIcon::Exclamation);
    }
}

void TestItemEditing::blanksBecomeDefaultsWhenLeft()
{
    TestEnvironment env;
    const QList<qint64> ids = env.addNumberedItems(2);
    ItemWindow w(env);
    const auto stored = [&](qint64 id) {
        QStringList v;
        for (const char* c : {"Reserve", "MinBid", "Cost"})
            v << env.storedValue(id, QString::fromLatin1(c)).toString();
        return v.join(u' ');
    };
    // Opening the view moves to the last item and back, leaving the first with its defaults.
    QCOMPARE(stored(ids.at(0)), QStringLiteral("0 10000 0"));
    // a new item keeps its blanks until it is left by a move
    w->mnuAdd_Click();
    QCOMPARE(stored(ids.at(1) + 1), QStringLiteral("  "));
    w->mnuFirst_Click();
    QCOMPARE(stored(ids.at(1) + 1), QStringLiteral("0 10000 0"));
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
    QCOMPARE(env.prompts().shown().size(), rejected ? 1 : 0);
    QCOMPARE(w.field(6)->text(), rejected ? QString() : typed);
    if (rejected)
        QCOMPARE(env.prompts().shown().first().text, Texts::cantFindPicture(typed));
}

void TestItemEditing::veryLargePictureWarnsAndKeepsPath()
{
    TestEnvironment env;
    env.addItems({{}});
    const auto picture = [&](const char* name, int width, int height) {
        QImage img(width, height, QImage::Format_RGB32);
        img.fill(Qt::blue);
        img.save(env.path(QString::fromLatin1(name)));
        return env.path(QString::fromLatin1(name));
    };
    ItemWindow w(env);
    auto* across = w.child<QScrollBar>(QStringLiteral("HScroll1"));
    w->setFieldText(5, picture("fits.png", 300, 220)); // 40 pixels wider than the frame
    QCOMPARE(env.prompts().shown().size(), 0);
    QVERIFY(across->isVisible());
    QCOMPARE(across->maximum(), 40 * 15);
    const QString wide = picture("wide.png", 2600, 40); // overhang beyond 32000 twips
    w->setFieldText(5, wide);
    QCOMPARE(env.prompts().shown().size(), 1);
    QCOMPARE(env.prompts().shown().first().title, Texts::kImageTooLargeTitle);
    QCOMPARE(env.prompts().shown().first().text, Texts::kImageTooLarge);
    QCOMPARE(w.field(5)->text(), wide);
    QCOMPARE(across->maximum(), 32000);
    QVERIFY(!w.child<QScrollBar>(QStringLiteral("VScroll1"))->isVisible());
}

void TestItemEditing::auctionLengthAndDates()
{
    TestEnvironment env;
    env.addItems({{}});
    ItemWindow w(env);
    auto* length = w.child<QComboBox>(QStringLiteral("comboLength"));
    const auto ends = [&] { return DateText::fromDisplay(w.field(13)->text()); };
    // start + length = end when the start box is left, time of day kept
    length->setCurrentText(QStringLiteral("7"));
    QTest::keyClicks(w.field(12), QStringLiteral("06/01/1999 10:00"));
    leave(w, w.field(12), w.field(3));
    QCOMPARE(ends(), QDateTime(QDate(1999, 6, 8), QTime(10, 0)));
    // choosing a length moves the end
    length->setCurrentIndex(length->findText(QStringLiteral("10")));
    emit length->activated(length->currentIndex());
    QCOMPARE(ends(), QDateTime(QDate(1999, 6, 11), QTime(10, 0)));
    // a length left empty becomes 7
    length->setCurrentText(QString());
    leave(w, length, w.field(3));
    QCOMPARE(length->currentText(), QStringLiteral("7"));
    // a length typed but not chosen as the window closes: closing takes the focus from the box,
    // which then reports the length as chosen, to a window already half gone
    length->setFocus(Qt::TabFocusReason);
    length->lineEdit()->setText(QStringLiteral("10"));
    w.window.reset();
}

void TestItemEditing::addFromEmptyActiveViewOpensAll()
{
    TestEnvironment env;
    env.addItems({{{QStringLiteral("Active"), 0}}});
    env.store().save(QStringLiteral("Tallybid"), QStringLiteral("System"),
                     QStringLiteral("ItemsViewed"), QStringLiteral("Open"));
    ItemWindow w(env);
    QCOMPARE(w.total(), QStringLiteral("0"));
    w->mnuAdd_Click();
    QCOMPARE(w->currentView(), frmItems::View::All);
    QCOMPARE(w.current() + u'/' + w.total(), QStringLiteral("2/2"));
    QCOMPARE(env.itemCount(), 2);
    QCOMPARE(QApplication::focusWidget(), w.field(3));
}

void TestItemEditing::deleteRules()
{
    TestEnvironment env;
    env.addNumberedItems(3);
    ItemWindow w(env);
    // cancelled: nothing happens
    env.prompts().queueAnswer(PromptAnswer::Cancel);
    w->mnuDelete_Click();
    QCOMPARE(env.itemCount(), 3);
    const auto& ask = env.prompts().shown().at(0);
    QCOMPARE(ask.text + u'|' + ask.title, Texts::kDeleteAsk + u'|' + Texts::kDeleteTitle);
    QCOMPARE(ask.icon, PromptIcon::Exclamation);
    QCOMPARE(ask.buttons, PromptButtons::OkCancel);
    // at the last place of the view: asked, then refused
    w->mnuLast_Click();
    env.prompts().queueAnswer(PromptAnswer::Ok);
    w->mnuDelete_Click();
    QCOMPARE(env.prompts().shown().at(2).text, Texts::kDeleteLast);
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

void TestItemEditing::duplicateAuction()
{
    TestEnvironment env;
    const QVariantMap original{
        {QStringLiteral("EbayID"), QStringLiteral("987654")},
        {QStringLiteral("ShortDescription"), QStringLiteral("Lamp")},
        {QStringLiteral("Description"), QStringLiteral("Brass lamp")},
        {QStringLiteral("Picture2Path"), QStringLiteral("/tmp/none.gif")},
        {QStringLiteral("Reserve"), 200000},
        {QStringLiteral("MinBid"), 50000},
        {QStringLiteral("Cost"), 75000},
        {QStringLiteral("LastPrice"), 210000},
        {QStringLiteral("DateAuctionStarted"), QStringLiteral("2026-01-01 09:00:00")},
        {QStringLiteral("DateAuctionEnds"), QStringLiteral("2026-01-06 09:00:00")},
        {QStringLiteral("BuyerEmail"), QStringLiteral("b@example.com")}};
    const qint64 copy = env.addItems({original}).first() + 1;
    ItemWindow w(env);
    w.menu(QStringLiteral("mnuDupAuc"))->trigger();
    QCOMPARE(w.current() + u'/' + w.total(), QStringLiteral("2/2"));
    QCOMPARE(w.child<QComboBox>(QStringLiteral("comboLength"))->currentText(), QStringLiteral("5"));
    w->mnuFirst_Click(); // leaving the copy writes it
    for (const char* kept :
         {"ShortDescription", "Description", "Picture2Path", "Reserve", "MinBid", "Cost"})
        QCOMPARE(env.storedValue(copy, QString::fromLatin1(kept)),
                 original.value(QString::fromLatin1(kept)));
    for (const char* empty :
         {"EbayID", "LastPrice", "DateAuctionStarted", "DateAuctionEnds", "BuyerEmail"})
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
    QCOMPARE(env.storedValue(1, QStringLiteral("Reserve")).toLongLong(), 452500);
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
