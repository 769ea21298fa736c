// The ending-auction window as the seller meets it: keys typed into the real boxes, focus moved,
// commands run from menu and toolbar; what ends up in tb2.mdb, in temp.htm and in the notes
// handed on is read back.
#include "../support/LayoutCheck.h"
#include "../support/ModalWatch.h"
#include "../support/TestEnvironment.h"

#include "aftersale/frmEndingAuction.h"
#include "aftersale/texts.h"
#include "platform/DateText.h"

#include <QAction>
#include <QCheckBox>
#include <QDialog>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSqlQuery>
#include <QToolBar>
#include <QtTest>

using namespace AfterSaleTexts;

namespace {

// The sold item, second of three, current in the item window; the window opened on it.
struct Ending
{
    explicit Ending(TestEnvironment& env) : env(env)
    {
        const QVariantMap sold{{"EbayID", "123456789"},
                               {"SalePrice", 12345000},
                               {"ShippingCost", 32000},
                               {"BuyerName", "Pat Buyer"},
                               {"BuyerEmail", "pat@example.com"},
                               {"TrackingNumber", "1Z999"},
                               {"DateBuyerResponded", "1999-06-09 00:00:00"}};
        ids = env.addItems({{{"ShortDescription", "Before"}}, sold, {{"EbayID", "7"}}});
        AppState& s = env.context().state;
        s.currentItemId = ids.at(1);
        s.currentEbayId = QStringLiteral("123456789");
        s.options.remoteSmtpHost = QStringLiteral("127.0.0.1");
        s.options.remoteSmtpPort = QStringLiteral("25");
        window = frmEndingAuction::openEndingAuction(env.context(), {}, owner);
        window->activateWindow();
        if (!QTest::qWaitForWindowActive(window))
            qWarning("the window did not become active");
    }
    QLineEdit* field(int index) const { return qobject_cast<QLineEdit*>(window->field(index)); }
    QAction* action(const QString& name) const { return window->findChild<QAction*>(name); }
    // A menu item ("mnu...") or a toolbar key.
    void run(const QString& command) const
    {
        (command.startsWith(QLatin1String("mnu")) ? action(command) : window->toolButton(command))
            ->trigger();
    }
    QCheckBox* feedbackDone() const
    {
        return window->findChild<QCheckBox*>(QStringLiteral("chkFeedbackComplete"));
    }
    QVariant stored(const char* column) const
    {
        return env.storedValue(ids.at(1), QString::fromLatin1(column));
    }
    // Selects the box's text and types over it ("<BS>" deletes it), as a user does.
    void type(int index, const QString& keys) const
    {
        field(index)->setFocus(Qt::TabFocusReason);
        field(index)->selectAll();
        if (keys == QLatin1String("<BS>"))
            QTest::keyClick(field(index), Qt::Key_Backspace);
        else
            QTest::keyClicks(field(index), keys);
    }

    TestEnvironment& env;
    QWidget owner; // stands for the item window
    QPointer<frmEndingAuction> window;
    QList<qint64> ids;
};

} // namespace

class TestEndingAuction : public QObject
{
    Q_OBJECT
private slots:
    void opening();
    void editing_data();
    void editing();
    void emailEnablesCommands_data();
    void emailEnablesCommands();
    void closingSavesTheRecord_data();
    void closingSavesTheRecord();
    void closesWhenTheRecordCannotBeSaved();
    void notes_data();
    void notes();
    void feedback();
};

