#include "../support/TestEnvironment.h"
#include "listing/ListingGenerator.h"
#include "listing/frmAdStudio.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QTabWidget>
#include <QtTest>

namespace {

const QString kFixture = QStringLiteral(TB_ADSTUDIO_DATA "/studio.tbt");

QByteArray readAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QList<QByteArray> lines(const QString& path)
{
    QList<QByteArray> result = readAll(path).split('\n');
    if (!result.isEmpty() && result.last().isEmpty())
        result.removeLast();
    return result;
}

// One application folder with the fixture as its standard.tbt and an open Ad Studio.
struct Studio
{
    TestEnvironment env;
    std::unique_ptr<frmAdStudio> form;

    Studio()
    {
        QFile::copy(kFixture, env.path(QStringLiteral("standard.tbt")));
        form = std::make_unique<frmAdStudio>(env.context());
    }
    QString themeSet() const { return env.path(QStringLiteral("standard.tbt")); }
    template <class T> T* get(const QString& name) const
    {
        T* w = form->findChild<T*>(name);
        if (!w)
            qFatal("no control %s", qPrintable(name));
        return w;
    }
    QLineEdit* edit(const QString& name) const { return get<QLineEdit>(name); }
    void click(const QString& button) const { get<QPushButton>(button)->click(); }
    void trigger(const QString& action) const { get<QAction>(action)->trigger(); }
    void select(const QString& theme) const
    {
        auto* combo = get<QComboBox>(QStringLiteral("cmbThemes"));
        const int index = combo->findText(theme);
        combo->setCurrentIndex(index);
        emit combo->activated(index);
    }
    QStringList themes() const
    {
        auto* combo = get<QComboBox>(QStringLiteral("cmbThemes"));
        QStringList names;
        for (int i = 0; i < combo->count(); ++i)
            names << combo->itemText(i);
        return names;
    }
    void showActive() const
    {
        form->show();
        form->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(form.get()));
    }
};

} // namespace

class TestAdStudio : public QObject
{
    Q_OBJECT

private slots:
    void opensStandardThemeset();
    void missingStandardThemeset();
    void loadsThemeIntoControls_data();
    void loadsThemeIntoControls();
    void editedFontsAndColoursAreSaved();
    void cancelledDialogsChangeNothing_data();
    void cancelledDialogsChangeNothing();
    void newAndSaveAsNames_data();
    void newAndSaveAsNames();
    void deleteTheme();
    void unsavedChangeQuestion_data();
    void unsavedChangeQuestion();
    void themesetNewAndOpen();
    void closingOnlyHides_data();
    void closingOnlyHides();
    void roleTextsRoundTrip();
    void mediaFindFilters_data();
    void mediaFindFilters();
    void leavingMediaBoxChecksFile();
    void listingReadsUnsavedControls();
    void shippedThemesFindTheirMedia();
    void tabsLaidOutWithoutOverlap();
};

void TestAdStudio::opensStandardThemeset()
{
    Studio s;
    QCOMPARE(s.form->windowTitle(), QStringLiteral("Ad Studio"));
    QCOMPARE(s.env.context().state.themeSetFN, s.themeSet());
    QCOMPARE(s.themes(), QStringList({"Default", "Ocean", "Plain"}));
    QCOMPARE(s.form->currentThemeName(), QStringLiteral("Default"));
    QVERIFY(s.env.prompts().shown().isEmpty());
    QVERIFY(!s.form->isThemeChanged());
    QVERIFY(!s.get<QAction>("mnuUploadMedia")->isEnabled());
    QSignalSpy preview(s.form.get(), &frmAdStudio::previewRequested);
    s.trigger("mnuActionsPreview");
    QCOMPARE(preview.size(), 1);
}

