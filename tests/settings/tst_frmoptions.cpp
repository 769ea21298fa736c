#include "../support/TestEnvironment.h"
#include "platform/FtpErrors.h"
#include "settings/OptionsTexts.h"
#include "settings/SettingsCatalogue.h"
#include "settings/frmOptions.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QtTest>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {
const QString kAbsent; // a null text: the key was never written

// A port on 127.0.0.1 that nothing listens on: bound once to learn a free number, then let go.
int closedLocalPort()
{
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    int port = 0;
    if (::bind(fd, reinterpret_cast<sockaddr*>(&address), length) == 0 &&
        ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) == 0)
        port = ntohs(address.sin_port);
    ::close(fd);
    return port;
}
} // namespace

class tst_frmOptions : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<frmOptions> m_dialog;
    QString m_sharedBy; // the test function whose rows share one store

    // Rows of these tests touch keys of their own, so they share one store: the first Apply
    // writes every setting, the later ones only what changed.
    static bool sharesStore(const char* function)
    {
        static const QSet<QByteArray> shared = {"textFieldRoundTrip", "switchRoundTrip",
                                                "untouchedSwitchesWriteTheirDefaults"};
        return shared.contains(function);
    }

    void open()
    {
        m_dialog = std::make_unique<frmOptions>(m_env->context());
        m_dialog->show();
        m_dialog->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_dialog.get()));
    }
    template <class T> T* child(const QString& name) const
    {
        T* found = m_dialog->findChild<T*>(name);
        if (!found)
            qFatal("no control %s", qPrintable(name));
        return found;
    }
    QLineEdit* edit(const QString& name) const { return child<QLineEdit>(name); }
    void click(const QString& name) const
    {
        QTest::mouseClick(child<QAbstractButton>(name), Qt::LeftButton);
    }
    QString stored(const QString& key) const
    {
        return m_env->store().get(Settings::kApp, Settings::kOptions, key, kAbsent);
    }
    void store(const QString& key, const QString& value)
    {
        m_env->store().save(Settings::kApp, Settings::kOptions, key, value);
    }
    // Types into a field the way a person does: focus, select all, type.
    void retype(const QString& name, const QString& text) const
    {
        QLineEdit* e = edit(name);
        e->setFocus();
        e->selectAll();
        QTest::keyClick(e, Qt::Key_Backspace);
        QTest::keyClicks(e, text);
    }

