#pragma once

#include <QString>

// The Ad Studio's own messages, questions and dialog filters. Captions and tooltips of its
// controls live in frmAdStudio.ui.
namespace AdStudioText {
inline const QString kMissingStandard = QStringLiteral(
    "You are missing the file: standard.tbt. Please get another copy from our web site.");

inline const QString kChangedQuestion =
    QStringLiteral("Theme has been changed but not saved.  Do you want save now?");
inline const QString kChangedTitle = QStringLiteral("Theme Changed");

inline const QString kNewThemePrompt = QStringLiteral("Please provide a name for your new theme.");
inline const QString kNewThemeTitle = QStringLiteral("New Theme");
inline const QString kSaveAsPrompt = QStringLiteral("Please provide a name to save as.");
inline const QString kSaveAsTitle = QStringLiteral("Save As Theme");

// "Can't find file: " + path + ". Please re-enter."
inline const QString kFileMissingBefore = QStringLiteral("Can't find file: ");
inline const QString kFileMissingAfter = QStringLiteral(". Please re-enter.");

inline const QString kTextsNotSaved =
    QStringLiteral("Your listing texts could not be written to the settings file %1.");
inline const QString kTextsNotSavedTitle = QStringLiteral("Error");

// Titles of the file dialogs.
inline const QString kOpenTitle = QStringLiteral("Open");
inline const QString kSaveTitle = QStringLiteral("Save As");

// Filters, in the "Description|patterns" form of the file dialogs.
inline const QString kNewThemeSetFilter = QStringLiteral("Tallybid Theme files (*.tbt)|*.tbt");
inline const QString kOpenThemeSetFilter = QStringLiteral("Tallybid ThemeSet files (*.tbt)|*.tbt");
inline const QString kImageFilter = QStringLiteral(
    "Internet Image Files (*.gif; *.jpg; *.jpeg)|*.gif; *.jpg; *.jpeg;|All Files (*.*)|*.*");
inline const QString kSoundFilter = QStringLiteral(
    "Internet Sound Files (*.wav; *.mid; *.au)|*.wav; *.mid; *.au;|All Files (*.*)|*.*");
inline const QString kThemeSetSuffix = QStringLiteral("tbt");
} // namespace AdStudioText