void TestAdStudio::missingStandardThemeset()
{
    TestEnvironment env;
    env.context().state.themeSetFN = QStringLiteral("/elsewhere/mine.tbt");
    frmAdStudio form(env.context());
    QCOMPARE(env.prompts().shown().size(), 1);
    const auto& shown = env.prompts().shown().first();
    QCOMPARE(shown.text, QStringLiteral("You are missing the file: standard.tbt. Please get "
                                        "another copy from our web site."));
    QCOMPARE(shown.title, QStringLiteral("Missing Themeset"));
    QCOMPARE(shown.icon, PromptIcon::Exclamation);
    QCOMPARE(env.context().state.themeSetFN, QStringLiteral("/elsewhere/mine.tbt"));
    QCOMPARE(form.findChild<QComboBox*>("cmbThemes")->count(), 0);
}

void TestAdStudio::loadsThemeIntoControls_data()
{
    QTest::addColumn<QString>("theme");
    QTest::addColumn<QStringList>("media"); // relative to the application folder when "@..."
    QTest::addColumn<QString>("flags");     // loop, top, bot, left, right, include
    QTest::addColumn<int>("border");
    QTest::addColumn<QString>("align");
    QTest::addColumn<QString>("headingFont"); // face/size/bold/italic of role 0
    QTest::addColumn<QString>("roleColor");   // of role 5
    QTest::addColumn<QString>("tableColor");

    QTest::newRow("Default") << "Default" << QStringList{"", "", "", "", ""} << "111111" << 4
                             << "Left"
                             << "MS Sans Serif/16/0/0"
                             << "#000000"
                             << "#ffffff";
    // Tokens are expanded letter case included; "appimagepath" is not a token.
    QTest::newRow("Ocean") << "Ocean"
                           << QStringList{"@/Backgr/waves.jpg", "@/Sounds/surf.wav",
                                          "@/Images/rope.gif", "@/Images/anchor.gif",
                                          "appimagepath\\shell.gif"}
                           << "010010" << 2 << "Center"
                           << "Arial/20/1/0"
                           << "#0000ff"
                           << "#c0c0c0";
    QTest::newRow("Plain") << "Plain" << QStringList{"", "", "", "", ""} << "101101" << 0 << "Right"
                           << "Courier New/10/0/0"
                           << "#000000"
                           << "";
}

void TestAdStudio::loadsThemeIntoControls()
{
    QFETCH(QString, theme);
    QFETCH(QStringList, media);
    QFETCH(QString, flags);
    QFETCH(int, border);
    QFETCH(QString, align);
    QFETCH(QString, headingFont);
    QFETCH(QString, roleColor);
    QFETCH(QString, tableColor);

    Studio s;
    s.select(QStringLiteral("Plain")); // start from another theme so every control changes
    s.select(theme);
    QVERIFY(s.env.prompts().shown().isEmpty());
    QVERIFY(!s.form->isThemeChanged());
    for (QString& m : media)
        m.replace(QStringLiteral("@"), s.env.appPath());
    QCOMPARE(s.form->mediaPaths(), media);

    QString actual;
    for (const char* box : {"chkLoop", "chkBorderImgTop", "chkBorderImgBot", "chkTitleImgLeft",
                            "chkTitleImgRight", "chkInlineImg"})
        actual += s.get<QCheckBox>(box)->isChecked() ? u'1' : u'0';
    QCOMPARE(actual, flags);
    QCOMPARE(s.get<QSlider>("slBorderWidth")->value(), border);
    QCOMPARE(s.get<QComboBox>("cmbCellAlign")->currentText(), align);

    const QFont f = s.edit("txtListText_0")->font();
    QCOMPARE(QStringLiteral("%1/%2/%3/%4")
                 .arg(f.family())
                 .arg(f.pointSize())
                 .arg(int(f.bold()))
                 .arg(int(f.italic())),
             headingFont);
    QCOMPARE(s.edit("txtFont_0")->text(), headingFont.section(u'/', 0, 0));
    QCOMPARE(s.edit("txtListText_5")->palette().color(QPalette::Text).name(), roleColor);
    if (!tableColor.isEmpty())
        QCOMPARE(s.edit("txtListText_3")->palette().color(QPalette::Base).name(), tableColor);
}

