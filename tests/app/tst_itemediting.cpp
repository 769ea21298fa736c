// Editing an item as a user does: keys typed into the real boxes, focus moved, commands run;
// what ends up in tb2.mdb is read back. And the picture preview with pictures as cameras and
// phones make them: large, and stored on their side. The preview frame is 260 x 200 pixels.
#include "../support/CameraPicture.h"
#include "ItemWindowFixture.h"

#include "platform/DateText.h"

namespace {
void leave(ItemWindow& w, QWidget* from, QWidget* to)
{
    w->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(w.window.get()));
    from->setFocus(Qt::TabFocusReason);
    to->setFocus(Qt::TabFocusReason);
}
} // namespace

class TestItemEditing : public QObject
{
    Q_OBJECT
private slots:
    void typing_data()
    {
        // typed: "<BS>" empties the box
        addColumns<int, QString, QString, int, bool>("box", "typed", "shown", "beeps", "warned");
        // clang-format off
        QTest::newRow("eBay number digits") << 1 << "123456" << "123456" << 0 << false;
        QTest::newRow("a letter empties the whole eBay number") << 1 << "1234x" << "" << 0 << true;
        QTest::newRow("typing goes on in the emptied box") << 1 << "12.5" << "5" << 0 << true;
        QTest::newRow("dollar sign refused") << 9 << "$7" << "7" << 1 << false;
        QTest::newRow("reserve letters refused") << 8 << "1a2b" << "12" << 2 << false;
        QTest::newRow("cost comma refused") << 10 << "1,000" << "1000" << 1 << false;
        QTest::newRow("emptied cost shows 0") << 10 << "<BS>" << "0" << 0 << false;
        // clang-format on
    }
    void typing()
    {
        QFETCH(int, box);
        QFETCH(QString, typed);
        QFETCH(bool, warned);
        TestEnvironment env;
        env.addItems({{{u"Cost"_s, 150000}}});
        ItemWindow w(env);
        w.field(box)->selectAll(); // opening the view gave the blank money boxes their defaults
        if (typed == "<BS>"_L1)
            QTest::keyClick(w.field(box), Qt::Key_Backspace);
        else
            QTest::keyClicks(w.field(box), typed);
        QTEST(w.field(box)->text(), "shown");
        QTEST(w->beepCount(), "beeps");
        QCOMPARE(env.prompts().shown().size(), warned ? 1 : 0);
        if (warned) {
            const auto& m = env.prompts().shown().first();
            QCOMPARE(m.text + u'|' + m.title, Texts::kEbayIdDigits + u'|' + Texts::kEbayIdTitle);
            QCOMPARE(m.icon, PromptIcon::Exclamation);
        }
    }

    void blanksBecomeDefaultsWhenLeft()
    {
        TestEnvironment env;
        const QList<qint64> ids = env.addNumberedItems(2);
        ItemWindow w(env);
        const auto stored = [&](qint64 id) {
            QStringList v;
            for (const QString& c : {u"Reserve"_s, u"MinBid"_s, u"Cost"_s})
                v << env.storedValue(id, c).toString();
            return v.join(u' ');
        };
        // Opening the view moves to the last item and back, leaving the first with its defaults.
        QCOMPARE(stored(ids.at(0)), u"0 10000 0"_s);
        // a new item keeps its blanks until it is left by a move
        w->mnuAdd_Click();
        QCOMPARE(stored(ids.at(1) + 1), u"  "_s);
        w->mnuFirst_Click();
        QCOMPARE(stored(ids.at(1) + 1), u"0 10000 0"_s);
    }

    void picturePathMustBeAFile_data()
    {
        addColumns<QString, bool>("typed", "rejected");
        QTest::newRow("web address") << "http://example.com/vase.jpg" << true;
        QTest::newRow("missing file") << "/no/such/picture.gif" << true;
        QTest::newRow("only blanks") << "   " << false;
        QTest::newRow("existing file") << "@picture" << false;
    }
    void picturePathMustBeAFile()
    {
        QFETCH(QString, typed);
        QFETCH(bool, rejected);
        TestEnvironment env;
        env.addItems({{}});
        const QString picture = savePicture(env.path(u"vase.png"_s), 40, 30);
        ItemWindow w(env);
        if (typed == "@picture"_L1)
            typed = picture;
        QTest::keyClicks(w.field(6), typed);
        leave(w, w.field(6), w.field(3));
        QCOMPARE(env.prompts().shown().size(), rejected ? 1 : 0);
        QCOMPARE(w.field(6)->text(), rejected ? QString() : typed);
        if (rejected)
            QCOMPARE(env.prompts().shown().first().text, Texts::cantFindPicture(typed));
    }

