#pragma once

// What the after-sale window tests share: items in tb2.mdb with the ending-auction window open on
// one of them, mail going to 127.0.0.1, and the prompts and pictures they look at.
#include "../support/LayoutCheck.h"
#include "../support/ModalWatch.h"
#include "../support/SmtpFixture.h"
#include "../support/TestEnvironment.h"

#include "aftersale/frmEndingAuction.h"
#include "aftersale/texts.h"
#include "settings/SettingsCatalogue.h"

#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QtTest>

using namespace Qt::StringLiterals;
using namespace AfterSaleTexts;

template <typename T = QWidget> T* child(const QObject* parent, const QString& name)
{
    return parent->findChild<T*>(name);
}

inline void click(const QObject* parent, const QString& button)
{
    QTest::mouseClick(child<QPushButton>(parent, button), Qt::LeftButton);
}

// Every prompt shown so far as "title|text".
inline QStringList shownTexts(TestEnvironment& env)
{
    QStringList texts;
    for (const auto& p : env.prompts().shown())
        texts << p.title + u'|' + p.text;
    return texts;
}

// The widget's layout problems, "" when it looks whole; a picture of it is kept to look at.
inline QString problemsOf(QWidget* widget, const QString& picture)
{
    QStringList problems = layoutProblems(widget);
    if (!picture.isEmpty() && !widget->grab().save(QDir::temp().filePath(picture)))
        problems << u"cannot save "_s + picture;
    return problems.join(u'\n');
}

// The items, the one at `current` the item window's; mail to 127.0.0.1:port from a seller set
// with blanks around; the ending-auction window opened over a stand-in item window.
struct Desk
{
    Desk(TestEnvironment& env, const QList<QVariantMap>& items, int current = 0, int port = 25)
        : env(env), ids(env.addItems(items))
    {
        AppState& s = env.context().state;
        s.currentItemId = ids.at(current);
        s.currentEbayId = items.at(current).value(u"EbayID"_s).toString();
        s.options.remoteSmtpHost = u"127.0.0.1"_s;
        s.options.remoteSmtpPort = QString::number(port);
        env.store().save(Settings::kApp, Settings::kOptions, u"SendFrom"_s,
                         u" seller@example.com "_s);
        ending = frmEndingAuction::openEndingAuction(env.context(), {}, owner);
    }
    QLineEdit* field(int index) const { return qobject_cast<QLineEdit*>(ending->field(index)); }

    TestEnvironment& env;
    QList<qint64> ids;
    QWidget owner; // stands for the item window
    QPointer<frmEndingAuction> ending;
};
