// The item window as a user meets it: views, counters, moves, enabling, what it remembers
// across a restart, the links menu and how it looks. And its listing command: the advertisement
// it writes for the shown item equals the one the command line writes for the same item, for
// each placement and picture source.
#include "ItemWindowFixture.h"

#include "aftersale/frmCleanup.h"
#include "aftersale/frmEndingAuction.h"
#include "listing/BatchListing.h"
#include "listing/ListingGenerator.h"
#include "settings/SettingsCatalogue.h"

class TestItemWindow : public QObject
{
    Q_OBJECT
private slots:
    void views_data()
    {
        // items: every third one inactive; navigation: First Prev Next Last Del; saved:
        // ItemsViewed afterwards
        addColumns<int, QString, QString, QString, QString, int, QString, QString>(
            "items", "command", "caption", "counters", "navigation", "rows", "saved", "title");
        // clang-format off
        QTest::newRow("empty All adds an item") << 0 << "mnuAll" << Texts::kCaptionAll << "1/1" << "00000" << 1 << "All" << "";
        QTest::newRow("empty Active") << 0 << "mnuOpen" << Texts::kCaptionActive << "0/0" << "00000" << 0 << "Open" << "";
        QTest::newRow("empty Inactive") << 0 << "mnuClosed" << Texts::kCaptionInactive << "0/0" << "00000" << 0 << "Closed" << "";
        QTest::newRow("All") << 30 << "mnuAll" << Texts::kCaptionAll << "1/30" << "10111" << 30 << "All" << "Item 1";
        QTest::newRow("Active") << 30 << "mnuOpen" << Texts::kCaptionActive << "1/20" << "10111" << 30 << "Open" << "Item 1";
        QTest::newRow("Inactive") << 30 << "mnuClosed" << Texts::kCaptionInactive << "1/10" << "10111" << 30 << "Closed" << "Item 3";
        QTest::newRow("one item") << 1 << "mnuAll" << Texts::kCaptionAll << "1/1" << "00000" << 1 << "All" << "Item 1";
        // clang-format on
    }
    void views()
    {
        QFETCH(int, items);
        QFETCH(QString, command);
        TestEnvironment env;
        env.addNumberedItems(items);
        env.store().save(Settings::kApp, Settings::kSystem, u"ItemsViewed"_s, u"none"_s);
        ItemWindow w(env);
        w.menu(command)->trigger();
        QTEST(w->windowTitle(), "caption");
        QTEST(w.counters(), "counters");
        QTEST(w.navigation(), "navigation");
        QTEST(env.itemCount(), "rows");
        for (const QString& m : {u"mnuAll"_s, u"mnuOpen"_s, u"mnuClosed"_s})
            QCOMPARE(w.menu(m)->isChecked(), command == m);
        QTEST(env.store().get(Settings::kApp, Settings::kSystem, u"ItemsViewed"_s), "saved");
        QTEST(w.field(3)->text(), "title");
    }

    void navigationAndBeeps()
    {
        TestEnvironment env;
        env.addNumberedItems(5);
        ItemWindow w(env);
        // The handlers run directly: at the ends their menu items are disabled, so only another
        // command can ask for a move past the end.
        const auto step = [&](void (frmItems::*command)(), const char* at, const char* nav,
                              int beeps) {
            (w.window.get()->*command)();
            QCOMPARE(w.current(), QString::fromLatin1(at));
            QCOMPARE(w.field(3)->text(), "Item "_L1 + QLatin1String(at));
            QCOMPARE(w.navigation(), QString::fromLatin1(nav));
            QCOMPARE(w->beepCount(), beeps);
        };
        step(&frmItems::mnuNext_Click, "2", "11111", 0);
        step(&frmItems::mnuLast_Click, "5", "11011", 0);
        step(&frmItems::mnuNext_Click, "5", "11011", 1); // past the end: beep, stay
        step(&frmItems::mnuFirst_Click, "1", "10111", 1);
        step(&frmItems::mnuPrevious_Click, "1", "10111", 2);
        w->toolButton(u"Next"_s)->trigger(); // the toolbar runs the same command
        QCOMPARE(w.current(), u"2"_s);
    }