void TestAdStudio::editedFontsAndColoursAreSaved()
{
    Studio s;
    const QList<QByteArray> before = lines(s.themeSet());
    s.select("Ocean");
    QFont chosen(QStringLiteral("Courier New"));
    chosen.setPointSize(18);
    chosen.setBold(true);
    s.env.prompts().queueFont(chosen);
    s.click("cmdFont_2");
    s.env.prompts().queueColor(QColor(255, 0, 0));
    s.click("cmdSwatch_2");
    s.env.prompts().queueColor(QColor(0, 0, 128));
    s.click("cmdTableColor");
    QVERIFY(s.form->isThemeChanged());
    QCOMPARE(s.edit("txtFont_2")->text(), QStringLiteral("Courier New"));
    QCOMPARE(s.edit("txtListText_4")->palette().color(QPalette::Base), QColor(0, 0, 128));

    s.click("cmdApply");
    QVERIFY(s.env.prompts().unexpected().isEmpty());
    QVERIFY(!s.form->isThemeChanged());
    const QList<QByteArray> after = lines(s.themeSet());
    QCOMPARE(after.size(), before.size());
    for (int i : {0, 1, 2, 3, 4, 6})
        QCOMPARE(after.at(i), before.at(i)); // header and the other themes untouched
    const QByteArray ocean = after.at(5);
    QVERIFY(ocean.startsWith("\"Ocean\",8388608,"));
    QVERIFY(ocean.contains("\"Courier New\",255,18,#TRUE#,#FALSE#"));
    // Expanded paths are what the editor holds, so they are what it writes.
    QVERIFY(ocean.contains(QByteArray('"' + s.env.appPath().toUtf8() + "/Backgr/waves.jpg\"")));
    QVERIFY(ocean.contains("\"Arial\",8388608,20,#TRUE#,#FALSE#"));
}

void TestAdStudio::cancelledDialogsChangeNothing_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("dialog");
    QTest::newRow("font") << "cmdFont_3"
                          << "font";
    QTest::newRow("swatch") << "cmdSwatch_3"
                            << "color";
    QTest::newRow("table") << "cmdTableColor"
                           << "color";
    QTest::newRow("find") << "cmdFindTitleImg"
                          << "open";
}

void TestAdStudio::cancelledDialogsChangeNothing()
{
    QFETCH(QString, button);
    QFETCH(QString, dialog);
    Studio s;
    s.select("Ocean");
    const Theme before = s.form->themeFromControls();
    if (dialog == QLatin1String("font"))
        s.env.prompts().queueFont(std::nullopt);
    else if (dialog == QLatin1String("color"))
        s.env.prompts().queueColor(std::nullopt);
    else
        s.env.prompts().queueFile(QString());
    s.click(button);
    QCOMPARE(s.env.prompts().shown().size(), 1);
    QCOMPARE(s.env.prompts().shown().first().kind, dialog);
    QVERIFY(!s.form->isThemeChanged());
    QVERIFY(s.form->themeFromControls() == before);
}

void TestAdStudio::newAndSaveAsNames_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("answer"); // "<cancel>" cancels the input box
    QTest::addColumn<QString>("added");  // "" when nothing is added

    QTest::newRow("new") << "mnuNew"
                         << "Fresh"
                         << "Fresh";
    QTest::newRow("new trimmed") << "mnuNew"
                                 << "  Fresh  "
                                 << "Fresh";
    QTest::newRow("new blank") << "mnuNew"
                               << "   "
                               << "";
    QTest::newRow("new cancelled") << "mnuNew"
                                   << "<cancel>"
                                   << "";
    QTest::newRow("save as") << "mnuSaveAs"
                             << "Ocean 2"
                             << "Ocean 2";
    QTest::newRow("save as empty") << "mnuSaveAs"
                                   << ""
                                   << "";
    QTest::newRow("save as existing") << "mnuSaveAs"
                                      << "Default"
                                      << "Default";
}

