// The ending-auction window as the seller meets it: keys typed into the real boxes, focus moved,
// commands run from menu and toolbar; what ends up in tb2.mdb, in temp.htm and in the notes
// handed on is read back.
#include "AfterSaleDesk.h"

#include "platform/DateText.h"

#include <QAction>
#include <QCheckBox>
#include <QSqlQuery>
#include <QToolBar>

namespace {

// The sold item, second of three, current in the item window; the window opened on it, active.
struct Ending : Desk
{
    // clang-format off
    explicit Ending(TestEnvironment& env)
        : Desk(env, {{{"ShortDescription", "Before"}},
                     {{"EbayID", "123456789"}, {"SalePrice", 12345000}, {"ShippingCost", 32000}, {"BuyerName", "Pat Buyer"},
                      {"BuyerEmail", "pat@example.com"}, {"TrackingNumber", "1Z999"}, {"DateBuyerResponded", "1999-06-09 00:00:00"}},
                     {{"EbayID", "7"}}}, 1)
    // clang-format on
    {
        ending->activateWindow();
        if (!QTest::qWaitForWindowActive(ending))
            qWarning("the window did not become active");
    }
    QAction* action(const QString& name) const { return child<QAction>(ending, name); }
    // A menu item ("mnu...") or a toolbar key.
    void run(const QString& command) const
    {
        (command.startsWith("mnu"_L1) ? action(command) : ending->toolButton(command))->trigger();
    }
    QVariant stored(const char* column) const { return env.storedValue(ids.at(1), column); }
    // Selects the box's text and types over it ("<BS>" deletes it), as a user does.
    void type(int index, const QString& keys) const
    {
        QLineEdit* box = field(index);
        box->setFocus(Qt::TabFocusReason);
        box->selectAll();
        keys == "<BS>"_L1 ? QTest::keyClick(box, Qt::Key_Backspace) : QTest::keyClicks(box, keys);
    }
};

// clang-format off
struct Edit { int index; QString typed; bool leave; QString shown; int beeps; }; // "<BS>" empties
// A command (a menu item or a toolbar key) after boxes typed in ("index=text"), with the SMTP
// port; the message ("" when a note is made), the box focused, the note kind set and the
// signals handed on, in order.
struct Note { QString command; QStringList typed; QString port, message; int focus; QString noteKind, handedOn; };
// clang-format on

} // namespace

class TestEndingAuction : public QObject
{
    Q_OBJECT
private slots:
    void openingAndCommands()
    {
        TestEnvironment env;
        auto& files = env.context().state.uploadFiles;
        std::fill(std::begin(files), std::end(files), u"old"_s);
        Ending e(env);
        QStringList shown;
        for (int i : {11, 28, 29, 15, 14, 16})
            shown << e.ending->fieldText(i);
        // money as currency, a stored date in the locale's form, no date left empty until edited
        QCOMPARE(shown, (QStringList{"$1,234.50", "$3.20", "", "6/9/1999", "", "pat@example.com"}));
        // The widest date still fits at the default size.
        e.field(15)->setText(
            DateText::toDisplay(QDateTime(QDate(2024, 12, 30), QTime(23, 59, 58))));
        QCOMPARE(problemsOf(e.ending->centralWidget(), u"tallybid-ending.png"_s), QString());

        // The commands that mail the buyer need an e-mail address.
        QStringList keys;
        // The toolbar's states in order; a menu item that disagrees with its key adds a "!".
        const auto states = [&] {
            QString states;
            keys.clear();
            for (QAction* button : child<QToolBar>(e.ending, u"Toolbar1"_s)->actions()) {
                keys << button->objectName();
                states += button->isEnabled() ? u'1' : u'0';
                QAction* menu = e.action("mnu"_L1 + button->objectName());
                if (button->objectName() != "Close"_L1 &&
                    !(menu && menu->isEnabled() == button->isEnabled()))
                    states += u'!';
            }
            return states;
        };
        e.field(16)->setText(u"   "_s);
        QCOMPARE(states(), u"00000011"_s);
        e.field(16)->setText(u"x@example.com"_s);
        QCOMPARE(states(), u"11111111"_s);
        QCOMPARE(keys,
                 (QStringList{"NotifyWinner", "PaymentReceived", "ItemShipped", "DidntMakeReserve",
                              "FeedbackView", "FeedbackLeave", "AutoFill", "Close"}));

        // Opened again for another item: the same window, that item and its pictures.
        env.context().state.currentItemId = e.ids.at(2);
        frmEndingAuction* again = frmEndingAuction::openEndingAuction(
            env.context(), {"/p/1.jpg", "", "/p/3.jpg"}, e.owner);
        QCOMPARE(again, e.ending.data());
        QCOMPARE(again->data().bookmark(), e.ids.at(2));
        QCOMPARE((QStringList{files[1], files[2], files[3], files[4], files[5]}),
                 (QStringList{"/p/1.jpg", "", "/p/3.jpg", "", ""}));
    }