void TestEndingAuction::opening()
{
    TestEnvironment env;
    auto& files = env.context().state.uploadFiles;
    std::fill(std::begin(files), std::end(files), QStringLiteral("old"));
    Ending e(env);
    QStringList shown;
    for (int i : {11, 28, 29, 15, 14, 16})
        shown << e.window->fieldText(i);
    // money as currency, a stored date in the locale's form, no date left empty until edited
    QCOMPARE(shown, (QStringList{"$1,234.50", "$3.20", "", "6/9/1999", "", "pat@example.com"}));
    // The widest date still fits at the default size.
    e.field(15)->setText(DateText::toDisplay(QDateTime(QDate(2024, 12, 30), QTime(23, 59, 58))));
    const QStringList problems = layoutProblems(e.window->centralWidget());
    QVERIFY2(problems.isEmpty(), qPrintable(problems.join(u'\n')));
    QVERIFY(e.window->grab().save(QDir::temp().filePath(QStringLiteral("tallybid-ending.png"))));

    // Opened again for another item: the same window, that item and its pictures.
    env.context().state.currentItemId = e.ids.at(2);
    frmEndingAuction* again =
        frmEndingAuction::openEndingAuction(env.context(), {"/p/1.jpg", "", "/p/3.jpg"}, e.owner);
    QCOMPARE(again, e.window.data());
    QCOMPARE(again->data().bookmark(), e.ids.at(2));
    QCOMPARE((QStringList{files[1], files[2], files[3], files[4], files[5]}),
             (QStringList{"/p/1.jpg", "", "/p/3.jpg", "", ""}));
}

void TestEndingAuction::editing_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("typed"); // "<BS>" empties the box
    QTest::addColumn<bool>("leave");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<int>("beeps");
    // clang-format off
    QTest::newRow("a letter in shipping beeps, text unchanged") << 28 << "a" << false << "$3.20" << 1;
    QTest::newRow("shipping takes digits, point and dollar") << 28 << "$4.5" << false << "$4.5" << 0;
    QTest::newRow("insurance refuses the comma") << 29 << "1,000" << false << "1000" << 1;
    QTest::newRow("an emptied date becomes 1/1/1900 at once") << 15 << "<BS>" << false << "1/1/1900" << 0;
    QTest::newRow("left empty insurance shows 0 as currency") << 29 << "<BS>" << true << "$0.00" << 0;
    QTest::newRow("left shipping grouped") << 28 << "1234.5" << true << "$1,234.50" << 0;
    QTest::newRow("left sell price that is no amount") << 11 << "abc" << true << "abc" << 0;
    // clang-format on
}

void TestEndingAuction::editing()
{
    TestEnvironment env;
    Ending e(env);
    QFETCH(int, index);
    QFETCH(QString, typed);
    QFETCH(bool, leave);
    e.type(index, typed);
    if (leave)
        e.field(24)->setFocus(Qt::TabFocusReason);
    QTEST(e.field(index)->text(), "shown");
    QTEST(e.window->beepCount(), "beeps");
}

void TestEndingAuction::emailEnablesCommands_data()
{
    QTest::addColumn<QString>("email");
    QTest::addColumn<QString>("states"); // the toolbar's, in order
    QTest::newRow("address") << "x@example.com"
                             << "11111111";
    QTest::newRow("blanks") << "   "
                            << "00000011";
}

void TestEndingAuction::emailEnablesCommands()
{
    TestEnvironment env;
    Ending e(env);
    QFETCH(QString, email);
    e.field(16)->setText(email);
    QStringList keys;
    QString states;
    for (QAction* button : e.window->findChild<QToolBar*>(QStringLiteral("Toolbar1"))->actions()) {
        keys << button->objectName();
        QAction* menu = e.action(QLatin1String("mnu") + button->objectName());
        if (button->objectName() != QLatin1String("Close"))
            QVERIFY(menu && menu->isEnabled() == button->isEnabled());
        states += button->isEnabled() ? u'1' : u'0';
    }
    QCOMPARE(keys,
             (QStringList{"NotifyWinner", "PaymentReceived", "ItemShipped", "DidntMakeReserve",
                          "FeedbackView", "FeedbackLeave", "AutoFill", "Close"}));
    QTEST(states, "states");
}