void TestAdStudio::newAndSaveAsNames()
{
    QFETCH(QString, command);
    QFETCH(QString, answer);
    QFETCH(QString, added);

    Studio s;
    s.select("Ocean");
    s.edit("txtTitleImage")->setText(QStringLiteral("/pics/unsaved.gif"));
    s.env.prompts().queueAnswer(PromptAnswer::No); // New asks about the unsaved edit first
    const QList<QByteArray> before = lines(s.themeSet());
    if (command == QLatin1String("mnuSaveAs"))
        s.env.prompts().clear();
    s.env.prompts().queueInput(answer == QLatin1String("<cancel>") ? std::nullopt
                                                                   : std::optional(answer));
    s.trigger(command);
    QVERIFY(s.env.prompts().unexpected().isEmpty());
    const auto& input = s.env.prompts().shown().last();
    QCOMPARE(input.title, command == QLatin1String("mnuNew") ? QStringLiteral("New Theme")
                                                             : QStringLiteral("Save As Theme"));

    const QList<QByteArray> after = lines(s.themeSet());
    if (added.isEmpty()) {
        QCOMPARE(after, before);
        QCOMPARE(s.form->currentThemeName(), QStringLiteral("Ocean"));
        return;
    }
    QCOMPARE(after.size(), before.size() + 1);
    QCOMPARE(after.mid(0, before.size()), before);
    QCOMPARE(s.themes().last(), added);
    QCOMPARE(s.form->currentThemeName(), added);
    QVERIFY(!s.form->isThemeChanged());
    const QByteArray record = after.last();
    if (command == QLatin1String("mnuNew")) {
        // A new theme has exactly the values of a new themeset's Default.
        QCOMPARE(record, QByteArray(before.at(4))
                             .replace("\"Default\"", QByteArray('"' + added.toUtf8() + '"')));
        QCOMPARE(s.form->mediaPaths(), QStringList(5, QString()));
    } else {
        QVERIFY(record.contains("\"/pics/unsaved.gif\""));
        // The list now holds the name twice; both entries load the first record.
        QCOMPARE(s.form->mediaPaths().at(3), added == QLatin1String("Default")
                                                 ? QString()
                                                 : QStringLiteral("/pics/unsaved.gif"));
    }
}

void TestAdStudio::deleteTheme()
{
    Studio s;
    const QByteArray before = readAll(s.themeSet());
    s.trigger("mnuDeleteTheme");
    QCOMPARE(s.env.prompts().shown().size(), 1);
    QCOMPARE(s.env.prompts().shown().first().title, QStringLiteral("Cannot Delete"));
    QCOMPARE(s.env.prompts().shown().first().icon, PromptIcon::Information);
    QCOMPARE(readAll(s.themeSet()), before);

    s.env.prompts().clear();
    s.select("Ocean");
    s.trigger("mnuDeleteTheme");
    QVERIFY(s.env.prompts().shown().isEmpty()); // no confirmation
    QCOMPARE(s.themes(), QStringList({"Default", "Plain"}));
    QCOMPARE(s.form->currentThemeName(), QStringLiteral("Default"));
    QVERIFY(!readAll(s.themeSet()).contains("\"Ocean\""));
    QVERIFY(!QFile::exists(s.env.path(QStringLiteral("Temp.tbt"))));
}

void TestAdStudio::unsavedChangeQuestion_data()
{
    QTest::addColumn<bool>("edit");
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("saved");
    QTest::newRow("unchanged: no question") << false << -1 << false;
    QTest::newRow("yes saves") << true << int(PromptAnswer::Yes) << true;
    QTest::newRow("no keeps the file") << true << int(PromptAnswer::No) << false;
}

