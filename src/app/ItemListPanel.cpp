#include "ItemListPanel.h"

#include "db/ItemListModel.h"
#include "db/RecordSet.h"
#include "platform/SettingsStore.h"
#include "settings/SettingsCatalogue.h"

#include <QAction>
#include <QDockWidget>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QStyleOptionHeader>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

namespace {

const QString kVisibleKey = QStringLiteral("ItemListVisible");
const QString kWidthKey = QStringLiteral("ItemListWidth");
const QString kColumnsKey = QStringLiteral("ItemListColumns");
constexpr int kDefaultWidth = 300;

bool isSearchKey(const QEvent* event)
{
    const auto* key = static_cast<const QKeyEvent*>(event);
    return key->keyCombination() == QKeyCombination(Qt::ControlModifier, Qt::Key_F);
}

// Qt sizes a header's sections for bold text, for headers that show the current column in
// bold. This one never does, and measuring in its own face spares loading a bold face at
// start-up for that alone.
class ItemListHeader : public QHeaderView
{
public:
    using QHeaderView::QHeaderView;

protected:
    QSize sectionSizeFromContents(int logicalIndex) const override
    {
        if (!model())
            return {};
        ensurePolished();
        QStyleOptionHeader option;
        initStyleOption(&option);
        option.section = logicalIndex;
        option.fontMetrics = fontMetrics();
        option.text = model()->headerData(logicalIndex, orientation()).toString();
        if (isSortIndicatorShown())
            option.sortIndicator = QStyleOptionHeader::SortDown;
        return style()->sizeFromContents(QStyle::CT_HeaderSection, &option, QSize(), this);
    }
};

} // namespace

ItemListPanel::ItemListPanel(RecordSet& records, SettingsStore& store, QWidget* parent)
    : QWidget(parent), m_records(records), m_store(store),
      m_model(new ItemListModel(records.database(), this)), m_search(new QLineEdit(this)),
      m_table(new QTableView(this))
{
    setObjectName(QStringLiteral("ItemListPanel"));
    m_search->setObjectName(QStringLiteral("txtItemSearch"));
    m_search->setPlaceholderText(tr("Search items"));
    m_search->setClearButtonEnabled(true);
    m_table->setObjectName(QStringLiteral("lvwItems"));
    m_table->setHorizontalHeader(new ItemListHeader(Qt::Horizontal, m_table));
    m_table->setModel(m_model);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setWordWrap(false);
    m_table->setAlternatingRowColors(true);
    // Rows of one height: a list of 100,000 rows then scrolls without measuring any of them.
    QHeaderView* rows = m_table->verticalHeader();
    rows->hide();
    rows->setSectionResizeMode(QHeaderView::Fixed);
    rows->setDefaultSectionSize(m_table->fontMetrics().height() + 6);
    QHeaderView* header = m_table->horizontalHeader();
    header->setSectionsClickable(true);
    header->setSortIndicatorShown(true);
    header->setSortIndicator(-1, Qt::AscendingOrder);
    header->setHighlightSections(false);
    header->setStretchLastSection(true);
    // The ID column is as wide as a six-digit number: the list starts narrow beside the item,
    // and the eBay number next to it is what tells items apart.
    header->resizeSection(ItemListModel::Id, std::max(header->sectionSizeHint(ItemListModel::Id),
                                                      m_table->fontMetrics().horizontalAdvance(
                                                          QStringLiteral("0000000"))));
    const QStringList widths =
        store.get(Settings::kApp, Settings::kSystem, kColumnsKey).split(u',', Qt::SkipEmptyParts);
    for (int c = 0; c < widths.size() && c < ItemListModel::ColumnCount; ++c)
        if (const int w = widths.at(c).toInt(); w > 0)
            header->resizeSection(c, w);
    m_columnWidths = widths.join(u',');
    m_width = store.get(Settings::kApp, Settings::kSystem, kWidthKey).toInt();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->setSpacing(2);
    layout->addWidget(m_search);
    layout->addWidget(m_table);
    setMinimumWidth(120);

    m_search->installEventFilter(this);
    m_table->installEventFilter(this);
    connect(m_search, &QLineEdit::textChanged, m_model, &ItemListModel::setFilterText);
    connect(header, &QHeaderView::sortIndicatorChanged, m_model,
            [this](int column, Qt::SortOrder order) { m_model->sort(column, order); });
    connect(header, &QHeaderView::sectionResized, this, [this, header] {
        QStringList out;
        for (int c = 0; c < ItemListModel::ColumnCount; ++c)
            out << QString::number(header->sectionSize(c));
        m_columnWidths = out.join(u',');
    });
    connect(m_model, &ItemListModel::keysApplied, this, &ItemListPanel::selectCurrent);
    connect(m_table->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) {
                if (m_selecting || !current.isValid())
                    return;
                const qint64 key = m_model->keyAt(current.row());
                if (key >= 0 && key != m_records.bookmark()) {
                    // The user's own selection stands (Ctrl and Shift add rows to it).
                    m_choosing = true;
                    emit itemChosen(key);
                    m_choosing = false;
                }
            });
    connect(&m_records, &RecordSet::repositioned, this, &ItemListPanel::followRecords);
    followRecords();
}

