#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// The choices of the Options dialog's country and region lists, in the order the start-auction
// form numbers them.

// 224 names; a country's code ("CountryNum") is its position counted from 1.
const QStringList& countryNames();
// Position of a name in countryNames() (exact match), or -1.
int countryIndex(const QString& name);

struct RegionEntry
{
    QString name;
    int code; // the form's region code ("RegionNum")
};
// 54 entries, "Do Not List Regionally" (code 0) first.
const QList<RegionEntry>& regionEntries();
// Position of a region name, letter case ignored (the stored default "Do not list regionally"
// names the first entry), or -1.
int regionIndex(const QString& name);
