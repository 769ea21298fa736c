#pragma once

#include "db/RecordSet.h"

#include <QList>
#include <QPointer>
#include <QWidget>

// Binds boxes to columns of a RecordSet: line edits, plain/rich text edits and check boxes.
// Showing a record fills every bound box (without counting as a user edit); leaving the record
// hands back the boxes whose text changed since.
class DataBinder : public RecordBinding
{
public:
    void bind(QWidget* box, const QString& column);
    void showRecord(const RecordSet& records) override;
    void collectEdits(RecordSet& records) override;
    // The box still shows the value the record gave it: no edit since the record was shown.
    bool showsRecord(const QWidget* box) const;
    // The column a box is bound to; empty when it is not bound.
    QString column(const QWidget* box) const;
    // True while showRecord fills the boxes, so change handlers can tell a load from typing.
    bool isLoading() const { return m_loading; }

    static QString boxText(const QWidget* box);
    static void setBoxText(QWidget* box, const QString& text);

private:
    struct Binding
    {
        QPointer<QWidget> box;
        QString column;
        QString shown;         // the record's text, as given to the box
        QString loaded;        // what the box held once given it (a text box turns CR LF into LF)
        quint64 changesAtLoad; // a plain-text box's change count once given it
    };
    QList<Binding> m_bindings;
    bool m_loading = false;
};
