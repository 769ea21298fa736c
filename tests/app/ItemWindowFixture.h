#pragma once

#include "../support/TestEnvironment.h"
#include "app/frmItems.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QtTest>
#include <memory>

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
    QLineEdit* field(int index) const
    {
        return child<QLineEdit>(QStringLiteral("txtFields_%1").arg(index));
    }
    QString current() const { return child<QLineEdit>(QStringLiteral("txtCurItem"))->text(); }
    QString total() const { return child<QLineEdit>(QStringLiteral("txtTotItem"))->text(); }
    QAction* menu(const QString& name) const { return child<QAction>(name); }
    // Which of First, Prev, Next, Last, Del are enabled, as "1" and "0" in that order; the
    // toolbar buttons must agree with their menu items.
    QString navigation() const
    {
        QString out;
        const QStringList keys{QStringLiteral("First"), QStringLiteral("Prev"),
                               QStringLiteral("Next"), QStringLiteral("Last"),
                               QStringLiteral("Del")};
        const QStringList menus{QStringLiteral("mnuFirst"), QStringLiteral("mnuPrevious"),
                                QStringLiteral("mnuNext"), QStringLiteral("mnuLast"),
                                QStringLiteral("mnuDelete")};
        for (int i = 0; i < keys.size(); ++i) {
            const bool button = window->toolButton(keys.at(i))->isEnabled();
            if (button != menu(menus.at(i))->isEnabled())
                return QStringLiteral("toolbar and menu disagree on ") + keys.at(i);
            out += button ? u'1' : u'0';
        }
        return out;
    }
    std::unique_ptr<frmItems> window;
};
