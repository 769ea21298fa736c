#include "../support/SmtpFixture.h"
#include "../support/TestEnvironment.h"
#include "settings/SettingsCatalogue.h"
#include "settings/frmOptions.h"

#include <QtTest>
#include <QtWidgets>

using namespace Qt::StringLiterals;

namespace {
// Table rows. Several keys and their values are written "Key1|Key2" and "value1|value2".
// Field: input is typed (then the field is left) or a list index, none for a click; a preset
// ("Key=value|...", empty: nothing stored) gives the row a store of its own and what the dialog
// then shows, else rows share one store.
// clang-format off
struct Field { QString control, input, keys, written, preset = {}, shows = {}; };
struct Closing { QString typedInto; QStringList buttons; bool applied, startKept, leaveKept; };
struct Box { QString control, title; bool exclamation; QString opening, ending; };
// clang-format on
} // namespace

class tst_frmOptions : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<frmOptions> m_dialog;

    void open()
    {
        m_dialog = std::make_unique<frmOptions>(m_env->context());
        m_dialog->show();
        m_dialog->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_dialog.get()));
    }
    template <class T = QWidget> T* child(const QString& name) const
    {
        T* found = m_dialog->findChild<T*>(name);
        return found ? found : (qFatal("no control %s", qPrintable(name)), nullptr);
    }
    QLineEdit* edit(const QString& name) const { return child<QLineEdit>(name); }
    void click(QString n) const { QTest::mouseClick(child<QAbstractButton>(n), Qt::LeftButton); }
    // What a person reads off a control: its text, its list entry, or "on"/"off".
    QString shown(const QString& name) const
    {
        QWidget* w = child(name);
        if (auto* e = qobject_cast<QLineEdit*>(w))
            return e->text();
        if (auto* c = qobject_cast<QComboBox*>(w))
            return c->currentText();
        if (auto* spin = qobject_cast<QSpinBox*>(w))
            return QString::number(spin->value());
        return qobject_cast<QAbstractButton*>(w)->isChecked() ? "on" : "off";
    }
    // Types into a field the way a person does: focus, select all, type. Where the text holds
    // "⋮" the field's context menu opens and closes, where it holds "⇥" another window is
    // active for a while; neither moves the focus within the dialog.
    void retype(const QString& name, const QString& text) const
    {
        edit(name)->setFocus();
        edit(name)->selectAll();
        QTest::keyClick(edit(name), Qt::Key_Backspace);
        for (QString part : text.split(QRegularExpression(u"(?=[⋮⇥])"_s))) {
            if (part.startsWith(u'⋮') || part.startsWith(u'⇥')) {
                const auto why =
                    part.startsWith(u'⋮') ? Qt::PopupFocusReason : Qt::ActiveWindowFocusReason;
                QFocusEvent out(QEvent::FocusOut, why), in(QEvent::FocusIn, why);
                QApplication::sendEvent(edit(name), &out);
                QApplication::sendEvent(edit(name), &in);
                part.remove(0, 1);
            }
            QTest::keyClicks(edit(name), part);
        }
    }

