#include "../support/LayoutCheck.h"
#include "../support/TestEnvironment.h"
#include "settings/SettingsCatalogue.h"
#include "settings/frmOptions.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QTabBar>
#include <QTabWidget>
#include <QtTest>

namespace {
// Table rows. Several keys and their values are written "Key1|Key2" and "value1|value2".
// clang-format off
struct Field { QString control, input, keys, expected; }; // input: text or list index
struct Stored { QString keys, preset, control, shows, written; }; // preset null: never written
struct Typing { QString control, typed, shown, left; };
struct Closing { QString typedInto; QStringList buttons; bool applied, startKept, leaveKept; };
struct Box { QString control, title; bool exclamation; QString opening, ending; };
// clang-format on
} // namespace

class tst_frmOptions : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<frmOptions> m_dialog;
    QByteArray m_envFor; // the test function m_env was made for

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
        if (!found)
            qFatal("no control %s", qPrintable(name));
        return found;
    }
    QLineEdit* edit(const QString& name) const { return child<QLineEdit>(name); }
    void click(const QString& name) const
    {
        QTest::mouseClick(child<QAbstractButton>(name), Qt::LeftButton);
    }
    // What a person reads off a control: its text, its list entry, or "on"/"off".
    QString shown(const QString& name) const
    {
        QWidget* w = child(name);
        if (auto* e = qobject_cast<QLineEdit*>(w))
            return e->text();
        if (auto* c = qobject_cast<QComboBox*>(w))
            return c->currentText();
        return qobject_cast<QAbstractButton*>(w)->isChecked() ? "on" : "off";
    }
    QString stored(const QString& keys) const
    {
        QStringList values;
        for (const QString& key : keys.split(u'|'))
            values << m_env->store().get(Settings::kApp, Settings::kOptions, key, "<absent>");
        return values.join(u'|');
    }
    // Types into a field the way a person does: focus, select all, type.
    void retype(const QString& name, const QString& text) const
    {
        edit(name)->setFocus();
        edit(name)->selectAll();
        QTest::keyClick(edit(name), Qt::Key_Backspace);
        QTest::keyClicks(edit(name), text);
    }