    void auctionLengthAndDates()
    {
        TestEnvironment env;
        env.addItems({{}});
        ItemWindow w(env);
        auto* length = w.child<QComboBox>(u"comboLength"_s);
        const auto ends = [&] { return DateText::fromDisplay(w.field(13)->text()); };
        // start + length = end when the start box is left, time of day kept
        length->setCurrentText(u"7"_s);
        QTest::keyClicks(w.field(12), u"06/01/1999 10:00"_s);
        leave(w, w.field(12), w.field(3));
        QCOMPARE(ends(), QDateTime(QDate(1999, 6, 8), QTime(10, 0)));
        // choosing a length moves the end
        length->setCurrentIndex(length->findText(u"10"_s));
        emit length->activated(length->currentIndex());
        QCOMPARE(ends(), QDateTime(QDate(1999, 6, 11), QTime(10, 0)));
        // a length left empty becomes 7
        length->setCurrentText(QString());
        leave(w, length, w.field(3));
        QCOMPARE(length->currentText(), u"7"_s);
        // A length typed but not chosen as the window closes: closing takes the focus from the
        // box, which then reports the length as chosen, to a window already half gone.
        length->setFocus(Qt::TabFocusReason);
        length->lineEdit()->setText(u"10"_s);
        w.window.reset();
    }

    void addFromEmptyActiveViewOpensAll()
    {
        TestEnvironment env;
        env.addItems({{{u"Active"_s, 0}}});
        env.store().save(u"Tallybid"_s, u"System"_s, u"ItemsViewed"_s, u"Open"_s);
        ItemWindow w(env);
        QCOMPARE(w.total(), u"0"_s);
        w->mnuAdd_Click();
        QCOMPARE(w->currentView(), frmItems::View::All);
        QCOMPARE(w.counters(), u"2/2"_s);
        QCOMPARE(env.itemCount(), 2);
        QCOMPARE(QApplication::focusWidget(), w.field(3));
    }

    void deleteRules()
    {
        TestEnvironment env;
        env.addNumberedItems(3);
        ItemWindow w(env);
        const auto remove = [&](PromptAnswer answer) {
            env.prompts().queueAnswer(answer);
            w->mnuDelete_Click();
        };
        // cancelled: nothing happens
        remove(PromptAnswer::Cancel);
        QCOMPARE(env.itemCount(), 3);
        const auto& ask = env.prompts().shown().at(0);
        QCOMPARE(ask.text + u'|' + ask.title, Texts::kDeleteAsk + u'|' + Texts::kDeleteTitle);
        QCOMPARE(ask.icon, PromptIcon::Exclamation);
        QCOMPARE(ask.buttons, PromptButtons::OkCancel);
        // at the last place of the view: asked, then refused
        w->mnuLast_Click();
        remove(PromptAnswer::Ok);
        QCOMPARE(env.prompts().shown().at(2).text, Texts::kDeleteLast);
        QCOMPARE(env.itemCount(), 3);
        // on the first: deleted, the former second shows as 1 of 2
        w->mnuFirst_Click();
        remove(PromptAnswer::Ok);
        QCOMPARE(env.itemCount(), 2);
        QCOMPARE(w.field(3)->text(), u"Item 2"_s);
        QCOMPARE(w.counters(), u"1/2"_s);
        QCOMPARE(w.navigation(), u"10111"_s);
    }

    void duplicateAuction()
    {
        TestEnvironment env;
        const QVariantMap original{{u"EbayID"_s, u"987654"_s},
                                   {u"ShortDescription"_s, u"Lamp"_s},
                                   {u"Description"_s, u"Brass lamp"_s},
                                   {u"Picture2Path"_s, u"/tmp/none.gif"_s},
                                   {u"Reserve"_s, 200000},
                                   {u"MinBid"_s, 50000},
                                   {u"Cost"_s, 75000},
                                   {u"LastPrice"_s, 210000},
                                   {u"DateAuctionStarted"_s, u"2026-01-01 09:00:00"_s},
                                   {u"DateAuctionEnds"_s, u"2026-01-06 09:00:00"_s},
                                   {u"BuyerEmail"_s, u"b@example.com"_s}};
        const qint64 copy = env.addItems({original}).first() + 1;
        ItemWindow w(env);
        w.menu(u"mnuDupAuc"_s)->trigger();
        QCOMPARE(w.counters(), u"2/2"_s);
        QCOMPARE(w.child<QComboBox>(u"comboLength"_s)->currentText(), u"5"_s);
        w->mnuFirst_Click(); // leaving the copy writes it
        for (const QString& kept : {u"ShortDescription"_s, u"Description"_s, u"Picture2Path"_s,
                                    u"Reserve"_s, u"MinBid"_s, u"Cost"_s})
            QCOMPARE(env.storedValue(copy, kept), original.value(kept));
        for (const QString& empty : {u"EbayID"_s, u"LastPrice"_s, u"DateAuctionStarted"_s,
                                     u"DateAuctionEnds"_s, u"BuyerEmail"_s})
            QVERIFY2(env.storedValue(copy, empty).isNull(), qPrintable(empty));
    }

