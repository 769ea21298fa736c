// How the item window's data control keeps up with a large item list: opening a view,
// walking it, and finding by text, over 5000 items.
#include "../tests/support/TestEnvironment.h"

#include "db/ItemSql.h"
#include "db/RecordSet.h"

#include <QtTest>

class BenchRecordSet : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        QList<QVariantMap> rows;
        for (int i = 1; i <= 5000; ++i)
            rows << QVariantMap{
                {QStringLiteral("ShortDescription"), QStringLiteral("Item %1").arg(i)},
                {QStringLiteral("Description"),
                 QStringLiteral("A longer text about item %1").arg(i)},
                {QStringLiteral("BuyerEmail"), QStringLiteral("buyer%1@example.com").arg(i)},
                {QStringLiteral("Active"), i % 3 ? 1 : 0}};
        m_env.addItems(rows);
    }
    void openActiveView()
    {
        RecordSet records(m_env.context().itemDatabase);
        records.setRecordSource(ItemSql::kActiveView);
        QBENCHMARK
        {
            records.refresh();
            records.moveLast();
            records.moveFirst();
        }
    }
    void walkAllItems()
    {
        RecordSet records(m_env.context().itemDatabase);
        records.setRecordSource(ItemSql::kAllView);
        records.refresh();
        QBENCHMARK
        {
            records.moveFirst();
            while (!records.eof())
                records.moveNext();
        }
    }
    void findDescriptionAnywhere()
    {
        RecordSet records(m_env.context().itemDatabase);
        records.setRecordSource(ItemSql::kAllView);
        records.refresh();
        QBENCHMARK
        {
            records.findFirst(QStringLiteral("(([ShortDescription] LIKE \"*item 4999*\") OR "
                                             "([Description] LIKE \"*item 4999*\")) "));
        }
        QCOMPARE(records.text(QStringLiteral("ShortDescription")), QStringLiteral("Item 4999"));
    }

private:
    TestEnvironment m_env;
};

QTEST_MAIN(BenchRecordSet)
#include "bench_recordset.moc"
