#include "db/DataBinder.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

void DataBinder::bind(QWidget* box, const QString& column)
{
    m_bindings.append({box, column, {}});
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
        e->setText(text);
        e->setCursorPosition(0);
    } else if (auto* e = qobject_cast<QPlainTextEdit*>(box)) {
        e->setPlainText(text);
    } else if (auto* e = qobject_cast<QTextEdit*>(box)) {
        e->setPlainText(text);
    } else if (auto* c = qobject_cast<QCheckBox*>(box)) {
        c->setChecked(text == QLatin1String("1"));
    } else if (auto* c = qobject_cast<QComboBox*>(box)) {
        c->setCurrentText(text);
    }
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
        if (qobject_cast<QCheckBox*>(b.box.data()))
            b.shown = boxText(b.box);
    }
    m_loading = false;
}

void DataBinder::collectEdits(RecordSet& records)
{
    for (Binding& b : m_bindings) {
        if (!b.box)
            continue;
        const QString now = boxText(b.box);
        if (now != b.shown) {
            records.setText(b.column, now);
            b.shown = now;
        }
    }
}
