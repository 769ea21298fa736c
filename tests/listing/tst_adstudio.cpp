#include "../support/LayoutCheck.h"
#include "../support/TestEnvironment.h"
#include "FileBytes.h"
#include "listing/ListingGenerator.h"
#include "listing/frmAdStudio.h"

#include <QtTest>
#include <QtWidgets>

using namespace Qt::StringLiterals;

namespace {

// An application folder whose standard.tbt holds Default, Ocean and Plain, and its Ad Studio.
struct Studio
{
    TestEnvironment env;
    ScriptedPrompts& prompts = env.prompts();
    std::unique_ptr<frmAdStudio> form;

    Studio()
    {
        QFile::copy(QStringLiteral(TB_ADSTUDIO_DATA "/studio.tbt"), themeSet());
        form = std::make_unique<frmAdStudio>(env.context());
    }
    QString themeSet() const { return env.path(u"standard.tbt"_s); }
    QList<QByteArray> records() const { return readAll(themeSet()).split('\n'); }
    template <class T = QLineEdit> T* get(const QString& n) const { return form->findChild<T*>(n); }
    QComboBox* list() const { return get<QComboBox>(u"cmbThemes"_s); }
    // Clicks the button or triggers the menu command of that name.
    void press(const QString& name) const
    {
        QMetaObject::invokeMethod(get<QObject>(name), name.startsWith("mnu") ? "trigger" : "click");
    }
    void select(const QString& theme) const
    {
        list()->setCurrentIndex(list()->findText(theme));
        emit list()->activated(list()->currentIndex());
    }
    QStringList themes() const
    {
        QStringList names;
        for (int i = 0; i < list()->count(); ++i)
            names << list()->itemText(i);
        return names;
    }
};

} // namespace

class TestAdStudio : public QObject
{
    Q_OBJECT

private slots:
    void loadsThemes_data();
    void loadsThemes();
    void editsThroughDialogsAreSaved();
    void newSaveAsAndDelete_data();
    void newSaveAsAndDelete();
    void unsavedChangeQuestion_data();
    void unsavedChangeQuestion();
    void fileDialogs_data();
    void fileDialogs();
    void closingOnlyHides_data();
    void closingOnlyHides();
    void roleTextsRoundTrip();
    void laidOutWithoutOverlap();
};

void TestAdStudio::loadsThemes_data()
{
    // What the controls show, separated by "|": the five media boxes ("@" for the application
    // folder); flags (loop, top, bottom, left, right, inline), border width, cell alignment; the
    // heading's font and size, "bold"; the colours of the reserve text and of the table. Rows
    // are named after the theme.
    QTest::addColumn<QString>("shown");
    QTest::newRow("Default") << "|||||111111|4|Left|MS Sans Serif|16||#000000|#ffffff";
    // Tokens are expanded letter case included, each in its own field only.
    QTest::newRow("Ocean") << "@/Backgr/sea/waves.jpg|@/Sounds/surf.wav|@/Images/rope.gif|"
                              "@/Images/anchor.gif|appimagepath\\shell.gif|010010|2|Center|Arial|"
                              "20|bold|#0000ff|#c0c0c0";
    // A system colour number has no screen colour to check.
    QTest::newRow("Plain") << "AppImagePath\\x.jpg|||||101101|0|Right|Courier New|10||#000000";
}

