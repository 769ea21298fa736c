#include "db/DataBinder.h"

#include <QAbstractTextDocumentLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalBlocker>
#include <QTextDocument>
#include <QTextEdit>

namespace {

// Setting a long text into a plain-text box lays out its first lines and, to size the scroll
// bar, its last screenful, at once. Moving through items pays that for every item passed,
// though only the one the user stops at is ever seen. So the text goes into the box at once
// and the box's layout hears of it when the event loop next runs, or when the box is painted
// first: only records that reach the screen are laid out.
class LayoutCatchUp : public QObject
{
public:
    explicit LayoutCatchUp(QPlainTextEdit* edit) : QObject(edit), m_edit(edit)
    {
        setObjectName(kName);
        // The box's frame is painted before its text and scroll bars, so the scroll bars are
        // right by the time they are painted.
        edit->installEventFilter(this);
        edit->viewport()->installEventFilter(this);
        connect(edit, &QPlainTextEdit::textChanged, this, [this] { ++m_changes; });
    }

    static LayoutCatchUp* of(QPlainTextEdit* edit)
    {
        QObject* catchUp = edit->findChild<QObject*>(kName, Qt::FindDirectChildrenOnly);
        return catchUp ? static_cast<LayoutCatchUp*>(catchUp) : new LayoutCatchUp(edit);
    }

    void setText(const QString& text)
    {
        // Into the document itself: the box's own setPlainText would also give the whole text
        // its format once more and lay out the first lines to show its cursor, for every item
        // passed. The cursor goes back to the start when the box catches up.
        QTextDocument* document = m_edit->document();
        {
            const QSignalBlocker quiet(document->documentLayout());
            const bool undo = document->isUndoRedoEnabled();
            document->setUndoRedoEnabled(false); // nothing of the last item is left to undo
            document->setPlainText(text);
            document->setUndoRedoEnabled(undo);
            document->setModified(false);
        }
        if (!m_pending) {
            m_pending = true;
            QMetaObject::invokeMethod(this, &LayoutCatchUp::catchUp, Qt::QueuedConnection);
        }
    }

    // Counts every change of the box's text, its own filling included: reading a long text back
    // only to learn that nobody touched it costs as much as the rest of leaving a record.
    quint64 changes() const { return m_changes; }

    bool eventFilter(QObject*, QEvent* event) override
    {
        // Before it is seen, and before the user reaches into it.
        switch (event->type()) {
        case QEvent::Paint:
        case QEvent::FocusIn:
        case QEvent::KeyPress:
        case QEvent::ShortcutOverride:
        case QEvent::InputMethod:
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::Wheel:
            catchUp();
            break;
        default:
            break;
        }
        return false;
    }

private:
    static constexpr QLatin1StringView kName{"tbLayoutCatchUp"};

    void catchUp()
    {
        if (!m_pending)
            return;
        m_pending = false;
        QAbstractTextDocumentLayout* layout = m_edit->document()->documentLayout();
        emit layout->documentSizeChanged(layout->documentSize());
        m_edit->moveCursor(QTextCursor::Start); // scrolls back to the top as well
        m_edit->viewport()->update();
    }

    QPlainTextEdit* m_edit;
    bool m_pending = false;
    quint64 m_changes = 0;
};

LayoutCatchUp* catchUpOf(const QWidget* box)
{
    auto* edit = qobject_cast<QPlainTextEdit*>(const_cast<QWidget*>(box));
    return edit ? LayoutCatchUp::of(edit) : nullptr;
}

// An edited text box holds LF line ends; a record whose text had CR LF keeps them.
QString withRecordLineEnds(QString edited, const QString& shown)
{
    if (shown.contains(QLatin1String("\r\n")) && !edited.contains(u'\r'))
        edited.replace(u'\n', QLatin1String("\r\n"));
    return edited;
}

} // namespace

void DataBinder::bind(QWidget* box, const QString& column)
{
    m_bindings.append({box, column, {}, {}, 0});
}

QString DataBinder::boxText(const QWidget* box)
{
    if (auto* e = qobject_cast<const QLineEdit*>(box))
        return e->text();
    if (auto* e = qobject_cast<const QPlainTextEdit*>(box))
        return e->toPlainText();
    if (auto* e = qobject_cast<const QTextEdit*>(box))
        return e->toPlainText();
    if (auto* c = qobject_cast<const QCheckBox*>(box))
        return c->isChecked() ? QStringLiteral("1") : QStringLiteral("0");
    if (auto* c = qobject_cast<const QComboBox*>(box))
        return c->currentText();
    return {};
}

void DataBinder::setBoxText(QWidget* box, const QString& text)
{
    if (auto* e = qobject_cast<QLineEdit*>(box)) {
        // Laying out a box's text is most of what showing a record costs; a box that already
        // shows the text, untouched, only needs its cursor put back.
        if (e->text() != text || e->isUndoAvailable() || e->isRedoAvailable() ||
            e->hasSelectedText() || e->isModified())
            e->setText(text);
        e->setCursorPosition(0);
    } else if (auto* e = qobject_cast<QPlainTextEdit*>(box)) {
        LayoutCatchUp::of(e)->setText(text);
    } else if (auto* e = qobject_cast<QTextEdit*>(box)) {
        e->setPlainText(text);
    } else if (auto* c = qobject_cast<QCheckBox*>(box)) {
        c->setChecked(text == QLatin1String("1"));
    } else if (auto* c = qobject_cast<QComboBox*>(box)) {
        c->setCurrentText(text);
    }
}

bool DataBinder::showsRecord(const QWidget* box) const
{
    for (const Binding& b : m_bindings)
        if (b.box == box) {
            if (const LayoutCatchUp* text = catchUpOf(box))
                return text->changes() == b.changesAtLoad;
            return boxText(box) == b.loaded;
        }
    return false;
}

QString DataBinder::column(const QWidget* box) const
{
    for (const Binding& b : m_bindings)
        if (b.box == box)
            return b.column;
    return {};
}

void DataBinder::showRecord(const RecordSet& records)
{
    m_loading = true;
    for (Binding& b : m_bindings) {
        if (!b.box)
            continue;
        // A column the record source does not list shows empty.
        b.shown = records.text(b.column);
        setBoxText(b.box, b.shown);
        if (const LayoutCatchUp* text = catchUpOf(b.box)) {
            b.changesAtLoad = text->changes();
            continue;
        }
        b.loaded = boxText(b.box);
        if (qobject_cast<QCheckBox*>(b.box.data()))
            b.shown = b.loaded;
    }
    m_loading = false;
}

void DataBinder::collectEdits(RecordSet& records)
{
    for (Binding& b : m_bindings) {
        if (!b.box)
            continue;
        // Only what was typed counts: a box that changed the text as it took it (line ends,
        // length) must not rewrite the record when it is merely left.
        if (LayoutCatchUp* text = catchUpOf(b.box)) {
            if (text->changes() == b.changesAtLoad)
                continue;
            // Typed and typed back is no edit: the record set drops a value it already holds.
            const QString edited = withRecordLineEnds(boxText(b.box), b.shown);
            records.setText(b.column, edited);
            b.shown = edited;
            b.changesAtLoad = text->changes();
            continue;
        }
        const QString now = boxText(b.box);
        if (now == b.loaded)
            continue;
        const QString edited = withRecordLineEnds(now, b.shown);
        records.setText(b.column, edited);
        b.shown = edited;
        b.loaded = now;
    }
}
