#pragma once

#include "../support/TestEnvironment.h"
#include "app/Launcher.h"
#include "app/frmItems.h"
#include "app/texts.h"

#include <QSqlQuery>
#include <QtTest>
#include <QtWidgets>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

// The columns of a data table: addColumns<int, QString>("items", "caption").
template <typename... T, typename... Names> void addColumns(Names... names)
{
    static_assert(sizeof...(T) == sizeof...(Names));
    (QTest::addColumn<T>(names), ...);
}

// A fresh application folder and an item window over it, as a user would see it after start.
struct ItemWindow
{
    explicit ItemWindow(TestEnvironment& env, QSize screen = QSize(1280, 1024))
        : window(std::make_unique<frmItems>(env.context(), screen))
    {
        window->show();
        QTest::qWait(0);
    }
    frmItems* operator->() const { return window.get(); }
    template <typename T = QWidget> T* child(const QString& name) const
    {
        T* w = window->findChild<T*>(name);
        if (!w)
            qFatal("no control %s", qPrintable(name));
        return w;
    }
    QLineEdit* field(int index) const { return child<QLineEdit>(u"txtFields_%1"_s.arg(index)); }
    QString current() const { return child<QLineEdit>(u"txtCurItem"_s)->text(); }
    QString total() const { return child<QLineEdit>(u"txtTotItem"_s)->text(); }
    QString counters() const { return current() + u'/' + total(); }
    QAction* menu(const QString& name) const { return child<QAction>(name); }
    // Which of First, Prev, Next, Last, Del are enabled, as "1" and "0" in that order; the
    // toolbar buttons must agree with their menu items.
    QString navigation() const
    {
        QString out;
        const std::pair<QString, QString> buttons[]{{u"First"_s, u"mnuFirst"_s},
                                                    {u"Prev"_s, u"mnuPrevious"_s},
                                                    {u"Next"_s, u"mnuNext"_s},
                                                    {u"Last"_s, u"mnuLast"_s},
                                                    {u"Del"_s, u"mnuDelete"_s}};
        for (const auto& [key, item] : buttons) {
            const bool button = window->toolButton(key)->isEnabled();
            if (button != menu(item)->isEnabled())
                return u"toolbar and menu disagree on "_s + key;
            out += button ? u'1' : u'0';
        }
        return out;
    }
    std::unique_ptr<frmItems> window;
};

inline QStringList appdirArguments(const QString& folder)
{
    return {u"tallybid"_s, u"--appdir"_s, folder};
}

// The program started with these arguments, its one-copy lock kept in lockFolder.
struct Started
{
    Started(TestEnvironment& env, const QStringList& arguments, const QString& lockFolder)
        : launcher(env.prompts(), env.shell(), env.store(), env.context().timeZone)
    {
        launcher.setLockFolder(lockFolder);
        ok = launcher.start(arguments, {}, QSize(1280, 1024));
        launcher.waitForStartupBackup();
        QCoreApplication::processEvents(); // what the backup had to say
    }
    Launcher launcher;
    bool ok = false;
};

// The first value `sql` gives on a database file of its own connection: no value when it gives no
// row, "(failed)" when the file cannot be opened or the statement not run.
inline QVariant sqlValue(const QString& file, const QString& sql)
{
    QVariant value = u"(failed)"_s;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"peek"_s);
        db.setDatabaseName(file);
        if (db.open()) {
            QSqlQuery q(db);
            if (q.exec(sql))
                value = q.next() ? q.value(0) : QVariant();
        }
    }
    QSqlDatabase::removeDatabase(u"peek"_s);
    return value;
}

// Items in a database file, -1 when they cannot be counted.
inline int rowCount(const QString& file)
{
    bool ok = false;
    const int n = sqlValue(file, u"SELECT count(*) FROM Items"_s).toInt(&ok);
    return ok ? n : -1;
}

inline QString savePicture(const QString& path, int width, int height, QColor colour = Qt::red)
{
    QImage img(width, height, QImage::Format_RGB32);
    img.fill(colour);
    if (!img.save(path))
        qFatal("cannot write %s", qPrintable(path));
    return path;
}