ItemListPanel::~ItemListPanel()
{
    const auto keep = [this](const QString& key, const QString& value) {
        if (!value.isEmpty() && m_store.get(Settings::kApp, Settings::kSystem, key) != value)
            m_store.save(Settings::kApp, Settings::kSystem, key, value);
    };
    keep(kWidthKey, m_width > 0 ? QString::number(m_width) : QString());
    keep(kColumnsKey, m_columnWidths);
}

ItemListPanel* ItemListPanel::dockInto(QMainWindow& window, QMenu& viewMenu, RecordSet& records,
                                       SettingsStore& store)
{
    auto* dock = new QDockWidget(tr("Item List"), &window);
    dock->setObjectName(QStringLiteral("dockItemList"));
    dock->setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
    auto* panel = new ItemListPanel(records, store, dock);
    dock->setWidget(panel);
    window.addDockWidget(Qt::LeftDockWidgetArea, dock);
    QAction* toggle = dock->toggleViewAction();
    toggle->setObjectName(QStringLiteral("mnuViewItemList"));
    toggle->setText(tr("Item List"));
    viewMenu.addAction(toggle);
    // On a window too narrow for the list beside the item the list waits in the View menu,
    // so the item keeps all of its room.
    const int room = window.width() - window.centralWidget()->minimumSizeHint().width();
    const bool fits = room >= dock->minimumSizeHint().width();
    dock->setVisible(fits && store.getBool(Settings::kApp, Settings::kSystem, kVisibleKey, true));
    // A dock shown again comes back with its own width rather than its size hint.
    const auto restoreWidth = [&window, dock, panel] {
        window.resizeDocks({dock}, {panel->m_width > 0 ? panel->m_width : kDefaultWidth},
                           Qt::Horizontal);
    };
    // Only the user's showing and hiding is kept, not the window closing.
    connect(toggle, &QAction::triggered, panel, [&store, panel, restoreWidth](bool shown) {
        store.saveBool(Settings::kApp, Settings::kSystem, kVisibleKey, shown);
        if (shown)
            QTimer::singleShot(0, panel, restoreWidth);
    });
    connect(dock, &QDockWidget::visibilityChanged, panel, [dock](bool shown) {
        if (!shown && dock->isHidden())
            dock->toggleViewAction()->setChecked(false);
    });
    restoreWidth();
    return panel;
}

void ItemListPanel::focusSearch()
{
    if (auto* dock = qobject_cast<QDockWidget*>(parentWidget()); dock && dock->isHidden())
        dock->show();
    m_search->setFocus(Qt::ShortcutFocusReason);
    m_search->selectAll();
}

QList<qint64> ItemListPanel::selectedKeys() const
{
    QModelIndexList rows = m_table->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end(),
              [](const QModelIndex& a, const QModelIndex& b) { return a.row() < b.row(); });
    QList<qint64> keys;
    keys.reserve(rows.size());
    for (const QModelIndex& row : std::as_const(rows))
        keys << m_model->keyAt(row.row());
    return keys;
}

bool ItemListPanel::eventFilter(QObject* watched, QEvent* event)
{
    // Inside the list Ctrl+F goes to its search box; elsewhere the window's Find keeps it.
    if (event->type() == QEvent::ShortcutOverride && isSearchKey(event)) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::KeyPress) {
        if (isSearchKey(event)) {
            focusSearch();
            return true;
        }
        if (watched == m_search && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape &&
            !m_search->text().isEmpty()) {
            m_search->clear();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ItemListPanel::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    // The dock's width, which is what the window is asked for again.
    if (isVisible())
        m_width = parentWidget() ? parentWidget()->width() : width();
}

void ItemListPanel::followRecords()
{
    if (!m_model->showsView(m_records.keys()))
        m_model->setView(m_records.keys());
    // What was typed into the item just left has been written: show it.
    if (m_shownKey >= 0 && m_shownKey != m_records.bookmark())
        m_model->forgetItem(m_shownKey);
    selectCurrent();
}

void ItemListPanel::selectCurrent()
{
    const qint64 key = m_records.bookmark();
    m_shownKey = key;
    if (m_choosing)
        return;
    const int row = key >= 0 ? m_model->rowOf(key) : -1;
    m_selecting = true;
    if (row < 0) {
        m_table->selectionModel()->clear();
    } else {
        const QModelIndex at = m_model->index(row, 0);
        // The row is chosen at once; bringing it into view waits for the event loop, so a
        // run of moves scrolls the list once instead of on every move.
        m_table->setAutoScroll(false);
        m_table->selectionModel()->setCurrentIndex(at, QItemSelectionModel::ClearAndSelect |
                                                           QItemSelectionModel::Rows);
        m_table->setAutoScroll(true);
        if (!m_scrollQueued) {
            m_scrollQueued = true;
            QTimer::singleShot(0, this, [this] {
                m_scrollQueued = false;
                m_table->scrollTo(m_table->currentIndex());
            });
        }
    }
    m_selecting = false;
}