void TestAdStudio::loadsThemes()
{
    QFETCH(QString, shown);
    const QString theme = QTest::currentDataTag();
    Studio s;
    s.select(theme == "Ocean" ? "Plain" : "Ocean"); // from another, so every control changes
    s.select(theme);
    QVERIFY(s.prompts.shown().isEmpty() && !s.form->isThemeChanged());
    QString flags;
    for (const char* box : {"chkLoop", "chkBorderImgTop", "chkBorderImgBot", "chkTitleImgLeft",
                            "chkTitleImgRight", "chkInlineImg"})
        flags += s.get<QCheckBox>(box)->isChecked() ? u'1' : u'0';
    const QFont f = s.get("txtListText_0")->font();
    QStringList controls = s.form->mediaPaths();
    controls << flags << QString::number(s.get<QSlider>("slBorderWidth")->value())
             << s.get<QComboBox>("cmbCellAlign")->currentText() << s.get("txtFont_0")->text()
             << QString::number(f.pointSize()) << (f.bold() ? "bold" : "")
             << s.get("txtListText_5")->palette().color(QPalette::Text).name()
             << s.get("txtListText_3")->palette().color(QPalette::Base).name();
    const QStringList expected = shown.replace(u'@', s.env.appPath()).split(u'|');
    QCOMPARE(controls.mid(0, expected.size()), expected);
    QVERIFY(f.family() == expected[8] && !f.italic());
}

void TestAdStudio::editsThroughDialogsAreSaved()
{
    Studio s;
    QList<QByteArray> before = s.records();
    s.select("Ocean");
    s.prompts.queueFont(QFont(u"Courier New"_s, 18, QFont::Bold));
    s.prompts.queueColor(QColor(255, 0, 0));
    s.prompts.queueColor(QColor(0, 0, 128));
    for (const char* button : {"cmdFont_2", "cmdSwatch_2", "cmdTableColor", "cmdApply"})
        s.press(button);
    QVERIFY(s.prompts.unexpected().isEmpty() && !s.form->isThemeChanged());
    QList<QByteArray> after = s.records();
    const QByteArray ocean = after.takeAt(5);
    before.removeAt(5);
    QCOMPARE(after, before); // header and the other themes untouched
    QVERIFY(ocean.startsWith("\"Ocean\",8388608,"));
    QVERIFY(ocean.contains("\"Courier New\",255,18,#TRUE#,#FALSE#"));
    QVERIFY(ocean.contains("\"Arial\",8388608,20,#TRUE#,#FALSE#"));
    // Expanded paths are what the editor holds, so they are what it writes.
    QVERIFY(ocean.contains(QByteArray('"' + s.env.appPath().toUtf8() + "/Backgr/sea/waves.jpg\"")));
}

void TestAdStudio::newSaveAsAndDelete_data()
{
    // The theme shown, the command and the name typed (none when not asked); the titles of what
    // was shown; the list afterwards, ending with the theme shown.
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<QStringList>("prompts");
    QTest::addColumn<QStringList>("themes");
    const QStringList three{"Default", "Ocean", "Plain"};
    const QStringList asked{"Theme Changed", "New Theme"};
    const QStringList saveAs{"Save As Theme"};
    QTest::newRow("new, trimmed") << QStringList{"Ocean", "mnuNew", "  Fresh  "} << asked
                                  << three + QStringList{"Fresh", "Fresh"};
    QTest::newRow("save as") << QStringList{"Ocean", "mnuSaveAs", "Ocean 2"} << saveAs
                             << three + QStringList{"Ocean 2", "Ocean 2"};
    QTest::newRow("delete, unasked") << QStringList{"Ocean", "mnuDeleteTheme", ""} << QStringList()
                                     << QStringList{"Default", "Plain", "Default"};
    QTest::newRow("delete Default")
        << QStringList{"Default", "mnuDeleteTheme", ""} << QStringList{"Cannot Delete"}
        << three + QStringList{"Default"};
}