    void editing_data()
    {
        QTest::addColumn<Edit>("row");
        // clang-format off
        QTest::newRow("a letter in shipping beeps, text unchanged") << Edit{28, "a", false, "$3.20", 1};
        QTest::newRow("shipping takes digits, point and dollar") << Edit{28, "$4.5", false, "$4.5", 0};
        QTest::newRow("insurance refuses the comma") << Edit{29, "1,000", false, "1000", 1};
        QTest::newRow("an emptied date becomes 1/1/1900 at once") << Edit{15, "<BS>", false, "1/1/1900", 0};
        QTest::newRow("left empty insurance shows 0 as currency") << Edit{29, "<BS>", true, "$0.00", 0};
        QTest::newRow("left shipping grouped") << Edit{28, "1234.5", true, "$1,234.50", 0};
        QTest::newRow("left sell price that is no amount") << Edit{11, "abc", true, "abc", 0};
        // clang-format on
    }
    void editing()
    {
        QFETCH(Edit, row);
        TestEnvironment env;
        Ending e(env);
        e.type(row.index, row.typed);
        if (row.leave)
            e.field(24)->setFocus(Qt::TabFocusReason);
        QCOMPARE(e.field(row.index)->text(), row.shown);
        QCOMPARE(e.ending->beepCount(), row.beeps);
    }

    void closingSavesTheRecord_data()
    {
        QTest::addColumn<QString>("how");
        QTest::newRow("File Exit") << "mnuExit";
        QTest::newRow("toolbar Close") << "Close";
        QTest::newRow("closing the window") << "";
    }
    void closingSavesTheRecord()
    {
        QFETCH(QString, how);
        TestEnvironment env;
        Ending e(env);
        e.type(16, u"lee@example.com"_s);
        e.type(15, u"<BS>"_s);
        e.type(11, u"$1,000.25"_s);
        e.type(28, u"$4.5"_s);
        click(e.ending, u"Command1"_s);
        child<QCheckBox>(e.ending, u"chkFeedbackComplete"_s)->setChecked(true);
        const QDateTime clicked = QDateTime::currentDateTime();
        if (how.isEmpty())
            e.ending->close();
        else
            e.run(how);
        QTRY_VERIFY(e.ending.isNull()); // the window deletes itself
        QStringList stored;
        for (const char* column : {"BuyerEmail", "DateBuyerResponded", "SalePrice", "ShippingCost",
                                   "InsuranceCost", "FeedbackComplete"})
            stored << e.stored(column).toString();
        // The emptied date became 1/1/1900, the empty insurance box "0".
        QCOMPARE(stored, (QStringList{"lee@example.com", "1900-01-01 00:00:00", "10002500", "45000",
                                      "0", "1"}));
        QVERIFY(e.stored("DateBuyerContacted").isNull()); // untouched dates stay empty
        const QDateTime received = DateText::fromStorage(e.stored("DatePaymentRecd").toString());
        QVERIFY(qAbs(received.secsTo(clicked)) < 5);
        QCOMPARE(env.prompts().shown().size(), 0);
    }

    void closesWhenTheRecordCannotBeSaved()
    {
        TestEnvironment env;
        Ending e(env);
        QSqlQuery(env.context().itemDatabase)
            .exec(u"CREATE TRIGGER locked BEFORE UPDATE ON Items "
                  "BEGIN SELECT RAISE(ABORT, 'the disk is read-only'); END"_s);
        e.type(17, u"Lee"_s);
        e.run(u"mnuExit"_s);
        QTRY_VERIFY(e.ending.isNull());
        QCOMPARE(env.prompts().shown().size(), 1);
        QVERIFY(env.prompts().shown().first().text.startsWith(saveFailed(QString())));
        QCOMPARE(e.stored("BuyerName").toString(), u"Pat Buyer"_s);
    }

