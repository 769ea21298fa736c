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
    // True while showRecord fills the boxes, so change handlers can tell a load from typing.
    bool isLoading() const { return m_loading; }

    static QString boxText(const QWidget* box);
    static void setBoxText(QWidget* box, const QString& text);

private:
    struct Binding
    {
        QPointer<QWidget> box;
        QString column;
        QString shown;
    };
    QList<Binding> m_bindings;
    bool m_loading = false;
};