    // Moving fills the description box without laying it out until it is painted; what the user
    // sees (text, scroll bar, scroll position) must be what setting the text the ordinary way
    // shows, both when the box is painted at once and after the event loop has run.
    void descriptionLooksAsIfSetDirectly()
    {
        QStringList paragraphs;
        for (int i = 0; i < 40; ++i)
            paragraphs << u"<p>Paragraph %1 of a long description that wraps over more than one "
                          "line in the box.</p>"_s.arg(i);
        const QString longText = paragraphs.join("\r\n"_L1);
        const QStringList texts{longText, u"short"_s, QString(), longText.left(900), longText};
        TestEnvironment env;
        for (const QString& d : texts)
            env.addItems({{{u"Description"_s, d}}});
        ItemWindow w(env);
        auto* box = w.child<QPlainTextEdit>(u"txtFields_4"_s);
        QScrollBar* bar = box->verticalScrollBar();
        // The text, whether the box scrolls, where it stands. Not the scroll bar's range: the box
        // counts lines of paragraphs not yet laid out as one, so the range depends on what was
        // painted before it was asked, whichever way the text was set.
        const auto text = [&] { return box->viewport()->grab().toImage(); };
        const auto look = [&] {
            const QImage shown = text(); // painting first may lay the text out
            return std::make_tuple(shown, bar->isVisible(), bar->value(),
                                   box->textCursor().position());
        };
        for (int item = 2; item <= texts.size(); ++item) {
            const QString after = texts.at(item - 1);
            // From the box as the previous item left it, scrolled to its end: how the new text
            // looks when painted at once, and after the event loop has run.
            const auto seenAfter = [&](const std::function<void()>& set) {
                box->setPlainText(texts.at(item - 2));
                QTest::qWait(0);
                bar->setValue(bar->maximum());
                QTest::qWait(0);
                set();
                const QImage atOnce = text();
                QTest::qWait(0);
                return std::make_pair(atOnce, look());
            };
            const auto direct = seenAfter([&] { box->setPlainText(after); });
            QVERIFY2(seenAfter([&] { w->mnuNext_Click(); }) == direct,
                     qPrintable(QString::number(item)));
            QCOMPARE(box->toPlainText(), QString(after).replace("\r\n"_L1, "\n"_L1));
        }
        // Browsing never rewrites a description, though the box shows its CR LF line ends as LF;
        // an edit keeps them.
        const auto stored = [&](int id) {
            return env.storedValue(id, u"Description"_s).toString();
        };
        w->mnuFirst_Click();
        QCOMPARE(stored(1), longText);
        // Typed at once, before the box was painted: the caret stands at the start.
        box->setFocus();
        QTest::keyClicks(box, u"New. "_s);
        w->mnuNext_Click();
        QCOMPARE(stored(1), "New. "_L1 + longText);
        // Typed and taken back is no edit; text put in by a command is one.
        box->setFocus();
        QTest::keyClicks(box, u"x"_s);
        QTest::keyClick(box, Qt::Key_Backspace);
        w->mnuPrevious_Click();
        QCOMPARE(stored(2), u"short"_s);
        w->setFieldText(4, u"Set by a command"_s);
        w->mnuNext_Click();
        QCOMPARE(stored(1), u"Set by a command"_s);
    }

    void lengthFromDates_data()
    {
        addColumns<QString, QString>("ends", "length"); // started 1999-06-01 10:00
        // clang-format off
        QTest::newRow("7 days") << "1999-06-08 10:00:00" << "7";
        QTest::newRow("14 days shows 7") << "1999-06-15 10:00:00" << "7";
        QTest::newRow("2 days shows 7") << "1999-06-03 10:00:00" << "7";
        QTest::newRow("4 days shown as it is") << "1999-06-05 09:00:00" << "4";
        // clang-format on
    }
    void lengthFromDates()
    {
        QFETCH(QString, ends);
        TestEnvironment env;
        env.addItems(
            {{{u"DateAuctionStarted"_s, u"1999-06-01 10:00:00"_s}, {u"DateAuctionEnds"_s, ends}}});
        ItemWindow w(env);
        QTEST(w.child<QComboBox>(u"comboLength"_s)->currentText(), "length");
    }

    void restartRemembersViewBarsAndSize()
    {
        TestEnvironment env;
        env.addNumberedItems(6);
        {
            ItemWindow w(env);
            for (const QString& m : {u"mnuClosed"_s, u"mnuViewToolbar"_s, u"mnuViewStatusBar"_s})
                w.menu(m)->trigger();
            QVERIFY(!w.child<QToolBar>(u"Toolbar1"_s)->isVisible());
            w->resize(900, 640);
            w->close();
        }
        const auto option = [&](const QString& key) {
            return env.store().get(Settings::kApp, Settings::kOptions, key);
        };
        // written as "ToolBar", read back as "Toolbar"; the size in twips
        QCOMPARE(option(u"Toolbar"_s), u"False"_s);
        QCOMPARE(option(u"MainFormWidth"_s) + u' ' + option(u"MainFormHeight"_s), u"13500 9600"_s);
        ItemWindow again(env);
        QCOMPARE(again->currentView(), frmItems::View::Inactive);
        QCOMPARE(again.total(), u"2"_s);
        QVERIFY(!again.child<QToolBar>(u"Toolbar1"_s)->isVisible());
        QVERIFY(!again.child<QStatusBar>(u"sbStatus"_s)->isVisible());
        QVERIFY(!again.menu(u"mnuViewToolbar"_s)->isChecked());
        QCOMPARE(again->size(), QSize(900, 640));
    }