    void typedValuesSurviveRestart()
    {
        TestEnvironment env;
        const QList<std::pair<int, QString>> typed{
            {3, u"Tin robot, 1950s"_s}, {8, u"45.25"_s}, {1, u"3141592"_s}};
        {
            ItemWindow w(env); // an empty table: one new item
            for (const auto& [box, text] : typed)
                QTest::keyClicks(w.field(box), text);
            w.child<QCheckBox>(u"chkActive"_s)->setChecked(false);
            w->close();
        }
        // leaving on exit writes what was typed but applies no defaults
        QVERIFY(env.storedValue(1, u"MinBid"_s).isNull());
        QCOMPARE(env.storedValue(1, u"Reserve"_s).toLongLong(), 452500);
        ItemWindow again(env);
        for (const auto& [box, text] : typed)
            QCOMPARE(again.field(box)->text(), text);
        QVERIFY(!again.child<QCheckBox>(u"chkActive"_s)->isChecked());
    }

    void uploadNeedsAPicture()
    {
        TestEnvironment env;
        env.addItems(
            {{{u"Picture2Path"_s, u"   "_s}}, {{u"Picture3Path"_s, u"/no/such/lamp.gif"_s}}});
        ItemWindow w(env);
        QVERIFY(!w->toolButton(u"Upload"_s)->isEnabled()); // blanks count as empty
        w->mnuNext_Click();
        QVERIFY(w.menu(u"mnuUpload"_s)->isEnabled());
        w.menu(u"mnuUpload"_s)->trigger();
        QCOMPARE(env.prompts().shown().size(), 1);
        QCOMPARE(env.prompts().shown().first().text,
                 u"Can't find graphic file: /no/such/lamp.gif. Upload not performed."_s);
    }

