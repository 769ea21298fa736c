// The item list's model over a few hundred items: rows read only when shown, sorting and
// searching by asking SQLite for keys, the view's order kept.
#include "../support/TestEnvironment.h"
#include "db/ItemListModel.h"
#include "db/ItemSql.h"
#include "db/RecordSet.h"

#include <QSqlQuery>
#include <QtTest>

namespace {

QString cell(const ItemListModel& m, int row, int column)
{
    return m.data(m.index(row, column)).toString();
}

// A view sorted on a column (and searched), the titles it then shows first and its row count.
// flipFirst: the view's first item changes its Active box after the view was read.
// clang-format off
struct Sort { QString source; int column; Qt::SortOrder order; QStringList firstTitles; int rows; QString search = {}; bool flipFirst = false; };
// clang-format on

// The first row rowOf misplaces, looked for in turn, backwards and far apart; "" when none.
QString misplacedRow(const ItemListModel& m)
{
    const int n = m.rowCount();
    QList<int> rows;
    for (int r = 0; r < n; ++r)
        rows << r;
    for (int r = n - 1; r >= 0; --r)
        rows << r;
    for (int r = 0; r < n; ++r)
        rows << r * 97 % n;
    for (const int r : std::as_const(rows))
        if (m.rowOf(m.keyAt(r)) != r)
            return QString::number(r);
    for (const qint64 missing : {qint64(0), m.keyAt(0) + 100000})
        if (m.rowOf(missing) != -1)
            return QStringLiteral("missing key %1").arg(missing);
    return {};
}

// Waits for a sort or search handed to the worker.
bool settle(ItemListModel& m)
{
    QSignalSpy applied(&m, &ItemListModel::keysApplied);
    return !m.isBusy() || applied.wait(5000);
}

} // namespace

class TestItemListModel : public QObject
{
    Q_OBJECT
    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<RecordSet> m_records;
    std::unique_ptr<ItemListModel> m_model;