    void notes_data()
    {
        QTest::addColumn<Note>("row");
        // clang-format off
        QTest::newRow("winner") << Note{"NotifyWinner", {"11=15", "29=<BS>"}, "25", "", -1, "WinningConfirmation", "High Bidder Notification"};
        QTest::newRow("winner, sell price abc") << Note{"mnuNotifyWinner", {"11=abc"}, "25", kSalePriceRequired, 11, "", ""};
        QTest::newRow("winner, port 0: the kind is set all the same") << Note{"mnuNotifyWinner", {}, "0", kNoSmtpPort, -1, "WinningConfirmation", ""};
        QTest::newRow("payment, port 0") << Note{"mnuPaymentReceived", {}, "0", kNoSmtpPort, -1, "", ""};
        QTest::newRow("shipped before the payment cleared") << Note{"mnuItemShipped", {}, "25", kPaymentClearedRequired, 26, "", ""};
        QTest::newRow("shipped") << Note{"ItemShipped", {"26=6/10/1999"}, "25", "", -1, "ItemShipped", "Item Shipped Notification,cleanup"};
        QTest::newRow("reserve") << Note{"mnuDidntMakeReserve", {}, "25", "", -1, "DidntMakeReserve", "Didn't Make Reserve Notification"};
        // clang-format on
    }
    void notes()
    {
        QFETCH(Note, row);
        TestEnvironment env;
        Ending e(env);
        for (const QString& t : row.typed)
            e.type(t.section(u'=', 0, 0).toInt(), t.section(u'=', 1));
        env.context().state.options.remoteSmtpPort = row.port;
        QList<ComposedNote> notes;
        QStringList handedOn;
        connect(e.ending, &frmEndingAuction::noteComposed, this, [&](const ComposedNote& n) {
            notes << n;
            handedOn << n.caption;
        });
        connect(e.ending, &frmEndingAuction::cleanupRequested, this,
                [&] { handedOn << "cleanup"; });
        ModalWatch options;
        e.run(row.command);

        const bool refused = !row.message.isEmpty();
        QCOMPARE(shownTexts(env), refused
                                      ? QStringList{kMissingInformationTitle + u'|' + row.message}
                                      : QStringList());
        if (refused)
            QCOMPARE(env.prompts().shown().first().icon, PromptIcon::Exclamation);
        // The mail server checks send the seller to the Options dialog.
        QCOMPARE(options.shown, row.port == "0"_L1 ? u"frmOptions"_s : QString());
        if (row.focus >= 0)
            QCOMPARE(QApplication::focusWidget(), e.ending->field(row.focus));
        QCOMPARE(env.context().state.noteKind, row.noteKind);
        QCOMPARE(handedOn.join(u','), row.handedOn);
        if (notes.isEmpty() || notes.first().kind != NoteKind::WinningConfirmation)
            return;
        // Saved before the note, so the total adds what was just typed.
        QCOMPARE(e.stored("SalePrice").toLongLong(), 150000);
        QCOMPARE(e.stored("InsuranceCost").toLongLong(), 0);
        QCOMPARE(e.field(11)->text() + u' ' + e.field(29)->text(), u"$15.00 $0.00"_s);
        QVERIFY2(
            notes.first().body.contains(
                "   Your bid: $15.00\r\n   Shipping: $3.20\r\n   Total: $18.20\r\n\r\nPlease"_L1),
            qPrintable(notes.first().body));
    }

    void feedback()
    {
        TestEnvironment env;
        OptionsRecord& o = env.context().state.options;
        o.userEmail = u"sam@example.com"_s;
        o.ebayPassword = u"pa\"ss"_s;
        o.ebayLeaveFeedback = u"http://127.0.0.1:9/leave"_s; // never asked: cached
        o.ebayViewFeedback = u"http://127.0.0.1:9/view?userid="_s;
        env.writeFile(u"Leave.htm"_s,
                      "<form><input type=\"text\" name=\"otheruserid\" size=\"40\">\r\n"
                      "<input type=\"password\" name=\"pass\" size=\"40\">\r\n"
                      "<input type=\"text\" name=\"itemno\" size=\"40\"></form>\r\n");
        Ending e(env);
        e.type(16, u" lee@example.com "_s);
        e.run(u"mnuFeedbackLeave"_s);
        QFile page(env.path(u"temp.htm"_s));
        QVERIFY(page.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(page.readAll()),
                 u"<form><input type=\"text\" name=\"otheruserid\" size=\"40\"  "
                 "value=' lee@example.com '>\r\n<input type=\"password\" name=\"pass\" "
                 "size=\"40\" value=pa&quot;ss>\r\n<input type=\"text\" name=\"itemno\" "
                 "size=\"40\"  value='123456789'></form>\r\n\r\n"_s);
        QVERIFY(child<QCheckBox>(e.ending, u"chkFeedbackComplete"_s)->isChecked());
        e.run(u"FeedbackView"_s);
        QStringList opened;
        for (const auto& call : env.shell().opened)
            opened << call.target;
        QCOMPARE(opened, (QStringList{env.path(u"temp.htm"_s),
                                      "http://127.0.0.1:9/view?userid=lee@example.com"}));
        QCOMPARE(env.prompts().shown().size(), 0);
    }
};

QTEST_MAIN(TestEndingAuction)
#include "tst_frmendingauction.moc"