    void linksMenuFollowsSettings()
    {
        TestEnvironment env;
        const auto set = [&](const QString& key, const QString& value) {
            env.store().save(Settings::kApp, Settings::kOptions, key, value);
        };
        set(u"LinkName 2"_s, u"Mine"_s);
        set(u"LinkURL 2"_s, u"http://example.com/"_s);
        set(u"LinkURL 4"_s, u"http://example.com/4"_s); // an address without a name stays hidden
        seedDefaultLinks(env.store());
        ItemWindow w(env);
        w->rebuildLinksMenu();
        QStringList shown;
        for (int i = 0; i < 10; ++i)
            if (QAction* a = w.menu(u"mnuLinks_%1"_s.arg(i)); a->isVisible())
                shown << a->text();
        QCOMPARE(shown, (QStringList{u"USPS Tracking"_s, u"Mine"_s, u"UPS Tracking"_s}));
        w.menu(u"mnuLinks_1"_s)->trigger();
        w.menu(u"mnuHelpDoc"_s)->trigger();
        QCOMPARE(env.shell().opened.at(0).target, u"http://example.com/"_s);
        QCOMPARE(env.shell().opened.at(1).target, env.path(u"tb2ug.htm"_s));
        QCOMPARE(env.shell().opened.at(1).workingDir, env.appPath());
    }

    void smallScreenHidesViewButtons_data()
    {
        addColumns<QSize, bool, int>("screen", "shown", "width");
        QTest::newRow("640x480") << QSize(640, 480) << false << (640 * 15 - 150) / 15;
        QTest::newRow("799x600") << QSize(799, 600) << false << (799 * 15 - 150) / 15;
        QTest::newRow("800x600") << QSize(800, 600) << true << 11800 / 15;
    }
    void smallScreenHidesViewButtons()
    {
        QFETCH(QSize, screen);
        TestEnvironment env;
        ItemWindow w(env, screen);
        for (const QString& key : {u"All"_s, u"Open"_s, u"Closed"_s, u"Find"_s})
            QTEST(w->toolButton(key)->isVisible(), "shown");
        QTEST(w->width(), "width");
    }

    void afterSaleFollowsTheRightItem_data()
    {
        addColumns<bool, QString>("shipped", "standsOn");
        QTest::newRow("Cleanup from the menu, feedback for the item shown") << false << "1002";
        QTest::newRow("Cleanup after shipping, on the ending window's item") << true << "1001";
    }
    // The ending window is opened on one item, then the item window moves on to another.
    void afterSaleFollowsTheRightItem()
    {
        QFETCH(bool, shipped);
        TestEnvironment env;
        env.addItems({{{u"EbayID"_s, u"1001"_s}, {u"BuyerEmail"_s, u"a@example.com"_s}},
                      {{u"EbayID"_s, u"1002"_s}, {u"BuyerEmail"_s, u"b@example.com"_s}}});
        env.writeFile(u"Leave.htm"_s, ""); // a feedback form with nothing to fill
        for (const char* key : {"EraseHDImgs", "EraseWebImgs"})
            env.store().save(u"Tallybid"_s, u"Options"_s, QString::fromLatin1(key), u"0"_s);
        ItemWindow w(env);
        w->mnuEnding_Click();
        auto* ending = w.window->findChild<frmEndingAuction*>();
        QVERIFY(ending);
        w->mnuNext_Click();
        if (shipped)
            emit ending->cleanupRequested();
        else
            w->mnuCleanup_Click();
        QTEST(w.field(1)->text(), "standsOn");
        auto* cleanup = w.window->findChild<frmCleanup*>();
        QVERIFY(cleanup);
        QTest::mouseClick(cleanup->findChild<QPushButton*>(u"cmdOk"_s), Qt::LeftButton);
        // Feedback is left, and counted as done, for the buyer of the item the window stands on.
        QTEST(ending->data().text(u"EbayID"_s), "standsOn");
        QVERIFY(ending->findChild<QCheckBox*>(u"chkFeedbackComplete"_s)->isChecked());
    }

    // Their layout is checked with every other window's; here, that the menu opens them.
    void toolWindowsOpenFromTheMenu()
    {
        TestEnvironment env;
        ItemWindow w(env);
        for (const QString& tool : {u"mnuToolsCalculator"_s, u"mnu_Calendar"_s}) {
            w.menu(tool)->trigger();
            const QList<QDialog*> shown = w->findChildren<QDialog*>();
            QVERIFY2(!shown.isEmpty() && shown.last()->isVisible(), qPrintable(tool));
            shown.last()->close();
        }
    }