void TestAdStudio::unsavedChangeQuestion()
{
    QFETCH(bool, edit);
    QFETCH(int, answer);
    QFETCH(bool, saved);

    Studio s;
    s.select("Plain");
    s.showActive();
    s.get<QPushButton>("cmdApply")->setFocus(Qt::OtherFocusReason);
    if (edit)
        s.get<QCheckBox>("chkInlineImg")->click();
    if (answer >= 0)
        s.env.prompts().queueAnswer(PromptAnswer(answer));
    const QByteArray before = readAll(s.themeSet());

    s.get<QComboBox>("cmbThemes")->setFocus(Qt::MouseFocusReason);
    QVERIFY(s.env.prompts().unexpected().isEmpty());
    QCOMPARE(s.env.prompts().pendingAnswers(), 0);
    if (answer >= 0) {
        const auto& q = s.env.prompts().shown().last();
        QCOMPARE(q.text,
                 QStringLiteral("Theme has been changed but not saved.  Do you want save now?"));
        QCOMPARE(q.title, QStringLiteral("Theme Changed"));
        QCOMPARE(q.buttons, PromptButtons::YesNo);
    } else {
        QVERIFY(s.env.prompts().shown().isEmpty());
    }
    QCOMPARE(readAll(s.themeSet()) != before, saved);
    QCOMPARE(s.form->isThemeChanged(), edit && !saved);
}

void TestAdStudio::themesetNewAndOpen()
{
    Studio s;
    const QString created = s.env.path(QStringLiteral("mine"));
    s.env.prompts().queueFile(created);
    s.trigger("mnuThemesetNew");
    QCOMPARE(s.env.prompts().shown().last().kind, QStringLiteral("save"));
    QCOMPARE(s.env.prompts().shown().last().text,
             QStringLiteral("Tallybid Theme files (*.tbt)|*.tbt"));
    QCOMPARE(s.env.context().state.themeSetFN, created + QStringLiteral(".tbt"));
    QCOMPARE(lines(created + QStringLiteral(".tbt")).size(), 5);
    QCOMPARE(s.themes(), QStringList({"Default"}));
    QCOMPARE(s.form->currentThemeName(), QStringLiteral("Default"));

    s.env.prompts().queueFile(QString()); // cancelled: nothing changes
    s.trigger("mnuThemesetOpen");
    QCOMPARE(s.env.prompts().shown().last().text,
             QStringLiteral("Tallybid ThemeSet files (*.tbt)|*.tbt"));
    QCOMPARE(s.env.context().state.themeSetFN, created + QStringLiteral(".tbt"));

    // A themeset that is not there is reported once, not once per step.
    s.env.prompts().clear();
    s.env.prompts().queueFile(s.env.path(QStringLiteral("gone.tbt")));
    s.trigger("mnuThemesetOpen");
    QCOMPARE(s.env.prompts().shown().size(), 2);
    QCOMPARE(s.env.prompts().shown().last().title, QStringLiteral("Missing Themeset"));
    QVERIFY(s.themes().isEmpty());

    s.env.prompts().queueFile(s.themeSet());
    s.trigger("mnuThemesetOpen");
    QCOMPARE(s.env.context().state.themeSetFN, s.themeSet());
    QCOMPARE(s.themes(), QStringList({"Default", "Ocean", "Plain"}));
    QVERIFY(s.env.prompts().unexpected().isEmpty());
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
    s.get<QComboBox>("cmbCellAlign")->setCurrentText(QStringLiteral("Right"));
    if (command.isEmpty())
        s.form->close();
    else if (command.startsWith(QLatin1String("cmd")))
        s.click(command);
    else
        s.trigger(command);
    QVERIFY(!s.form->isVisible());
    QVERIFY(s.form->findChild<QComboBox*>("cmbCellAlign")); // still alive, edits kept
    QCOMPARE(s.form->themeFromControls().cellAlign, QStringLiteral("Right"));
    QCOMPARE(lines(s.themeSet()).at(5).contains("\"Right\""), saves);
}