    void picturesInTheFrame_data()
    {
        // orientation: 0: a PNG without tags; bars: "H", "V", "HV" or ""; range: of the bar
        // across, in twips, at most 32000
        addColumns<QSize, int, QSize, QPoint, QString, int, bool>("stored", "orientation", "shown",
                                                                  "at", "bars", "range", "warned");
        // clang-format off
        // Pictures that pan keep the documented scroll bars; one too large to pan is shown whole,
        // scaled to fit the inside of the frame (258 x 198), after the documented warning.
        QTest::newRow("small, centred")       << QSize(100, 50)    << 0 << QSize(100, 50)   << QPoint(80, 75)  << ""   << 0     << false;
        QTest::newRow("pans both ways")       << QSize(300, 220)   << 0 << QSize(300, 220)  << QPoint(0, 0)    << "HV" << 600   << false;
        QTest::newRow("pans across only")     << QSize(300, 100)   << 0 << QSize(300, 100)  << QPoint(0, 50)   << "H"  << 600   << false;
        QTest::newRow("small, on its side")   << QSize(120, 60)    << 6 << QSize(60, 120)   << QPoint(100, 40) << ""   << 0     << false;
        QTest::newRow("phone photo, on side") << QSize(4000, 3000) << 6 << QSize(148, 198)  << QPoint(56, 1)   << ""   << 32000 << true;
        QTest::newRow("camera photo")         << QSize(4000, 3000) << 1 << QSize(258, 193)  << QPoint(1, 3)    << ""   << 32000 << true;
        QTest::newRow("panorama strip")       << QSize(2600, 40)   << 0 << QSize(258, 3)    << QPoint(1, 98)   << ""   << 32000 << true;
        // clang-format on
    }
    void picturesInTheFrame()
    {
        QFETCH(QSize, stored);
        QFETCH(int, orientation);
        QFETCH(QPoint, at);
        QFETCH(QString, bars);
        QFETCH(bool, warned);
        TestEnvironment env;
        env.addItems({{}});
        const QImage picture = CameraPicture::quarters(stored.width(), stored.height());
        const QString file = env.path(orientation ? u"photo.jpg"_s : u"picture.png"_s);
        QVERIFY(orientation ? CameraPicture::writeFile(file, CameraPicture::jpegWithOrientation(
                                                                 picture, quint16(orientation)))
                            : picture.save(file));
        ItemWindow w(env);
        auto* preview = w.child<QLabel>(u"Picture2"_s);
        auto* across = w.child<QScrollBar>(u"HScroll1"_s);
        // What sits below and beside the preview must not move when the scroll bars come and go.
        const auto place = [&] {
            return QList<QPoint>{w.child(u"comboImgPlace"_s)->mapTo(w.window.get(), QPoint()),
                                 w.child(u"Picture1"_s)->mapTo(w.window.get(), QPoint())};
        };
        const QList<QPoint> before = place();

        w->setFieldText(5, file);
        QCoreApplication::processEvents();
        QCOMPARE(env.prompts().shown().size(), warned ? 1 : 0);
        if (warned) {
            QCOMPARE(env.prompts().shown().first().title, Texts::kImageTooLargeTitle);
            QCOMPARE(env.prompts().shown().first().text, Texts::kImageTooLarge);
        }
        QCOMPARE(w.field(5)->text(), file); // kept, warned or not
        QTEST(across->maximum(), "range");
        QTEST(preview->size(), "shown");
        QCOMPARE(preview->pos(), at);
        QCOMPARE(QString(QLatin1String(across->isVisible() ? "H" : "") +
                         QLatin1String(w.child(u"VScroll1"_s)->isVisible() ? "V" : "")),
                 bars);
        QCOMPARE(place(), before);

        // Upright as the camera meant it: the stored top-left quarter (red) is top right after a
        // quarter turn to the right.
        const QImage seen = preview->pixmap().toImage();
        const QColor corner = seen.pixelColor(seen.width() * 3 / 4, seen.height() / 4);
        const QColor expected = orientation == 6 ? Qt::red : Qt::green;
        QVERIFY2(qAbs(corner.red() - expected.red()) < 60 &&
                     qAbs(corner.green() - expected.green()) < 60 && corner.blue() < 60,
                 qPrintable(corner.name()));

        // Panning moves the picture by the documented twips; the other side stays centred.
        if (bars == "H"_L1) {
            across->setValue(20 * 15);
            QCOMPARE(preview->pos(), QPoint(-20, at.y()));
        }
    }

    void logoIsCentred()
    {
        TestEnvironment env;
        QFile::copy(qEnvironmentVariable("TB_SOURCE_DIR") + u"/resources/logovksm.gif"_s,
                    env.path(u"logovksm.gif"_s));
        env.addItems({{}});
        ItemWindow w(env);
        const QSize frame = w.child(u"Picture1"_s)->size();
        auto* preview = w.child<QLabel>(u"Picture2"_s);
        QVERIFY(!preview->pixmap().isNull());
        const QSize logo = preview->size();
        QCOMPARE(preview->pos(),
                 QPoint((frame.width() - logo.width()) / 2, (frame.height() - logo.height()) / 2));
    }

    // The Find button's dialog keeps its first list and offers PNG and WebP beside it; a picture
    // of either kind chosen there is previewed.
    void findOffersPhonePictures_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("png") << "screen.png";
        QTest::newRow("webp") << "phone.webp";
    }
    void findOffersPhonePictures()
    {
        QFETCH(QString, name);
        const QByteArray format = QFileInfo(name).suffix().toLatin1();
        if (!QImageReader::supportedImageFormats().contains(format))
            QSKIP("the WebP image plugin is not installed");
        TestEnvironment env;
        env.addItems({{}});
        const QString file = env.path(name);
        QVERIFY(CameraPicture::quarters(120, 90).save(file, format.constData()));
        ItemWindow w(env);
        env.prompts().queueFile(file);
        QTest::mouseClick(w.child<QPushButton>(u"cmdFind_1"_s), Qt::LeftButton);

        QCOMPARE(env.prompts().shown().size(), 1);
        const QString filter = env.prompts().shown().first().text;
        QVERIFY2(filter.contains(
                     "Internet Image Files (*.gif; *.jpg; *.jpeg)|*.gif; *.jpg; *.jpeg;|"_L1),
                 qPrintable(filter));
        QVERIFY2(filter.contains("*.png"_L1) && filter.contains("*.webp"_L1), qPrintable(filter));
        QCOMPARE(w.field(6)->text(), file);
        QCOMPARE(w.child<QLabel>(u"Picture2"_s)->size(), QSize(120, 90));
    }
};

QTEST_MAIN(TestItemEditing)
#include "tst_itemediting.moc"