    void open(const QString& source)
    {
        m_records = std::make_unique<RecordSet>(m_env->context().itemDatabase);
        m_records->setRecordSource(source);
        m_records->refresh();
        m_model = std::make_unique<ItemListModel>(m_env->context().itemDatabase);
        m_model->setView(m_records->keys());
    }

private slots:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        // 300 numbered items (every third inactive) and a few with text to search.
        m_env->addNumberedItems(300);
        m_env->addItems({
            {{"ShortDescription", QString::fromUtf8("Ölgemälde, gerahmt")}, {"Active", true}},
            {{"ShortDescription", "Lamp"},
             {"Description", QString::fromUtf8("Brass, ÉTÉ 1950")},
             {"Active", false}},
            {{"ShortDescription", "Vase"},
             {"BuyerName", "Ann Smith"},
             {"BuyerEmail", "ann@example.org"}},
            {{"ShortDescription", "Box [new] 50*"}, {"EbayID", "1234567"}},
        });
    }
    void cleanup()
    {
        m_model.reset();
        m_records.reset();
        m_env.reset();
    }

    // Showing a row reads its block only; the last row does not read the ones before it.
    void readsOnlyTheRowsShown()
    {
        open(ItemSql::kAllView);
        QCOMPARE(m_model->rowCount(), 304);
        QCOMPARE(m_model->rowsRead(), 0);
        QCOMPARE(cell(*m_model, 303, ItemListModel::Title), QStringLiteral("Box [new] 50*"));
        QVERIFY(m_model->rowsRead() <= ItemListModel::kBlockRows);
        const qint64 read = m_model->rowsRead();
        QCOMPARE(cell(*m_model, 290, ItemListModel::Title), QStringLiteral("Item 291"));
        QCOMPARE(m_model->rowsRead(), read); // the same block
        QCOMPARE(cell(*m_model, 0, ItemListModel::Title), QStringLiteral("Item 1"));
        QVERIFY(m_model->rowsRead() <= 2 * ItemListModel::kBlockRows);
    }

    // What was stored after a row was read shows once the item is forgotten.
    void forgottenItemIsReadAgain()
    {
        open(ItemSql::kAllView);
        QCOMPARE(cell(*m_model, 4, ItemListModel::Title), QStringLiteral("Item 5"));
        QSqlQuery(m_env->context().itemDatabase)
            .exec(QStringLiteral("UPDATE Items SET ShortDescription = 'Jug' WHERE ID = %1")
                      .arg(m_model->keyAt(4)));
        QCOMPARE(cell(*m_model, 4, ItemListModel::Title), QStringLiteral("Item 5"));
        m_model->forgetItem(m_model->keyAt(4));
        QCOMPARE(cell(*m_model, 4, ItemListModel::Title), QStringLiteral("Jug"));
    }

    void sorts_data()
    {
        QTest::addColumn<Sort>("row");
        const QString all = ItemSql::kAllView;
        const int title = ItemListModel::Title;
        // clang-format off
        QTest::newRow("title up") << Sort{all, title, Qt::AscendingOrder, {"Box [new] 50*", "Item 1", "Item 10", "Item 100"}, 304};
        QTest::newRow("title down") << Sort{all, title, Qt::DescendingOrder, {"Ölgemälde, gerahmt", "Vase", "Lamp", "Item 99"}, 304};
        QTest::newRow("ID down, inactive view") << Sort{ItemSql::kInactiveView, ItemListModel::Id, Qt::DescendingOrder, {"Lamp", "Item 300", "Item 297"}, 101};
        QTest::newRow("buyer down, ties by ID") << Sort{all, ItemListModel::Buyer, Qt::DescendingOrder, {"Vase", "Box [new] 50*", "Lamp"}, 304};
        // An item made active stays in the Inactive view until it is opened again.
        QTest::newRow("searched, made active since") << Sort{ItemSql::kInactiveView, -1, Qt::AscendingOrder, {"Item 3", "Item 30", "Item 33"}, 6, "item 3", true};
        QTest::newRow("sorted, made active since") << Sort{ItemSql::kInactiveView, title, Qt::AscendingOrder, {"Item 3", "Item 30", "Item 300"}, 6, "item 3", true};
        // clang-format on
    }
    void sorts()
    {
        QFETCH(Sort, row);
        const auto& [source, column, order, firstTitles, rows, search, flipFirst] = row;
        open(source);
        const QList<qint64> viewKeys = m_records->keys();
        if (flipFirst)
            QVERIFY(QSqlQuery(m_env->context().itemDatabase)
                        .exec(QStringLiteral("UPDATE Items SET Active = 1 - Active WHERE ID = %1")
                                  .arg(viewKeys.first())));
        m_model->setFilterText(search);
        m_model->sort(column, order);
        QVERIFY(settle(*m_model));
        QCOMPARE(m_model->rowCount(), rows);
        QStringList titles;
        for (int r = 0; r < firstTitles.size(); ++r)
            titles << cell(*m_model, r, ItemListModel::Title);
        QCOMPARE(titles, firstTitles);
        QCOMPARE(misplacedRow(*m_model), QString());
        QCOMPARE(m_records->keys(), viewKeys);
        // Back to the view's own order.
        m_model->setFilterText(QString());
        m_model->sort(-1);
        QVERIFY(settle(*m_model));
        QCOMPARE(m_model->keyAt(0), viewKeys.first());
        QCOMPARE(misplacedRow(*m_model), QString());
    }

    void searches_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("titles");
        const QString all = ItemSql::kAllView, active = ItemSql::kActiveView;
        const QString box = QStringLiteral("Box [new] 50*");
        // clang-format off
        QTest::newRow("non-ASCII title, other case") << all << QString::fromUtf8("ölGEMÄ") << QStringList{"Ölgemälde, gerahmt"};
        QTest::newRow("description text")  << all << QString::fromUtf8("été") << QStringList{"Lamp"};
        QTest::newRow("buyer e-mail")      << all << "EXAMPLE.ORG" << QStringList{"Vase"};
        QTest::newRow("buyer name")        << all << "ann s"       << QStringList{"Vase"};
        QTest::newRow("eBay number")       << all << "4567"        << QStringList{box};
        QTest::newRow("pattern characters are literal") << all << "[new] 50*" << QStringList{box};
        QTest::newRow("star alone matches only a star") << all << "*" << QStringList{box};
        QTest::newRow("in view order")     << all << "item 29"
            << QStringList{"Item 29", "Item 290", "Item 291", "Item 292", "Item 293", "Item 294", "Item 295", "Item 296", "Item 297", "Item 298", "Item 299"};
        QTest::newRow("only the view's rows") << active << "item 29"
            << QStringList{"Item 29", "Item 290", "Item 292", "Item 293", "Item 295", "Item 296", "Item 298", "Item 299"};
        QTest::newRow("nothing")           << all << "zebra" << QStringList{};
        // clang-format on
    }
    void searches()
    {
        QFETCH(QString, source);
        QFETCH(QString, text);
        QFETCH(QStringList, titles);
        open(source);
        m_model->setFilterText(text);
        QVERIFY(settle(*m_model));
        QStringList shown;
        for (int r = 0; r < m_model->rowCount(); ++r)
            shown << cell(*m_model, r, ItemListModel::Title);
        QCOMPARE(shown, titles);
        m_model->setFilterText(QString());
        QCOMPARE(m_model->rowCount(), m_records->recordCount());
    }

    // Searching a sorted list keeps the sort.
    void searchKeepsSort()
    {
        open(ItemSql::kAllView);
        m_model->sort(ItemListModel::Id, Qt::DescendingOrder);
        m_model->setFilterText(QStringLiteral("item 1"));
        QVERIFY(settle(*m_model));
        QCOMPARE(cell(*m_model, 0, ItemListModel::Title), QStringLiteral("Item 199"));
        QCOMPARE(cell(*m_model, m_model->rowCount() - 1, ItemListModel::Title),
                 QStringLiteral("Item 1"));
    }
};

QTEST_GUILESS_MAIN(TestItemListModel)
#include "tst_itemlistmodel.moc"