private slots:
    void init()
    {
        // Every Apply writes every key, so round-trip rows (run first) can share one store.
        if (!m_env || QTest::currentTestFunction() != QByteArray("everyFieldRoundTrips"))
            m_env = std::make_unique<TestEnvironment>();
        open();
    }
    void cleanup()
    {
        QVERIFY2(m_env->prompts().unexpected().isEmpty(),
                 qPrintable(m_env->prompts().unexpected().join(u'\n')));
        m_dialog.reset();
    }

    // Each control loaded or changed, applied, then read back from the store and a new dialog.
    // Number fields refuse all but digits; three fields are tidied when left.
    void everyFieldRoundTrips_data()
    {
        QTest::addColumn<Field>("row");
        const auto row = [](const Field& f) {
            QTest::newRow(qPrintable(f.control + u' ' + f.input + u' ' + f.preset)) << f;
        };
        // Text is kept as typed, blanks and quotes included; the value suits the tidied fields.
        const QString v = " 'x'  y/", empty = ""; // empty, not null
        // clang-format off
        row({"chkProxy", "", "UseProxy", "1"}); // before the proxy fields, which switch it on
        row({"spnResizeLongestSide", "2400", "ResizeLongestSide", "2400"}); // while ticked
        row({"spnResizeJpegQuality", "70",   "ResizeJpegQuality", "70"});
        row({"chkResizeForWeb",      "",     "ResizeForWeb",      "False"});
        // "Name Key" where the key is not the control's name.
        for (const QString name : {"UserEmail", "eBayPassword", "Location", "Feedback", "SendFrom",
                 "PayMsg", "RecdMsg", "Closing", "Signature", "FTPUserid", "FTPPassword",
                 "RemoteHost", "RemotePort", "ImageLoc", "AuctionDir", "RemoteSMTPHost",
                 "RemoteSMTPPort", "SMTPUser", "SMTPPassword", "EbayStartPage", "HomePage",
                 "ProxyServer", "CC DefaultCC", "eBayLeaveFeedback EbayLeaveFeedback",
                 "eBayViewFeedback EbayViewFeedback", "eBaySellerReport EbaySellerReport", "eBayListing EbayListing"})
            row({"txt" + name.section(u' ', 0, 0), name + v, name.section(u' ', -1), name + v});
        for (int k = 0; k < 4; ++k)
            row({QString("txtSendAddress_%1").arg(k), QString::number(k) + v, QString("SendAddress%1").arg(k), QString::number(k) + v});
        for (int n = 0; n < frmOptions::kLinkRows; ++n) {
            row({QString("txtLinkName_%1").arg(n), QString::number(n) + v, QString("LinkName %1").arg(n + 1), QString::number(n) + v});
            row({QString("txtLinkURL_%1").arg(n), QString::number(n) + v, QString("LinkURL %1").arg(n + 1), QString::number(n) + v});
        }
        row({"txtPastDays",   "1a2-3 4.5",      "PastDays",   "12345"});
        row({"txtPastDays",   "",               "PastDays",   "1"});
        row({"txtProxyPort",  "80:80x9",        "ProxyPort",  "80809"});
        row({"txtImageLoc",   "http://h⋮/~wren", "ImageLoc",  "http://h/~wren/"}); // paste, then left
        row({"txtAuctionDir", "\\pics⋮\\2004\\", "AuctionDir", "pics\\2004/"});
        row({"txtPastDays",   "⇥12",            "PastDays",   "12"});
        for (int k = 0; k < 9; ++k) // the ninth is on until switched off
            row({QString("chkPayment_%1").arg(k), "", QString("PaymentOpt %1").arg(k + 1), k == 8 ? "0" : "1"});
        for (int k = 0; k < 4; ++k)
            row({QString("chkShipping_%1").arg(k), "", QString("ShippingOpt %1").arg(k + 1), k == 3 ? "0" : "1"});
        row({"chkDaylightTime",    "", "DaylightDiff",                  "1"});
        row({"optUploadAbsolute",  "", "UploadRelative|UploadAbsolute", "False|True"});
        row({"optInternationally", "", "ShipInternationally",           "True"});
        row({"optOldCat",          "", "NewCat",                        "False"});
        row({"optAFEvery",         "", "RetrieveEveryTime",             "True"});
        row({"optOverwrite",       "", "Overwrite",                     "True"});
        row({"optYesPast",         "", "ShowPast",                      "True"});
        row({"cmbCountry", "47",  "Country|CountryNum", "Congo, Democratic Republic of the|48"});
        row({"cmbCountry", "67",  "Country|CountryNum", "Falkland Islands (Islas Makvinas)|68"});
        row({"cmbCountry", "223", "Country|CountryNum", "Zimbabwe|224"});
        row({"cmbRegion",  "1",   "Region|RegionNum",   "AZ-Phoenix|39"});
        row({"cmbRegion",  "15",  "Region|RegionNum",   "ID-Billings-Boise|5"});
        row({"cmbRegion",  "53",  "Region|RegionNum",   "WI-Milwaukee|30"});
        row({"cmbSMTPSecurity", "2", "SMTPSecurity", "SSL"});
        // What a fresh or odd store shows, and what the first Apply writes back. Picture resizing
        // is on for new settings, off for settings saved before it existed.
        const QString resize = "ResizeForWeb|ResizeLongestSide|ResizeJpegQuality";
        row({"txtPastDays",       {}, "PastDays",   "2",     empty,        "2"});
        row({"txtAuctionDir",     {}, "AuctionDir", ".\\",   empty,        ".\\"}); // never left
        row({"txtImageLoc",       {}, "ImageLoc",   "http://h", "ImageLoc=http://h", "http://h"});
        row({"chkProxy",          {}, "UseProxy",   "0",     "UseProxy=2", "off"});
        row({"chkProxy",          {}, "UseProxy",   "1",     "UseProxy=1", "on"});
        row({"optOldCat",         {}, "NewCat",     "False", "NewCat=0",   "on"});
        row({"optNoPast",         {}, "ShowPast",   "False", empty,        "on"});
        row({"optUploadRelative", {}, "UploadRelative|UploadAbsolute", "True|False", empty, "on"});
        row({"chkResizeForWeb",   {}, resize, "True|1600|85",  empty,                  "on"});
        row({"chkResizeForWeb",   {}, resize, "False|1600|85", "UploadAbsolute=False", "off"});
        row({"spnResizeLongestSide", {}, resize, "True|900|60", "ResizeLongestSide=900|ResizeJpegQuality=60", "900"});
        row({"cmbCountry",        {}, "Country|CountryNum", "United States|1", empty, "United States"});
        row({"cmbCountry",        {}, "Country|CountryNum", "Atlantis|999", "Country=Atlantis|CountryNum=999", ""});
        row({"cmbRegion",         {}, "Region|RegionNum", "Do Not List Regionally|Do not list regionally", empty, "Do Not List Regionally"});
        row({"cmbRegion",         {}, "Region|RegionNum", "Lost City|77", "Region=Lost City|RegionNum=77", ""});
        row({"cmbSMTPSecurity",   {}, "SMTPSecurity", "",         empty,                  "None"});
        row({"cmbSMTPSecurity",   {}, "SMTPSecurity", "STARTTLS", "SMTPSecurity=starttls", "STARTTLS"});
        row({"cmbSMTPSecurity",   {}, "SMTPSecurity", "SSL3",     "SMTPSecurity=SSL3",     ""});
        // clang-format on
    }
    void everyFieldRoundTrips()
    {
        QFETCH(Field, row);
        if (!row.preset.isNull()) {
            m_env = std::make_unique<TestEnvironment>();
            for (const QString& pair : row.preset.split(u'|', Qt::SkipEmptyParts))
                m_env->store().save(Settings::kApp, Settings::kOptions, pair.section(u'=', 0, 0),
                                    pair.section(u'=', 1));
            open();
            QCOMPARE(shown(row.control), row.shows);
        } else if (auto* e = m_dialog->findChild<QLineEdit*>(row.control)) {
            if (!e->isEnabled())
                click(u"chkProxy"_s); // the proxy fields take text once it is switched on
            retype(row.control, row.input);
            child(u"cmdApply"_s)->setFocus();
            QCOMPARE(e->text(), row.written);
        } else if (auto* spin = m_dialog->findChild<QSpinBox*>(row.control)) {
            spin->setFocus();
            spin->selectAll();
            QTest::keyClicks(spin, row.input);
        } else if (auto* combo = m_dialog->findChild<QComboBox*>(row.control)) {
            combo->setCurrentIndex(row.input.toInt());
        } else {
            click(row.control);
        }
        click(u"cmdApply"_s);
        for (int i = 0; i <= row.keys.count(u'|'); ++i)
            QCOMPARE(m_env->store().get(Settings::kApp, Settings::kOptions,
                                        row.keys.section(u'|', i, i)),
                     row.written.section(u'|', i, i));
        const QString applied = shown(row.control);
        open();
        QCOMPARE(shown(row.control), applied);
        // The proxy fields and the resizing boxes follow their ticks.
        for (const char* name :
             {"txtProxyServer", "txtProxyPort", "lblProxyServer", "lblProxyPort"})
            QCOMPARE(child(name)->isEnabled(), shown("chkProxy") == u"on");
        for (const char* name : {"spnResizeLongestSide", "spnResizeJpegQuality"})
            QCOMPARE(child(name)->isEnabled(), shown("chkResizeForWeb") == u"on");
    }

    // Apply writes and stays open; OK, or Enter in a field not yet left, writes (tidied) and
    // closes; Cancel writes nothing. OK also drops the cached copy of a form whose address was
    // typed into, even when the typing was taken back.
    void closingButtons_data()
    {
        QTest::addColumn<Closing>("row");
        // clang-format off
        QTest::newRow("start page, OK")     << Closing{"txtEbayStartPage",     {"cmdOk"},     true,  false, true};
        QTest::newRow("leave feedback, OK") << Closing{"txteBayLeaveFeedback", {"cmdOk"},     true,  true,  false};
        QTest::newRow("seller report, OK")  << Closing{"txteBaySellerReport",  {"cmdOk"},     true,  true,  true};
        QTest::newRow("start page, Enter")  << Closing{"txtEbayStartPage",     {"Enter"},     true,  false, true};
        QTest::newRow("start page, Apply")  << Closing{"txtEbayStartPage",     {"cmdApply"},  true,  true,  true};
        QTest::newRow("start page, Cancel") << Closing{"txtEbayStartPage",     {"cmdCancel"}, false, true,  true};
        QTest::newRow("Apply then OK")      << Closing{"txtEbayStartPage", {"cmdApply", "cmdOk"}, true, false, true};
        // clang-format on
    }
    void closingButtons()
    {
        QFETCH(Closing, row);
        m_env->writeFile(u"Start.htm"_s, "<html>start</html>");
        m_env->writeFile(u"Leave.htm"_s, "<html>leave</html>");
        retype(row.typedInto, edit(row.typedInto)->text());
        retype(u"txtAuctionDir"_s, u"\\pics"_s);
        for (const QString& button : row.buttons)
            button == u"Enter" ? QTest::keyClick(edit(u"txtAuctionDir"_s), Qt::Key_Return)
                               : click(button);

        const bool open = row.buttons == QStringList{"cmdApply"};
        QCOMPARE(m_dialog->isVisible(), open);
        QCOMPARE(m_dialog->result(),
                 int(row.applied && !open ? QDialog::Accepted : QDialog::Rejected));
        QCOMPARE(QFile::exists(m_env->store().filePath(Settings::kApp)), row.applied);
        QCOMPARE(QFile::exists(m_env->path(u"Start.htm"_s)), row.startKept);
        QCOMPARE(QFile::exists(m_env->path(u"Leave.htm"_s)), row.leaveKept);
        const OptionsRecord& now = m_env->context().state.options; // refreshed by Apply and OK
        QCOMPARE(now.auctionDir, row.applied ? u"pics/"_s : u".\\"_s);
    }

    // The help buttons, "@" typed into the userid (the text is kept), and Test FTP and Test
    // Mail, which try the settings last applied, not what the fields hold; Test Mail signs in
    // with the applied name and password, and says goodbye.
    void messageBoxes_data()
    {
        QTest::addColumn<Box>("row");
        const QString guide = "You can find some example scenarios in the User's Guide.";
        // clang-format off
        QTest::newRow("host dir help") << Box{"cmdHelpHUL", "Host Upload Directory Help", false,
            "This field contains the location of the directory you place your files on your ",
            "relationship to the root logon directory. \n" + guide};
        QTest::newRow("web root help") << Box{"cmdHelpWRL", "Web Root Location Help", false,
            "This field is used to create the automatic links to your images in your ad ",
            "then you would place http://www.example.com/~wren/ into this field.  " + guide};
        QTest::newRow("@ in userid") << Box{"txtFTPUserid", "Invalid Userid", true,
            "Userid's don't usually have an '@' in them.  Please note this field is for Userid, "
            "not email address.  Userid is usually the just the part preceeding the '@'.  For "
            "instance, my userid is 'wren', not 'wren@example.com'.  Very few web space "
            "providers require a '@' in the userid.  If you aren't sure, don't include the '@' "
            "and everything after it.", ""};
        QTest::newRow("test FTP refused") << Box{"cmdTestFTP", "Connection failed", true,
            "The attempt to connect failed with the following message:\r\n\r\nCannot connect "
            "to server.Possible causes:\r\n\r\n1. You may not be connected to your ISP. Check "
            "your connection.", ""};
        QTest::newRow("test Mail refused") << Box{"cmdTestMail", "Connection failed", true,
            "The attempt to connect failed with the following message:\r\n\r\nCannot connect "
            "to remote server.", ""};
        QTest::newRow("test Mail signs in") << Box{"cmdTestMail", "Tallybid", false,
            "The attempt to connect to 127.0.0.1 was successful.", "successful."};
        // clang-format on
    }
    void messageBoxes()
    {
        QFETCH(Box, row);
        OptionsRecord& options = m_env->context().state.options;
        options.remoteHost = options.remoteSmtpHost = u"127.0.0.1"_s;
        options.remotePort = options.remoteSmtpPort = u"1"_s; // nothing listens there
        edit(u"txtRemoteHost"_s)->setText(u"unapplied.invalid"_s);
        edit(u"txtRemoteSMTPHost"_s)->setText(u"unapplied.invalid"_s);
        std::optional<MailServer> server;
        if (row.control == u"cmdTestMail" && !row.exclamation) {
            server.emplace(QStringList{u"--auth"_s, u"seller:secret"_s});
            QVERIFY(server->isRunning());
            options.remoteSmtpPort = QString::number(server->port());
            options.smtpUser = u"seller"_s;
            options.smtpPassword = u"secret"_s;
            edit(u"txtSMTPPassword"_s)->setText(u"unapplied"_s);
        }
        if (auto* e = qobject_cast<QLineEdit*>(child(row.control))) {
            QTest::keyClicks(e, u"wren@example.com"_s); // one box, at the "@"
            QCOMPARE(e->text(), u"wren@example.com"_s);
        } else {
            click(row.control);
        }
        QCOMPARE(m_env->prompts().shown().size(), 1);
        const ScriptedPrompts::Shown& box = m_env->prompts().shown().first();
        QCOMPARE(box.title, row.title);
        QCOMPARE(box.icon, row.exclamation ? PromptIcon::Exclamation : PromptIcon::None);
        QVERIFY2(box.text.startsWith(row.opening) && box.text.endsWith(row.ending),
                 qPrintable(box.text));
        QVERIFY(!QApplication::overrideCursor()); // the hourglass is gone again
        if (server)
            QCOMPARE(server->events().mid(1), (QStringList{u"AUTH PLAIN seller ok"_s, u"QUIT"_s}));
    }

    // Layout on every tab is tst_windowfit's; here each tab, once chosen, sits whole on the tab
    // bar, not merely reachable.
    void everyTabIsWholeOnTheBar()
    {
        QTabBar* bar = child<QTabWidget>(u"TabStrip1"_s)->tabBar();
        for (int i = 0; i < bar->count(); ++i) {
            bar->setCurrentIndex(i);
            QCoreApplication::processEvents();
            QVERIFY2(bar->rect().contains(bar->tabRect(i)), qPrintable(bar->tabText(i)));
        }
    }
};

QTEST_MAIN(tst_frmOptions)
#include "tst_frmoptions.moc"