private slots:
    void init()
    {
        // Round-trip rows touch keys of their own, so they share one store: only the first
        // Apply writes every key (each write replaces the settings file).
        const QByteArray function = QTest::currentTestFunction();
        if (!m_env || function != m_envFor || function != "everyFieldRoundTrips")
            m_env = std::make_unique<TestEnvironment>();
        m_envFor = function;
        open();
    }
    void cleanup()
    {
        QVERIFY2(m_env->prompts().unexpected().isEmpty(),
                 qPrintable(m_env->prompts().unexpected().join(u'\n')));
        m_dialog.reset();
    }

    // Each control changed, applied, then read back from the store and from a fresh dialog.
    void everyFieldRoundTrips_data()
    {
        QTest::addColumn<Field>("row");
        const auto row = [](const Field& f) {
            QTest::newRow(qPrintable(f.control + u' ' + f.input)) << f;
        };
        // Text is kept as typed, blanks and quotes included; the value suits the tidied fields.
        const QString v = " 'x'  y/";
        // clang-format off
        for (const QString key : {"UserEmail", "eBayPassword", "Location", "Feedback", "SendFrom",
                 "PayMsg", "RecdMsg", "Closing", "Signature", "FTPUserid", "FTPPassword",
                 "RemoteHost", "RemotePort", "ImageLoc", "AuctionDir", "RemoteSMTPHost",
                 "RemoteSMTPPort", "EbayStartPage", "HomePage", "PastDays", "ProxyServer", "ProxyPort"})
            row({"txt" + key, key + v, key, key + v});
        for (const QString pair : {"txtCC DefaultCC", "txteBayLeaveFeedback EbayLeaveFeedback",
                 "txteBayViewFeedback EbayViewFeedback", "txteBaySellerReport EbaySellerReport",
                 "txteBayListing EbayListing"})
            row({pair.section(u' ', 0, 0), pair + v, pair.section(u' ', 1), pair + v});
        for (int k = 0; k < 4; ++k)
            row({QString("txtSendAddress_%1").arg(k), QString::number(k) + v, QString("SendAddress%1").arg(k), QString::number(k) + v});
        for (int n = 0; n < frmOptions::kLinkRows; ++n) {
            row({QString("txtLinkName_%1").arg(n), QString::number(n) + v, QString("LinkName %1").arg(n + 1), QString::number(n) + v});
            row({QString("txtLinkURL_%1").arg(n), QString::number(n) + v, QString("LinkURL %1").arg(n + 1), QString::number(n) + v});
        }
        for (int k = 0; k < 9; ++k) // the ninth is on until switched off
            row({QString("chkPayment_%1").arg(k), "", QString("PaymentOpt %1").arg(k + 1), k == 8 ? "0" : "1"});
        for (int k = 0; k < 4; ++k)
            row({QString("chkShipping_%1").arg(k), "", QString("ShippingOpt %1").arg(k + 1), k == 3 ? "0" : "1"});
        row({"chkDaylightTime",    "", "DaylightDiff",                  "1"});
        row({"chkProxy",           "", "UseProxy",                      "1"});
        row({"optUploadAbsolute",  "", "UploadRelative|UploadAbsolute", "False|True"});
        row({"optInternationally", "", "ShipInternationally",           "True"});
        row({"optOldCat",          "", "NewCat",                        "False"});
        row({"optAFEvery",         "", "RetrieveEveryTime",             "True"});
        row({"optOverwrite",       "", "Overwrite",                     "True"});
        row({"optYesPast",         "", "ShowPast",                      "True"});
        row({"cmbCountry", "1",   "Country|CountryNum", "Canada|2"});
        row({"cmbCountry", "223", "Country|CountryNum", "Zimbabwe|224"});
        row({"cmbRegion",  "1",   "Region|RegionNum",   "AZ-Phoenix|39"});
        row({"cmbRegion",  "46",  "Region|RegionNum",   "TX-Austin|3"});
        // clang-format on
    }
    void everyFieldRoundTrips()
    {
        QFETCH(Field, row);
        if (auto* e = m_dialog->findChild<QLineEdit*>(row.control))
            e->setText(row.input);
        else if (auto* combo = m_dialog->findChild<QComboBox*>(row.control))
            combo->setCurrentIndex(row.input.toInt());
        else
            click(row.control);
        const QString before = shown(row.control);
        click(QStringLiteral("cmdApply"));
        QCOMPARE(stored(row.keys), row.expected);
        open();
        QCOMPARE(shown(row.control), before);
    }

    // What a fresh or odd store shows, and what the first Apply writes back.
    void storedValuesLoadAndWriteBack_data()
    {
        QTest::addColumn<Stored>("row");
        const QString no;
        // clang-format off
        QTest::newRow("past days absent") << Stored{"PastDays",     no,  "txtPastDays",   "2",   "2"};
        QTest::newRow("proxy 2 is not 1") << Stored{"UseProxy",     "2", "chkProxy",      "off", "0"};
        QTest::newRow("proxy on")         << Stored{"UseProxy",     "1", "chkProxy",      "on",  "1"};
        QTest::newRow("old cat as 0")     << Stored{"NewCat",       "0", "optOldCat",     "on",  "False"};
        QTest::newRow("no past absent")   << Stored{"ShowPast",     no,  "optNoPast",     "on",  "False"};
        QTest::newRow("host dir default") << Stored{"AuctionDir",   no,  "txtAuctionDir", ".\\", "./"};
        QTest::newRow("upload absent")    << Stored{"UploadRelative|UploadAbsolute", no, "optUploadRelative", "on", "True|False"};
        QTest::newRow("country absent")   << Stored{"Country|CountryNum", no, "cmbCountry", "United States", "United States|1"};
        QTest::newRow("country unlisted") << Stored{"Country|CountryNum", "Atlantis|999", "cmbCountry", "", "Atlantis|999"};
        QTest::newRow("region absent")    << Stored{"Region|RegionNum", no, "cmbRegion", "Do Not List Regionally", "Do Not List Regionally|Do not list regionally"};
        QTest::newRow("region unlisted")  << Stored{"Region|RegionNum", "Lost City|77", "cmbRegion", "", "Lost City|77"};
        // clang-format on
    }
    void storedValuesLoadAndWriteBack()
    {
        QFETCH(Stored, row);
        for (int i = 0; !row.preset.isNull() && i <= row.keys.count(u'|'); ++i)
            m_env->store().save(Settings::kApp, Settings::kOptions, row.keys.section(u'|', i, i),
                                row.preset.section(u'|', i, i));
        open();
        QCOMPARE(shown(row.control), row.shows);
        for (const char* name :
             {"txtProxyServer", "txtProxyPort", "lblProxyServer", "lblProxyPort"})
            QCOMPARE(child(name)->isEnabled(), shown("chkProxy") == u"on");
        click(QStringLiteral("cmdApply"));
        QCOMPARE(stored(row.keys), row.written);
    }

    // Typing into a field (then one Backspace) and leaving it: number fields refuse all but
    // digits, three fields are tidied on the way out, the rest keep what was typed.
    void typingAndLeavingFields_data()
    {
        QTest::addColumn<Typing>("row");
        // clang-format off
        QTest::newRow("host dir")       << Typing{"txtAuctionDir",  "\\images\\x",      "\\images\\",     "images/"};
        QTest::newRow("web images url") << Typing{"txtImageLoc",    "http://h/~wrenx", "http://h/~wren", "http://h/~wren/"};
        QTest::newRow("past days none") << Typing{"txtPastDays",    "7",               "",               "1"};
        QTest::newRow("past days")      << Typing{"txtPastDays",    "1a2-3 4.5",       "1234",           "1234"};
        QTest::newRow("proxy port")     << Typing{"txtProxyPort",   "80:80x9",         "8080",           "8080"};
        QTest::newRow("proxy server")   << Typing{"txtProxyServer", "proxy:8x",        "proxy:8",        "proxy:8"};
        // clang-format on
    }
    void typingAndLeavingFields()
    {
        QFETCH(Typing, row);
        click(QStringLiteral("chkProxy"));
        QVERIFY(edit(QStringLiteral("txtProxyPort"))->isEnabled());
        retype(row.control, row.typed);
        QTest::keyClick(edit(row.control), Qt::Key_Backspace);
        QCOMPARE(edit(row.control)->text(), row.shown);
        edit(QStringLiteral("txtFTPPassword"))->setFocus();
        QCOMPARE(edit(row.control)->text(), row.left);
    }

    // Apply writes and stays open; OK, or Enter in a field not yet left, writes (tidied) and
    // closes; Cancel writes nothing. OK also drops the cached copy of a form whose address was
    // typed into, even when the typing was taken back.
    void closingButtons_data()
    {
        QTest::addColumn<Closing>("row");
        const QString start = "txtEbayStartPage";
        const QStringList ok{"cmdOk"};
        // clang-format off
        QTest::newRow("nothing typed, OK")  << Closing{"",                     ok, true, true,  true};
        QTest::newRow("start page, OK")     << Closing{start,                  ok, true, false, true};
        QTest::newRow("leave feedback, OK") << Closing{"txteBayLeaveFeedback", ok, true, true,  false};
        QTest::newRow("seller report, OK")  << Closing{"txteBaySellerReport",  ok, true, true,  true};
        QTest::newRow("start page, Enter")  << Closing{start, {"Enter"},            true,  false, true};
        QTest::newRow("start page, Apply")  << Closing{start, {"cmdApply"},         true,  true,  true};
        QTest::newRow("start page, Cancel") << Closing{start, {"cmdCancel"},        false, true,  true};
        QTest::newRow("Apply then OK")      << Closing{start, {"cmdApply", "cmdOk"}, true, false, true};
        // clang-format on
    }
    void closingButtons()
    {
        QFETCH(Closing, row);
        m_env->writeFile(QStringLiteral("Start.htm"), "<html>start</html>");
        m_env->writeFile(QStringLiteral("Leave.htm"), "<html>leave</html>");
        if (!row.typedInto.isEmpty()) {
            edit(row.typedInto)->setFocus();
            QTest::keyClick(edit(row.typedInto), Qt::Key_X);
            QTest::keyClick(edit(row.typedInto), Qt::Key_Backspace);
        }
        click(QStringLiteral("optUploadAbsolute"));
        retype(QStringLiteral("txtAuctionDir"), QStringLiteral("\\pics"));
        for (const QString& button : row.buttons)
            if (button == u"Enter")
                QTest::keyClick(edit(QStringLiteral("txtAuctionDir")), Qt::Key_Return);
            else
                click(button);

        const bool open = row.buttons == QStringList{"cmdApply"};
        QCOMPARE(m_dialog->isVisible(), open);
        QCOMPARE(m_dialog->result(),
                 int(row.applied && !open ? QDialog::Accepted : QDialog::Rejected));
        QCOMPARE(QFile::exists(m_env->store().filePath(Settings::kApp)), row.applied);
        QCOMPARE(QFile::exists(m_env->path(QStringLiteral("Start.htm"))), row.startKept);
        QCOMPARE(QFile::exists(m_env->path(QStringLiteral("Leave.htm"))), row.leaveKept);
        const OptionsRecord& now = m_env->context().state.options; // refreshed by Apply and OK
        QCOMPARE(now.auctionDir, row.applied ? QStringLiteral("pics/") : QStringLiteral(".\\"));
        QCOMPARE(now.uploadRelative, !row.applied);
    }

    // The help buttons, "@" typed into the userid (the text is kept), and Test FTP, which
    // tries the settings last applied, not what the fields hold.
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
        // clang-format on
    }
    void messageBoxes()
    {
        QFETCH(Box, row);
        m_env->context().state.options.remoteHost = QStringLiteral("127.0.0.1");
        m_env->context().state.options.remotePort = QStringLiteral("1"); // nothing listens there
        edit(QStringLiteral("txtRemoteHost"))->setText(QStringLiteral("unapplied.invalid"));
        if (auto* e = qobject_cast<QLineEdit*>(child(row.control))) {
            e->setFocus();
            QTest::keyClicks(e, QStringLiteral("wren"));
            QVERIFY(m_env->prompts().shown().isEmpty());
            QTest::keyClicks(e, QStringLiteral("@example.com"));
            QCOMPARE(e->text(), QStringLiteral("wren@example.com"));
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
    }

    void everyTabFitsAtTheDefaultSize()
    {
        auto* tabs = child<QTabWidget>(QStringLiteral("TabStrip1"));
        QCOMPARE(tabs->count(), 7);
        QStringList problems = layoutProblems(m_dialog.get());
        // The resize grip is drawn over the dialog's corner on purpose.
        problems.removeIf([](const QString& p) { return p.contains(u"QSizeGrip"); });
        for (int i = 0; i < tabs->count(); ++i) {
            tabs->setCurrentIndex(i);
            QCoreApplication::processEvents();
            problems << layoutProblems(tabs->currentWidget());
            if (!tabs->tabBar()->rect().contains(tabs->tabBar()->tabRect(i)))
                problems << tabs->tabText(i) + " is cut off";
        }
        QCOMPARE(problems.join(u'\n'), QString());
    }
};

QTEST_MAIN(tst_frmOptions)
#include "tst_frmoptions.moc"