void TestAdStudio::newSaveAsAndDelete()
{
    QFETCH(QStringList, steps);
    QFETCH(QStringList, prompts);
    QFETCH(QStringList, themes);
    Studio s;
    s.select(steps[0]);
    s.get("txtTitleImage")->setText(u"/pics/unsaved.gif"_s);
    const QList<QByteArray> before = s.records();
    if (steps[1] == "mnuNew")
        s.prompts.queueAnswer(PromptAnswer::No);
    if (!steps[2].isEmpty())
        s.prompts.queueInput(steps[2]);
    s.press(steps[1]);
    QVERIFY(s.prompts.unexpected().isEmpty() && s.prompts.pendingAnswers() == 0);
    QStringList titles;
    for (const ScriptedPrompts::Shown& shown : s.prompts.shown())
        titles << shown.title;
    QCOMPARE(titles, prompts);
    QCOMPARE(s.themes() << s.form->currentThemeName(), themes);

    QList<QByteArray> after = s.records();
    QList<QByteArray> kept = before;
    if (themes.size() == 3)
        kept.removeAt(5);
    if (themes.size() == 5) {
        const QByteArray record = after.takeAt(before.size() - 1);
        QVERIFY(!s.form->isThemeChanged());
        // A new theme has the values of a new themeset's Default; Save As keeps the edits.
        if (steps[1] == "mnuNew")
            QCOMPARE(record, QByteArray(before[4]).replace("Default", "Fresh"));
        QCOMPARE(record.contains("\"/pics/unsaved.gif\""), steps[1] == "mnuSaveAs");
    }
    QCOMPARE(after, kept);
}

void TestAdStudio::unsavedChangeQuestion_data()
{
    QTest::addColumn<bool>("edit");
    QTest::addColumn<int>("answer");
    QTest::newRow("unchanged: no question") << false << -1;
    QTest::newRow("yes saves") << true << int(PromptAnswer::Yes);
    QTest::newRow("no keeps the file") << true << int(PromptAnswer::No);
}

void TestAdStudio::unsavedChangeQuestion()
{
    QFETCH(bool, edit);
    QFETCH(int, answer);
    Studio s;
    s.select("Plain");
    s.form->show();
    s.form->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(s.form.get()));
    s.get<QWidget>("cmdApply")->setFocus(Qt::OtherFocusReason);
    if (edit)
        s.get<QCheckBox>("chkInlineImg")->click();
    if (answer >= 0)
        s.prompts.queueAnswer(PromptAnswer(answer));
    const QByteArray before = readAll(s.themeSet());

    s.list()->setFocus(Qt::MouseFocusReason);
    QVERIFY(s.prompts.unexpected().isEmpty() && s.prompts.pendingAnswers() == 0);
    QCOMPARE(s.prompts.shown().size(), answer < 0 ? 0 : 1);
    for (const ScriptedPrompts::Shown& question : s.prompts.shown()) {
        QCOMPARE(question.title, u"Theme Changed"_s);
        QCOMPARE(question.text, u"Theme has been changed but not saved.  Do you want save now?"_s);
        QCOMPARE(question.buttons, PromptButtons::YesNo);
    }
    const bool saved = answer == int(PromptAnswer::Yes);
    QCOMPARE(readAll(s.themeSet()) != before, saved);
    QCOMPARE(s.form->isThemeChanged(), edit && !saved);
}

void TestAdStudio::fileDialogs_data()
{
    // The command, the box showing the choice (none for themesets: cancelled) and the filter.
    QTest::addColumn<QStringList>("dialog");
    const QString image(u"Internet Image Files (*.gif; *.jpg; *.jpeg)|*.gif; *.jpg; *.jpeg;|All "
                        "Files (*.*)|*.*"_s);
    QTest::newRow("background") << QStringList{"cmdFind", "txtBackgroundImage", image};
    QTest::newRow("sound") << QStringList{"cmdFindSound", "txtSoundFile",
                                          "Internet Sound Files (*.wav; *.mid; *.au)|*.wav; *.mid; "
                                          "*.au;|All Files (*.*)|*.*"};
    QTest::newRow("border") << QStringList{"cmdFindBorderImg", "txtBorderImage", image};
    QTest::newRow("title") << QStringList{"cmdFindTitleImg", "txtTitleImage", image};
    QTest::newRow("inline") << QStringList{"cmdFindInlineImg", "txtInlineImage", image};
    QTest::newRow("new themeset") << QStringList{"mnuThemesetNew", "",
                                                 "Tallybid Theme files (*.tbt)|*.tbt"};
    QTest::newRow("open themeset")
        << QStringList{"mnuThemesetOpen", "", "Tallybid ThemeSet files (*.tbt)|*.tbt"};
}

