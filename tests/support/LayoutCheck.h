#pragma once

#include <QStringList>

class QWidget;

// What a person would notice at a window's current size: visible controls that overlap a
// sibling, or that are squeezed below the size they need to show their text. Empty when the
// layout is clean.
QStringList layoutProblems(const QWidget* root);