    void sameTextAsCommandLine_data()
    {
        addColumns<QString, bool>("placement", "remote");
        QTest::newRow("left, local") << "Left" << false;
        QTest::newRow("bottom, remote") << "Bottom" << true;
    }
    void sameTextAsCommandLine()
    {
        QFETCH(QString, placement);
        QFETCH(bool, remote);
        TestEnvironment env;
        const QString resources = qEnvironmentVariable("TB_SOURCE_DIR") + "/resources"_L1;
        QFile::copy(resources + "/standard.tbt"_L1, env.path(u"standard.tbt"_s));
        for (const QString& d : {u"Backgr"_s, u"Images"_s, u"Sounds"_s}) {
            QDir().mkpath(env.path(d));
            for (const QString& f : QDir(resources + u'/' + d).entryList(QDir::Files))
                QFile::copy(resources + u'/' + d + u'/' + f, env.path(d + u'/' + f));
        }
        const QString picture = savePicture(env.path(u"teapot.jpg"_s), 120, 90, Qt::darkCyan);
        env.store().save(u"Tallybid"_s, u"Options"_s, u"ImageLoc"_s, u"http://example.com/shop/"_s);
        env.context().state.options = OptionsRecord::load(env.store());
        const qint64 id = env.addItems({{{u"ShortDescription"_s, u"Teapot"_s},
                                         {u"Description"_s, u"Bone china, 1930s."_s},
                                         {u"Picture1Path"_s, picture},
                                         {u"Reserve"_s, 0}}})
                              .first();
        ItemWindow w(env);
        w.child<QComboBox>(u"comboImgPlace"_s)->setCurrentText(placement);
        w.child<QRadioButton>(remote ? u"optRemotely"_s : u"optLocally"_s)->setChecked(true);
        w.menu(u"mnuListing"_s)->trigger();
        QVERIFY2(env.prompts().shown().isEmpty(), qPrintable(env.prompts().shown().value(0).text));
        QCOMPARE(env.shell().opened.size(), 1);
        const QString listing = listingFilePath(env.appPath());
        QCOMPARE(env.shell().opened.first().target, listing);
        const auto written = [&] {
            QFile f(listing);
            return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("(missing)");
        };
        const QByteArray fromWindow = written();
        QVERIFY(fromWindow.contains("Teapot"));
        QVERIFY(w.menu(u"mnuListing"_s)->isChecked());

        QFile::remove(listing);
        QString out, err;
        QTextStream outStream(&out), errStream(&err);
        QStringList args{u"--appdir"_s,    env.appPath(), u"--listing"_s,   QString::number(id),
                         u"--placement"_s, placement,     u"--configdir"_s, env.store().folder()};
        if (remote)
            args << u"--remote"_s;
        QCOMPARE(runBatchListing(args, outStream, errStream), 0);
        QCOMPARE(written(), fromWindow);
    }

    void listingCommandEnabling_data()
    {
        addColumns<QString, QString, bool>("title", "text", "enabled");
        // clang-format off
        QTest::newRow("only a description") << "" << "Blue" << true;
        QTest::newRow("only a title") << "Vase" << "" << true;
        QTest::newRow("neither") << "" << "" << false;
        // clang-format on
    }
    void listingCommandEnabling()
    {
        QFETCH(QString, title);
        QFETCH(QString, text);
        QFETCH(bool, enabled);
        TestEnvironment env; // no themeset
        env.addItems({{{u"ShortDescription"_s, title.isEmpty() ? QVariant() : title},
                       {u"Description"_s, text.isEmpty() ? QVariant() : text}},
                      {{u"ShortDescription"_s, u"Other"_s}}});
        ItemWindow w(env);
        QAction* button = w->toolButton(u"PList"_s);
        QCOMPARE(button->isEnabled(), enabled);
        QCOMPARE(w.menu(u"mnuListing"_s)->isEnabled(), enabled);
        // refused for want of a themeset, nothing opened
        w.menu(u"mnuListing"_s)->trigger();
        QCOMPARE(env.prompts().shown().isEmpty(), !enabled);
        QVERIFY(env.shell().opened.isEmpty());
        // typing a title switches it on, emptying both switches it off again
        w.field(3)->setText(u"x"_s);
        QVERIFY(button->isEnabled());
        w.field(3)->clear();
        w->setFieldText(4, QString());
        QVERIFY(!button->isEnabled());
    }
};

QTEST_MAIN(TestItemWindow)
#include "tst_frmitems.moc"