void TestAdStudio::roleTextsRoundTrip()
{
    Studio fresh;
    QCOMPARE(fresh.edit("txtListText_3")->text(),
             QStringLiteral("Buyer to pay shipping and insurance if desired. Please allow time for "
                            "personal check to clear or send m.o. for quick shipping."));
    QCOMPARE(fresh.edit("txtListText_5")->text(), QStringLiteral("NO RESERVE!"));

    const QStringList keys{"SubHeading", "PayOptions", "TaxMsg", "NoReserve", "SeeOther"};
    const QList<int> roles{1, 3, 4, 5, 6};
    for (int i = 0; i < keys.size(); ++i)
        fresh.edit(QStringLiteral("txtListText_%1").arg(roles[i]))->setText(keys[i] + u'!');
    fresh.click("cmdApply");
    for (const QString& key : keys)
        QCOMPARE(fresh.env.store().get("Tallybid", "Options", key), key + u'!');

    // A later Ad Studio on the same settings shows them again.
    frmAdStudio again(fresh.env.context());
    for (int i = 0; i < keys.size(); ++i)
        QCOMPARE(
            again.findChild<QLineEdit*>(QStringLiteral("txtListText_%1").arg(roles[i]))->text(),
            keys[i] + u'!');
}

void TestAdStudio::mediaFindFilters_data()
{
    const QString image = "Internet Image Files (*.gif; *.jpg; *.jpeg)|*.gif; *.jpg; "
                          "*.jpeg;|All Files (*.*)|*.*";
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("box");
    QTest::addColumn<QString>("filter");
    QTest::newRow("background") << "cmdFind"
                                << "txtBackgroundImage" << image;
    QTest::newRow("sound") << "cmdFindSound"
                           << "txtSoundFile"
                           << "Internet Sound Files (*.wav; *.mid; *.au)|*.wav; *.mid; "
                              "*.au;|All Files (*.*)|*.*";
    QTest::newRow("border") << "cmdFindBorderImg"
                            << "txtBorderImage" << image;
    QTest::newRow("title") << "cmdFindTitleImg"
                           << "txtTitleImage" << image;
    QTest::newRow("inline") << "cmdFindInlineImg"
                            << "txtInlineImage" << image;
}

void TestAdStudio::mediaFindFilters()
{
    QFETCH(QString, button);
    QFETCH(QString, box);
    QFETCH(QString, filter);
    Studio s;
    const QString chosen = s.env.writeFile(QStringLiteral("chosen.gif"), "GIF89a");
    s.env.prompts().queueFile(chosen);
    s.click(button);
    QCOMPARE(s.env.prompts().shown().last().text, filter);
    QCOMPARE(s.edit(box)->text(), chosen);
    QVERIFY(s.form->isThemeChanged());
}

void TestAdStudio::leavingMediaBoxChecksFile()
{
    Studio s;
    s.showActive();
    const QString present = s.env.writeFile(QStringLiteral("here.gif"), "GIF89a");
    QLineEdit* box = s.edit("txtBorderImage");
    s.get<QTabWidget>("TabStrip1")->setCurrentIndex(1);

    for (const QString& path : {present, QStringLiteral("/nowhere/gone.gif")}) {
        box->setText(path);
        box->setFocus(Qt::TabFocusReason);
        s.get<QLineEdit>("txtTitleImage")->setFocus(Qt::TabFocusReason);
        QTest::qWait(20);
    }
    QCOMPARE(s.env.prompts().shown().size(), 1);
    QCOMPARE(s.env.prompts().shown().first().text,
             QStringLiteral("Can't find file: /nowhere/gone.gif. Please re-enter."));
    QCOMPARE(QApplication::focusWidget(), box);
}

void TestAdStudio::listingReadsUnsavedControls()
{
    Studio s;
    s.select("Ocean");
    s.edit("txtInlineImage")->setText(QStringLiteral("/pics/new.gif"));
    s.get<QCheckBox>("chkInlineImg")->setChecked(true);
    s.edit("txtListText_6")->setText(QStringLiteral("More of mine"));
    s.click("cmdCancel");

    ListingRequest request;
    s.form->fillListingRequest(request);
    QCOMPARE(request.themeName, QStringLiteral("Ocean"));
    QCOMPARE(request.themeSetPath, s.themeSet());
    QCOMPARE(request.media.inlineImage, QStringLiteral("/pics/new.gif"));
    QVERIFY(request.media.inlineImg);
    QVERIFY(!request.media.loop);
    QCOMPARE(request.media.soundFile, s.env.appPath() + QStringLiteral("/Sounds/surf.wav"));
    QCOMPARE(request.roleTexts.seeOther, QStringLiteral("More of mine"));
    QCOMPARE(s.form->mediaPaths().at(4), QStringLiteral("/pics/new.gif"));
}