private slots:
    void init()
    {
        const QString function = QString::fromLatin1(QTest::currentTestFunction());
        if (!m_env || m_sharedBy != function)
            m_env = std::make_unique<TestEnvironment>();
        m_sharedBy = sharesStore(QTest::currentTestFunction()) ? function : QString();
        m_env->prompts().clear();
        open();
    }
    void cleanup()
    {
        QVERIFY2(m_env->prompts().unexpected().isEmpty(),
                 qPrintable(m_env->prompts().unexpected().join(u'\n')));
        m_dialog.reset();
        if (m_sharedBy.isEmpty())
            m_env.reset();
    }

    void textFieldRoundTrip_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        const auto row = [](const char* control, const char* key, const QString& value = {}) {
            QTest::newRow(control)
                << control << key
                << (value.isNull() ? QStringLiteral(" %1 'x'  y ").arg(key) : value);
        };
        row("txtUserEmail", "UserEmail");
        row("txteBayPassword", "eBayPassword");
        row("txtLocation", "Location");
        row("txtFeedback", "Feedback");
        row("txtSendFrom", "SendFrom");
        row("txtCC", "DefaultCC");
        row("txtPayMsg", "PayMsg");
        row("txtRecdMsg", "RecdMsg");
        row("txtSendAddress_0", "SendAddress0");
        row("txtSendAddress_3", "SendAddress3");
        row("txtClosing", "Closing");
        row("txtSignature", "Signature");
        row("txtFTPUserid", "FTPUserid");
        row("txtFTPPassword", "FTPPassword");
        row("txtRemoteHost", "RemoteHost");
        row("txtRemotePort", "RemotePort", QStringLiteral("2121"));
        row("txtImageLoc", "ImageLoc", QStringLiteral("http://www.example.com/~wren/"));
        row("txtAuctionDir", "AuctionDir", QStringLiteral("auction/pics/"));
        row("txtRemoteSMTPHost", "RemoteSMTPHost");
        row("txtRemoteSMTPPort", "RemoteSMTPPort", QStringLiteral("587"));
        row("txtEbayStartPage", "EbayStartPage");
        row("txteBayLeaveFeedback", "EbayLeaveFeedback");
        row("txteBayViewFeedback", "EbayViewFeedback");
        row("txteBaySellerReport", "EbaySellerReport");
        row("txteBayListing", "EbayListing");
        row("txtHomePage", "HomePage");
        row("txtPastDays", "PastDays", QStringLiteral("30"));
        row("txtProxyServer", "ProxyServer");
        row("txtProxyPort", "ProxyPort", QStringLiteral("8080"));
        row("txtLinkName_0", "LinkName 1");
        row("txtLinkURL_0", "LinkURL 1");
        row("txtLinkName_9", "LinkName 10");
        row("txtLinkURL_9", "LinkURL 10");
    }
    void textFieldRoundTrip()
    {
        QFETCH(QString, control);
        QFETCH(QString, key);
        QFETCH(QString, value);
        edit(control)->setText(value);
        click(QStringLiteral("cmdApply"));
        QCOMPARE(stored(key), value);
        QVERIFY(m_dialog->isVisible()); // Apply keeps the dialog open

        open();
        QCOMPARE(edit(control)->text(), value);
    }

    void switchRoundTrip_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("expected");
        // clang-format off
        QTest::newRow("payment 1 on")    << "chkPayment_0"       << "PaymentOpt 1"        << "1";
        QTest::newRow("payment 8 on")    << "chkPayment_7"       << "PaymentOpt 8"        << "1";
        QTest::newRow("payment 9 off")   << "chkPayment_8"       << "PaymentOpt 9"        << "0";
        QTest::newRow("shipping 1 on")   << "chkShipping_0"      << "ShippingOpt 1"       << "1";
        QTest::newRow("shipping 4 off")  << "chkShipping_3"      << "ShippingOpt 4"       << "0";
        QTest::newRow("daylight")        << "chkDaylightTime"    << "DaylightDiff"        << "1";
        QTest::newRow("proxy")           << "chkProxy"           << "UseProxy"            << "1";
        QTest::newRow("absolute")        << "optUploadAbsolute"  << "UploadRelative"      << "False";
        QTest::newRow("absolute too")    << "optUploadAbsolute"  << "UploadAbsolute"      << "True";
        QTest::newRow("international")   << "optInternationally" << "ShipInternationally" << "True";
        QTest::newRow("old categories")  << "optOldCat"          << "NewCat"              << "False";
        QTest::newRow("form every time") << "optAFEvery"         << "RetrieveEveryTime"   << "True";
        QTest::newRow("overwrite")       << "optOverwrite"       << "Overwrite"           << "True";
        QTest::newRow("show past")       << "optYesPast"         << "ShowPast"            << "True";
        // clang-format on
    }
    void switchRoundTrip()
    {
        QFETCH(QString, control);
        QFETCH(QString, key);
        QFETCH(QString, expected);
        click(control);
        const bool checked = child<QAbstractButton>(control)->isChecked();
        click(QStringLiteral("cmdApply"));
        QCOMPARE(stored(key), expected);

        open();
        QCOMPARE(child<QAbstractButton>(control)->isChecked(), checked);
    }

    void untouchedSwitchesWriteTheirDefaults_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("expected");
        // clang-format off
        QTest::newRow("PaymentOpt 9")      << "PaymentOpt 9"      << "1";
        QTest::newRow("ShippingOpt 1")     << "ShippingOpt 1"     << "0";
        QTest::newRow("UploadRelative")    << "UploadRelative"    << "True";
        QTest::newRow("UploadAbsolute")    << "UploadAbsolute"    << "False";
        QTest::newRow("NewCat")            << "NewCat"            << "True";
        QTest::newRow("ShowPast")          << "ShowPast"          << "False";
        QTest::newRow("UseProxy")          << "UseProxy"          << "0";
        QTest::newRow("PastDays as shown") << "PastDays"          << "2";
        QTest::newRow("CountryNum")        << "CountryNum"        << "1";
        QTest::newRow("Region as listed")  << "Region"            << "Do Not List Regionally";
        QTest::newRow("RegionNum unset")   << "RegionNum"         << "Do not list regionally";
        // clang-format on
    }
    void untouchedSwitchesWriteTheirDefaults()
    {
        QFETCH(QString, key);
        QFETCH(QString, expected);
        click(QStringLiteral("cmdApply"));
        QCOMPARE(stored(key), expected);
    }

    void storedValuesShowInControls_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("shown"); // a field's text, or "on"/"off" for a button
        // clang-format off
        QTest::newRow("past days absent") << "PastDays"       << kAbsent  << "txtPastDays"       << "2";
        QTest::newRow("past days stored") << "PastDays"       << "5"      << "txtPastDays"       << "5";
        QTest::newRow("proxy 2 is not 1") << "UseProxy"       << "2"      << "chkProxy"          << "off";
        QTest::newRow("payment 9 off")    << "PaymentOpt 9"   << "0"      << "chkPayment_8"      << "off";
        QTest::newRow("relative absent")  << "UploadRelative" << kAbsent  << "optUploadRelative" << "on";
        QTest::newRow("new cat absent")   << "NewCat"         << kAbsent  << "optNewCat"         << "on";
        QTest::newRow("old cat as 0")     << "NewCat"         << "0"      << "optOldCat"         << "on";
        QTest::newRow("no past absent")   << "ShowPast"       << kAbsent  << "optNoPast"         << "on";
        QTest::newRow("host dir default") << "AuctionDir"     << kAbsent  << "txtAuctionDir"     << ".\\";
        QTest::newRow("seeded link")      << "LinkName 3" << "UPS Tracking" << "txtLinkName_2"   << "UPS Tracking";
        // clang-format on
    }
    void storedValuesShowInControls()
    {
        QFETCH(QString, key);
        QFETCH(QString, value);
        QFETCH(QString, control);
        QFETCH(QString, shown);
        if (!value.isNull())
            store(key, value);
        open();
        if (auto* button = m_dialog->findChild<QAbstractButton*>(control))
            QCOMPARE(button->isChecked() ? QStringLiteral("on") : QStringLiteral("off"), shown);
        else
            QCOMPARE(edit(control)->text(), shown);
    }

    void listChoicesWriteNameAndCode_data()
    {
        QTest::addColumn<QString>("list");
        QTest::addColumn<int>("index"); // -1: one key press Down instead
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("code");
        QTest::newRow("United Kingdom") << "cmbCountry" << 2 << "United Kingdom"
                                        << "3";
        QTest::newRow("last country") << "cmbCountry" << 223 << "Zimbabwe"
                                      << "224";
        QTest::newRow("country by key") << "cmbCountry" << -1 << "Canada"
                                        << "2";
        QTest::newRow("Austin") << "cmbRegion" << 46 << "TX-Austin"
                                << "3";
        QTest::newRow("region by key") << "cmbRegion" << -1 << "AZ-Phoenix"
                                       << "39";
        QTest::newRow("no region") << "cmbRegion" << 0 << "Do Not List Regionally"
                                   << "0";
    }
    void listChoicesWriteNameAndCode()
    {
        QFETCH(QString, list);
        QFETCH(int, index);
        QFETCH(QString, name);
        QFETCH(QString, code);
        auto* combo = child<QComboBox>(list);
        if (index < 0) {
            if (list == QLatin1String("cmbRegion")) // start from the first entry
                combo->setCurrentIndex(0);
            combo->setFocus();
            QTest::keyClick(combo, Qt::Key_Down);
        } else {
            if (combo->currentIndex() == index) // a choice, not the entry shown at opening
                combo->setCurrentIndex(index + 1);
            combo->setCurrentIndex(index);
        }
        click(QStringLiteral("cmdApply"));
        const QString prefix = list == QLatin1String("cmbCountry") ? QStringLiteral("Country")
                                                                   : QStringLiteral("Region");
        QCOMPARE(stored(prefix), name);
        QCOMPARE(stored(prefix + QLatin1String("Num")), code);

        open();
        QCOMPARE(child<QComboBox>(list)->currentText(), name);
    }

    void valuesOutsideTheListsSurviveApply()
    {
        store(QStringLiteral("Country"), QStringLiteral("Atlantis"));
        store(QStringLiteral("CountryNum"), QStringLiteral("999"));
        store(QStringLiteral("Region"), QStringLiteral("Lost City"));
        store(QStringLiteral("RegionNum"), QStringLiteral("77"));
        open();
        click(QStringLiteral("cmdApply"));
        QCOMPARE(stored(QStringLiteral("Country")), QStringLiteral("Atlantis"));
        QCOMPARE(stored(QStringLiteral("CountryNum")), QStringLiteral("999"));
        QCOMPARE(stored(QStringLiteral("Region")), QStringLiteral("Lost City"));
        QCOMPARE(stored(QStringLiteral("RegionNum")), QStringLiteral("77"));
    }

    void fieldsTidiedOnFocusLoss_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("expected");
        QTest::newRow("host dir backslashes") << "txtAuctionDir"
                                              << "\\images\\"
                                              << "images/";
        QTest::newRow("host dir word") << "txtAuctionDir"
                                       << "images"
                                       << "images/";
        QTest::newRow("host dir empty") << "txtAuctionDir"
                                        << ""
                                        << "";
        QTest::newRow("web images url") << "txtImageLoc"
                                        << "http://www.example.com/~wren"
                                        << "http://www.example.com/~wren/";
        QTest::newRow("past days empty") << "txtPastDays"
                                         << ""
                                         << "1";
        QTest::newRow("other fields as typed") << "txtRemoteHost"
                                               << " ftp.example.com "
                                               << " ftp.example.com ";
    }
    void fieldsTidiedOnFocusLoss()
    {
        QFETCH(QString, control);
        QFETCH(QString, typed);
        QFETCH(QString, expected);
        retype(control, typed);
        QCOMPARE(edit(control)->text(), typed);
        edit(QStringLiteral("txtFTPPassword"))->setFocus();
        QCOMPARE(edit(control)->text(), expected);
    }

    void enterAppliesTidiedTextWithoutLeavingTheField()
    {
        retype(QStringLiteral("txtAuctionDir"), QStringLiteral("\\pics"));
        QTest::keyClick(edit(QStringLiteral("txtAuctionDir")), Qt::Key_Return);
        QCOMPARE(m_dialog->result(), int(QDialog::Accepted));
        QVERIFY(!m_dialog->isVisible());
        QCOMPARE(stored(QStringLiteral("AuctionDir")), QStringLiteral("pics/"));
        QCOMPARE(m_env->context().state.options.auctionDir, QStringLiteral("pics/"));
    }

    void numberFieldsTakeOnlyDigits_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("expected");
        QTest::newRow("past days") << "txtPastDays"
                                   << "1a2-3 4."
                                   << "1234";
        QTest::newRow("proxy port") << "txtProxyPort"
                                    << "80:80x"
                                    << "8080";
        QTest::newRow("proxy server takes all") << "txtProxyServer"
                                                << "proxy:8"
                                                << "proxy:8";
    }
    void numberFieldsTakeOnlyDigits()
    {
        QFETCH(QString, control);
        QFETCH(QString, typed);
        QFETCH(QString, expected);
        click(QStringLiteral("chkProxy"));
        retype(control, typed);
        QCOMPARE(edit(control)->text(), expected);
        QTest::keyClick(edit(control), Qt::Key_Backspace);
        QCOMPARE(edit(control)->text(), expected.chopped(1));
    }

    void atSignInUseridWarnsAndIsKept()
    {
        QLineEdit* userid = edit(QStringLiteral("txtFTPUserid"));
        userid->setFocus();
        QTest::keyClicks(userid, QStringLiteral("wren"));
        QVERIFY(m_env->prompts().shown().isEmpty());
        QTest::keyClick(userid, Qt::Key_At);
        QCOMPARE(m_env->prompts().shown().size(), 1);
        QTest::keyClicks(userid, QStringLiteral("example.com"));
        QCOMPARE(userid->text(), QStringLiteral("wren@example.com"));

        const ScriptedPrompts::Shown& box = m_env->prompts().shown().at(0);
        QCOMPARE(box.title, QStringLiteral("Invalid Userid"));
        QCOMPARE(box.icon, PromptIcon::Exclamation);
        QCOMPARE(box.buttons, PromptButtons::Ok);
        QVERIFY(box.text.startsWith(QLatin1String(
            "Userid's don't usually have an '@' in them.  Please note this field is for Userid, "
            "not email address.  Userid is usually the just the part preceeding the '@'.  For "
            "instance, my userid is 'wren', not ")));
        QVERIFY(box.text.endsWith(QLatin1String(
            ".  Very few web space providers require a '@' in the userid.  If you aren't sure, "
            "don't include the '@' and everything after it.")));
        QVERIFY(box.text.contains(QLatin1String("wren@")));
    }

    void okDropsCachedFormsThatWereTypedInto_data()
    {
        QTest::addColumn<QString>("typedInto");
        QTest::addColumn<QStringList>("buttons");
        QTest::addColumn<bool>("startKept");
        QTest::addColumn<bool>("leaveKept");
        const QStringList ok{"cmdOk"};
        // clang-format off
        QTest::newRow("nothing typed, OK")  << ""                     << ok << true  << true;
        QTest::newRow("start page, OK")     << "txtEbayStartPage"     << ok << false << true;
        QTest::newRow("leave feedback, OK") << "txteBayLeaveFeedback" << ok << true  << false;
        QTest::newRow("seller report, OK")  << "txteBaySellerReport"  << ok << true  << true;
        QTest::newRow("start page, Apply")  << "txtEbayStartPage" << QStringList{"cmdApply"}  << true << true;
        QTest::newRow("start page, Cancel") << "txtEbayStartPage" << QStringList{"cmdCancel"} << true << true;
        QTest::newRow("start page, Apply then OK")
            << "txtEbayStartPage" << QStringList{"cmdApply", "cmdOk"} << false << true;
        // clang-format on
    }
    void okDropsCachedFormsThatWereTypedInto()
    {
        QFETCH(QString, typedInto);
        QFETCH(QStringList, buttons);
        QFETCH(bool, startKept);
        QFETCH(bool, leaveKept);
        m_env->writeFile(QStringLiteral("Start.htm"), "<html>start</html>");
        m_env->writeFile(QStringLiteral("Leave.htm"), "<html>leave</html>");
        if (!typedInto.isEmpty()) {
            // A key typed and taken back: the address ends up unchanged, the cache still goes.
            QLineEdit* e = edit(typedInto);
            const QString before = e->text();
            e->setFocus();
            e->end(false);
            QTest::keyClick(e, Qt::Key_X);
            QTest::keyClick(e, Qt::Key_Backspace);
            QCOMPARE(e->text(), before);
        }
        for (const QString& button : buttons)
            click(button);
        QCOMPARE(QFile::exists(m_env->path(QStringLiteral("Start.htm"))), startKept);
        QCOMPARE(QFile::exists(m_env->path(QStringLiteral("Leave.htm"))), leaveKept);
    }

    void cancelWritesNothing()
    {
        const OptionsRecord before = m_env->context().state.options;
        retype(QStringLiteral("txtRemoteHost"), QStringLiteral("ftp.example.com"));
        retype(QStringLiteral("txtAuctionDir"), QStringLiteral("pics"));
        click(QStringLiteral("chkPayment_0"));
        click(QStringLiteral("optOverwrite"));
        child<QComboBox>(QStringLiteral("cmbCountry"))->setCurrentIndex(1);
        click(QStringLiteral("cmdCancel"));
        QCOMPARE(m_dialog->result(), int(QDialog::Rejected));
        QVERIFY(!m_dialog->isVisible());
        QVERIFY(!QFile::exists(m_env->store().filePath(Settings::kApp)));
        QCOMPARE(m_env->context().state.options.remoteHost, before.remoteHost);
    }

    void applyRefreshesTheApplicationWideCopy()
    {
        retype(QStringLiteral("txtRemoteHost"), QStringLiteral("ftp.example.com"));
        click(QStringLiteral("optUploadAbsolute"));
        click(QStringLiteral("chkPayment_4"));
        QVERIFY(m_env->context().state.options.remoteHost.isEmpty());
        click(QStringLiteral("cmdApply"));
        const OptionsRecord& options = m_env->context().state.options;
        QCOMPARE(options.remoteHost, QStringLiteral("ftp.example.com"));
        QVERIFY(!options.uploadRelative);
        QCOMPARE(options.paymentOpt[4], 1);
        QCOMPARE(options.pastDays, 2);
    }

    void proxyFieldsFollowTheCheckBox()
    {
        const QStringList controls = {"txtProxyServer", "txtProxyPort", "lblProxyServer",
                                      "lblProxyPort"};
        for (const QString& name : controls)
            QVERIFY2(!child<QWidget>(name)->isEnabled(), qPrintable(name));
        click(QStringLiteral("chkProxy"));
        for (const QString& name : controls)
            QVERIFY2(child<QWidget>(name)->isEnabled(), qPrintable(name));
        click(QStringLiteral("chkProxy"));
        QVERIFY(!child<QWidget>(QStringLiteral("txtProxyServer"))->isEnabled());

        store(QStringLiteral("UseProxy"), QStringLiteral("1"));
        open();
        QVERIFY(child<QWidget>(QStringLiteral("txtProxyPort"))->isEnabled());
    }

    void helpButtonsExplainTheirFields_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("opening");
        QTest::newRow("host upload dir")
            << "cmdHelpHUL"
            << "Host Upload Directory Help"
            << "This field contains the location of the directory you place your files on your "
               "ISP in relationship to the login directory. Once TB logs onto your FTP Server, ";
        QTest::newRow("web root")
            << "cmdHelpWRL"
            << "Web Root Location Help"
            << "This field is used to create the automatic links to your images in your ad "
               "listing. TB takes the name of your image files, and tacks it onto the end of "
               "this setting to create the link.  Therefore, ";
    }
    void helpButtonsExplainTheirFields()
    {
        QFETCH(QString, button);
        QFETCH(QString, title);
        QFETCH(QString, opening);
        click(button);
        QCOMPARE(m_env->prompts().shown().size(), 1);
        const ScriptedPrompts::Shown& box = m_env->prompts().shown().at(0);
        QCOMPARE(box.title, title);
        QVERIFY(box.text.startsWith(opening));
        QVERIFY(box.text.endsWith(QLatin1String("You can find some example scenarios in the "
                                                "User's Guide.")));
        QCOMPARE(box.text.count(u'\n'), 1);
    }

    void pointerLabelOpensTheSetupPage()
    {
        auto* label = child<QLabel>(QStringLiteral("lblWebPageLocPointer"));
        QVERIFY(label->text().startsWith(QLatin1String(
            "From time to time, eBay needs to change its URL's to keep up with demand.  When "
            "this happens, Tallybid must also be reconfigured to point to the new loc")));
        child<QTabWidget>(QStringLiteral("TabStrip1"))
            ->setCurrentWidget(child<QWidget>(QStringLiteral("framTabFrame_4")));
        QTest::mouseClick(label, Qt::LeftButton);
        QCOMPARE(m_env->shell().opened.size(), 1);
        QCOMPARE(m_env->shell().opened.at(0).target, m_env->path(QStringLiteral("URLSetup.htm")));
        QCOMPARE(m_env->shell().opened.at(0).workingDir, m_env->appPath());
    }

    void testFtpReportsRefusedConnection()
    {
        const int closedPort = closedLocalPort();
        QVERIFY(closedPort > 0);

        // The test uses what was last applied, not what the fields hold now.
        m_env->context().state.options.remoteHost = QStringLiteral("127.0.0.1");
        m_env->context().state.options.remotePort = QString::number(closedPort);
        edit(QStringLiteral("txtRemoteHost"))->setText(QStringLiteral("unapplied.invalid"));
        click(QStringLiteral("cmdTestFTP"));

        QCOMPARE(m_env->prompts().shown().size(), 1);
        const ScriptedPrompts::Shown& box = m_env->prompts().shown().at(0);
        QCOMPARE(box.title, QStringLiteral("Connection failed"));
        QCOMPARE(box.icon, PromptIcon::Exclamation);
        QCOMPARE(box.text, ftpErrorMessage(22008));
        QVERIFY(box.text.contains(QLatin1String("Cannot connect to server.Possible causes:")));
        QVERIFY(!QApplication::overrideCursor()); // hourglass gone again
        QVERIFY(!child<QPushButton>(QStringLiteral("cmdTestMail"))->isEnabled());
    }

    // Every control fits at the default size: none narrower or lower than it needs, none
    // overlapping another, none outside its tab. TB_SCREENSHOT_DIR keeps a picture of each tab.
    void everyTabFitsAtTheDefaultSize()
    {
        auto* tabs = child<QTabWidget>(QStringLiteral("TabStrip1"));
        QCOMPARE(tabs->count(), 7);
        const QTabBar* bar = tabs->tabBar();
        for (int i = 0; i < tabs->count(); ++i) // every tab's title shows in full
            QVERIFY2(bar->rect().contains(bar->tabRect(i)), qPrintable(tabs->tabText(i)));
        const QString shots = qEnvironmentVariable("TB_SCREENSHOT_DIR");
        for (int i = 0; i < tabs->count(); ++i) {
            tabs->setCurrentIndex(i);
            QWidget* page = tabs->widget(i);
            QCOMPARE(page->objectName(), QStringLiteral("framTabFrame_%1").arg(i));
            QCoreApplication::processEvents();
            if (!shots.isEmpty())
                m_dialog->grab().save(shots + QStringLiteral("/frmOptions_%1.png").arg(i));

            QList<QWidget*> leaves;
            for (QWidget* w : page->findChildren<QWidget*>()) {
                const bool container =
                    !w->findChildren<QWidget*>(Qt::FindDirectChildrenOnly).isEmpty() &&
                    !qobject_cast<QComboBox*>(w);
                if (w->isVisibleTo(page) && !container && !w->objectName().startsWith(u'q'))
                    leaves << w;
            }
            QVERIFY(leaves.size() > 3);
            for (QWidget* w : leaves) {
                const QRect r(w->mapTo(page, QPoint(0, 0)), w->size());
                const QString name = tabs->tabText(i) + u'/' + w->objectName();
                QVERIFY2(page->rect().contains(r), qPrintable(name + " outside its tab"));
                const QSize need = w->minimumSizeHint();
                const auto* label = qobject_cast<QLabel*>(w);
                if (label && label->wordWrap())
                    QVERIFY2(w->height() >= label->heightForWidth(w->width()),
                             qPrintable(name + " clipped"));
                else
                    QVERIFY2(w->width() >= need.width() && w->height() >= need.height(),
                             qPrintable(name + " clipped"));
                for (QWidget* other : leaves) {
                    const QRect o(other->mapTo(page, QPoint(0, 0)), other->size());
                    QVERIFY2(other == w || !r.intersects(o),
                             qPrintable(name + " overlaps " + other->objectName()));
                }
            }
        }
    }
};

QTEST_MAIN(tst_frmOptions)
#include "tst_frmoptions.moc"