void TestAdStudio::fileDialogs()
{
    QFETCH(QStringList, dialog);
    Studio s;
    const QString chosen = dialog[1].isEmpty() ? QString() : s.env.writeFile("chosen.gif", "GIF");
    s.prompts.queueFile(chosen);
    s.press(dialog[0]);
    QCOMPARE(s.prompts.shown().last().text, dialog[2]);
    QVERIFY(s.prompts.unexpected().isEmpty());
    QCOMPARE(s.env.context().state.themeSetFN, s.themeSet());
    QCOMPARE(s.form->isThemeChanged(), !chosen.isEmpty());
    QCOMPARE(chosen.isEmpty() ? QString() : s.get(dialog[1])->text(), chosen);
}

void TestAdStudio::closingOnlyHides_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<bool>("saves");
    QTest::newRow("window close") << "" << false;
    QTest::newRow("cancel") << "cmdCancel" << false;
    QTest::newRow("exit no save") << "mnuExitNoSave" << false;
    QTest::newRow("ok") << "cmdOK" << true;
    QTest::newRow("exit and save") << "mnuExitSave" << true;
}

void TestAdStudio::closingOnlyHides()
{
    QFETCH(QString, command);
    QFETCH(bool, saves);
    Studio s;
    s.form->show();
    s.select("Ocean");
    s.get("txtInlineImage")->setText(u"/pics/new.gif"_s);
    s.get<QCheckBox>("chkInlineImg")->setChecked(true);
    s.get("txtListText_6")->setText(u"More of mine"_s);
    command.isEmpty() ? void(s.form->close()) : s.press(command);
    QVERIFY(!s.form->isVisible());
    QCOMPARE(s.records()[5].contains("\"/pics/new.gif\""), saves);

    // The listing reads the controls, saved or not.
    ListingRequest request;
    s.form->fillListingRequest(request);
    QCOMPARE(request.themeName, u"Ocean"_s);
    QCOMPARE(request.media.inlineImage, u"/pics/new.gif"_s);
    QVERIFY(request.media.inlineImg && !request.media.loop);
    QCOMPARE(request.roleTexts.seeOther, u"More of mine"_s);
}

void TestAdStudio::roleTextsRoundTrip()
{
    Studio s;
    const QStringList keys{"SubHeading", "PayOptions", "TaxMsg", "NoReserve", "SeeOther"};
    const auto box = [](const frmAdStudio& form, int i) {
        return form.findChild<QLineEdit*>(u"txtListText_%1"_s.arg("13456"[i]));
    };
    QString shown;
    for (int i = 0; i < keys.size(); ++i)
        shown += box(*s.form, i)->text() + u'|';
    // The payment text's default is the Ad Studio's own, not the settings file's.
    QCOMPARE(shown,
             "|Buyer to pay shipping and insurance if desired. Please allow time for personal "
             "check to clear or send m.o. for quick shipping.||NO RESERVE!|Please check out "
             "the other auctions we currently have running on eBay.|");
    for (int i = 0; i < keys.size(); ++i)
        box(*s.form, i)->setText(keys[i] + u'!');
    s.press("cmdApply");
    // A later Ad Studio on the same settings shows them again.
    frmAdStudio again(s.env.context());
    for (int i = 0; i < keys.size(); ++i) {
        QCOMPARE(s.env.store().get("Tallybid", "Options", keys[i]), keys[i] + u'!');
        QCOMPARE(box(again, i)->text(), keys[i] + u'!');
    }
}

void TestAdStudio::laidOutWithoutOverlap()
{
    Studio s;
    s.form->show();
    QVERIFY(QTest::qWaitForWindowExposed(s.form.get()));
    auto* tabs = s.get<QTabWidget>("TabStrip1");
    for (int t = 0; t < tabs->count(); ++t) {
        tabs->setCurrentIndex(t);
        QApplication::processEvents();
        QCOMPARE(layoutProblems(s.form.get()) + layoutProblems(tabs->widget(t)), QStringList());
    }
}

QTEST_MAIN(TestAdStudio)
#include "tst_adstudio.moc"