void TestAdStudio::shippedThemesFindTheirMedia()
{
    TestEnvironment env;
    const QString resources = qEnvironmentVariable("TB_SOURCE_DIR") + QStringLiteral("/resources");
    QVERIFY(QFile::copy(resources + QStringLiteral("/standard.tbt"),
                        env.path(QStringLiteral("standard.tbt"))));
    for (const QString folder : {"Backgr", "Images", "Sounds"}) {
        QDir(env.appPath()).mkdir(folder);
        for (const QFileInfo& file : QDir(resources + u'/' + folder).entryInfoList(QDir::Files))
            QFile::copy(file.filePath(), env.path(folder + u'/' + file.fileName()));
    }
    frmAdStudio form(env.context());
    auto* combo = form.findChild<QComboBox*>("cmbThemes");
    QVERIFY(combo->count() > 1);
    for (int i = 0; i < combo->count(); ++i) {
        combo->setCurrentIndex(i);
        emit combo->activated(i);
        for (const QString& path : form.mediaPaths())
            QVERIFY2(path.isEmpty() || QFileInfo(path).isFile(), qPrintable(path));
    }
    QVERIFY(env.prompts().shown().isEmpty());
}

// The widgets a person sees side by side under root: tab widgets and combo boxes count as one.
static void visibleLeaves(QWidget* root, QList<QWidget*>& out)
{
    for (QWidget* w : root->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (!w->isVisible() || w->isWindow())
            continue;
        bool parent = false;
        for (QWidget* k : w->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            parent = parent || (k->isVisible() && !k->isWindow());
        if (!parent || qobject_cast<QTabWidget*>(w) || qobject_cast<QComboBox*>(w))
            out << w;
        else
            visibleLeaves(w, out);
    }
}

static void checkLaidOut(QWidget* root)
{
    QList<QWidget*> leaves;
    visibleLeaves(root, leaves);
    QVERIFY(leaves.size() > 5);
    for (QWidget* w : leaves) {
        const QRect r(w->mapTo(root, QPoint(0, 0)), w->size());
        QVERIFY2(root->rect().contains(r), qPrintable(w->objectName() + " is cut off"));
        QVERIFY2(w->width() >= w->minimumSizeHint().width() &&
                     w->height() >= w->minimumSizeHint().height(),
                 qPrintable(w->objectName() + " is squeezed"));
        for (QWidget* other : leaves) {
            const QRect o(other->mapTo(root, QPoint(0, 0)), other->size());
            QVERIFY2(other == w || !r.intersects(o),
                     qPrintable(w->objectName() + " overlaps " + other->objectName()));
        }
    }
}

void TestAdStudio::tabsLaidOutWithoutOverlap()
{
    Studio s;
    s.select("Ocean");
    s.form->show();
    QVERIFY(QTest::qWaitForWindowExposed(s.form.get()));
    checkLaidOut(s.form->centralWidget());
    auto* tabs = s.get<QTabWidget>("TabStrip1");
    const QStringList tips{"Change the text settings for the listing",
                           "Select the media files for the listing.",
                           "Change the table settings for the listing."};
    for (int t = 0; t < tabs->count(); ++t) {
        QCOMPARE(tabs->tabToolTip(t), tips.at(t));
        tabs->setCurrentIndex(t);
        QApplication::processEvents();
        checkLaidOut(tabs->widget(t));
        if (!qEnvironmentVariableIsEmpty("TB_SCREENSHOTS"))
            s.form->grab().save(qEnvironmentVariable("TB_SCREENSHOTS") +
                                QStringLiteral("/adstudio-%1.png").arg(t));
    }
}

QTEST_MAIN(TestAdStudio)
#include "tst_adstudio.moc"