void TestEndingAuction::closingSavesTheRecord_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("File Exit") << "mnuExit";
    QTest::newRow("toolbar Close") << "Close";
    QTest::newRow("closing the window") << "";
}

void TestEndingAuction::closingSavesTheRecord()
{
    TestEnvironment env;
    Ending e(env);
    e.type(16, QStringLiteral("lee@example.com"));
    e.type(15, QStringLiteral("<BS>"));
    e.type(11, QStringLiteral("$1,000.25"));
    e.type(28, QStringLiteral("$4.5"));
    e.window->findChild<QPushButton*>(QStringLiteral("Command1"))->click();
    e.feedbackDone()->setChecked(true);
    const QDateTime clicked = QDateTime::currentDateTime();
    QFETCH(QString, how);
    if (how.isEmpty())
        e.window->close();
    else
        e.run(how);
    QTRY_VERIFY(e.window.isNull()); // the window deletes itself
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

void TestEndingAuction::closesWhenTheRecordCannotBeSaved()
{
    TestEnvironment env;
    Ending e(env);
    QSqlQuery(env.context().itemDatabase)
        .exec(QStringLiteral("CREATE TRIGGER locked BEFORE UPDATE ON Items "
                             "BEGIN SELECT RAISE(ABORT, 'the disk is read-only'); END"));
    e.type(17, QStringLiteral("Lee"));
    e.action(QStringLiteral("mnuExit"))->trigger();
    QTRY_VERIFY(e.window.isNull());
    QCOMPARE(env.prompts().shown().size(), 1);
    QVERIFY(env.prompts().shown().first().text.startsWith(saveFailed(QString())));
    QCOMPARE(e.stored("BuyerName").toString(), QStringLiteral("Pat Buyer"));
}

void TestEndingAuction::notes_data()
{
    QTest::addColumn<QString>("command");   // a menu item, or a toolbar key
    QTest::addColumn<QStringList>("typed"); // "index=text"
    QTest::addColumn<QString>("port");      // the host is there
    QTest::addColumn<QString>("message");   // "" when a note is made
    QTest::addColumn<int>("focus");
    QTest::addColumn<QString>("noteKind");
    QTest::addColumn<QString>("handedOn"); // the signals, in order
    // clang-format off
    QTest::newRow("winner") << "NotifyWinner" << QStringList{"11=15", "29=<BS>"} << "25" << "" << -1 << "WinningConfirmation" << "High Bidder Notification";
    QTest::newRow("winner, sell price abc") << "mnuNotifyWinner" << QStringList{"11=abc"} << "25" << kSalePriceRequired << 11 << "" << "";
    QTest::newRow("winner, port 0: the kind is set all the same") << "mnuNotifyWinner" << QStringList{} << "0" << kNoSmtpPort << -1 << "WinningConfirmation" << "";
    QTest::newRow("payment, port 0") << "mnuPaymentReceived" << QStringList{} << "0" << kNoSmtpPort << -1 << "" << "";
    QTest::newRow("shipped before the payment cleared") << "mnuItemShipped" << QStringList{} << "25" << kPaymentClearedRequired << 26 << "" << "";
    QTest::newRow("shipped") << "ItemShipped" << QStringList{"26=6/10/1999"} << "25" << "" << -1 << "ItemShipped" << "Item Shipped Notification,cleanup";
    QTest::newRow("reserve") << "mnuDidntMakeReserve" << QStringList{} << "25" << "" << -1 << "DidntMakeReserve" << "Didn't Make Reserve Notification";
    // clang-format on
}

void TestEndingAuction::notes()
{
    TestEnvironment env;
    Ending e(env);
    QFETCH(QString, command);
    QFETCH(QStringList, typed);
    QFETCH(QString, port);
    QFETCH(QString, message);
    for (const QString& t : typed)
        e.type(t.section(u'=', 0, 0).toInt(), t.section(u'=', 1));
    env.context().state.options.remoteSmtpPort = port;
    QList<ComposedNote> notes;
    QStringList handedOn;
    connect(e.window, &frmEndingAuction::noteComposed, this, [&](const ComposedNote& n) {
        notes << n;
        handedOn << n.caption;
    });
    connect(e.window, &frmEndingAuction::cleanupRequested, this, [&] { handedOn << "cleanup"; });
    ModalWatch options;
    e.run(command);

    QStringList shown;
    for (const auto& p : env.prompts().shown())
        shown << p.text + u'|' + p.title + u'|' + QString::number(int(p.icon));
    const QString expected = message + u'|' + kMissingInformationTitle + u'|' +
                             QString::number(int(PromptIcon::Exclamation));
    QCOMPARE(shown, message.isEmpty() ? QStringList() : QStringList{expected});
    // The mail server checks send the seller to the Options dialog.
    QCOMPARE(options.shown, port == QLatin1String("0") ? QStringLiteral("frmOptions") : QString());
    QFETCH(int, focus);
    if (focus >= 0)
        QCOMPARE(QApplication::focusWidget(), e.window->field(focus));
    QTEST(env.context().state.noteKind, "noteKind");
    QTEST(handedOn.join(u','), "handedOn");
    if (notes.isEmpty() || notes.first().kind != NoteKind::WinningConfirmation)
        return;
    // Saved before the note, so the total adds what was just typed.
    QCOMPARE(e.stored("SalePrice").toLongLong(), 150000);
    QCOMPARE(e.stored("InsuranceCost").toLongLong(), 0);
    QCOMPARE(e.field(11)->text() + u' ' + e.field(29)->text(), QStringLiteral("$15.00 $0.00"));
    QVERIFY2(notes.first().body.contains(QLatin1String(
                 "   Your bid: $15.00\r\n   Shipping: $3.20\r\n   Total: $18.20\r\n\r\nPlease")),
             qPrintable(notes.first().body));
}

void TestEndingAuction::feedback()
{
    TestEnvironment env;
    OptionsRecord& o = env.context().state.options;
    o.userEmail = QStringLiteral("sam@example.com");
    o.ebayPassword = QStringLiteral("pa\"ss");
    o.ebayLeaveFeedback = QStringLiteral("http://127.0.0.1:9/leave"); // never asked: cached
    o.ebayViewFeedback = QStringLiteral("http://127.0.0.1:9/view?userid=");
    env.writeFile(QStringLiteral("Leave.htm"),
                  "<form><input type=\"text\" name=\"otheruserid\" size=\"40\">\r\n"
                  "<input type=\"password\" name=\"pass\" size=\"40\">\r\n"
                  "<input type=\"text\" name=\"itemno\" size=\"40\"></form>\r\n");
    Ending e(env);
    e.type(16, QStringLiteral(" lee@example.com "));
    e.action(QStringLiteral("mnuFeedbackLeave"))->trigger();
    QFile page(env.path(QStringLiteral("temp.htm")));
    QVERIFY(page.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(page.readAll()),
             QStringLiteral("<form><input type=\"text\" name=\"otheruserid\" size=\"40\"  "
                            "value=' lee@example.com '>\r\n<input type=\"password\" name=\"pass\" "
                            "size=\"40\" value=pa&quot;ss>\r\n<input type=\"text\" name=\"itemno\" "
                            "size=\"40\"  value='123456789'></form>\r\n\r\n"));
    QVERIFY(e.feedbackDone()->isChecked());
    e.window->toolButton(QStringLiteral("FeedbackView"))->trigger();
    QStringList opened;
    for (const auto& call : env.shell().opened)
        opened << call.target;
    QCOMPARE(opened, (QStringList{env.path(QStringLiteral("temp.htm")),
                                  "http://127.0.0.1:9/view?userid=lee@example.com"}));
    QCOMPARE(env.prompts().shown().size(), 0);
}

QTEST_MAIN(TestEndingAuction)
#include "tst_frmendingauction.moc"
