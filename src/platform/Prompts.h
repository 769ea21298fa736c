#pragma once

#include <QColor>
#include <QFont>
#include <QString>
#include <optional>

// The title a message box gets when its caller names none (the application's own title).
inline const QString kDefaultTitle = QStringLiteral("Tallybid");

enum class PromptIcon
{
    None,
    Information,
    Exclamation,
    Critical,
    Question
};
enum class PromptButtons
{
    Ok,
    OkCancel,
    YesNo,
    YesNoCancel,
    RetryCancel
};
enum class PromptAnswer
{
    Ok,
    Cancel,
    Yes,
    No,
    Retry
};

// Every question the program asks the user goes through this seam, so windows can be driven
// headless: production shows real dialogs, tests answer from a script and read back what was shown.
class Prompts
{
public:
    virtual ~Prompts() = default;

    virtual PromptAnswer message(const QString& text, const QString& title = kDefaultTitle,
                                 PromptIcon icon = PromptIcon::None,
                                 PromptButtons buttons = PromptButtons::Ok) = 0;
    // Empty optional when the user cancels.
    virtual std::optional<QString> input(const QString& prompt, const QString& title,
                                         const QString& defaultText) = 0;
    // filter uses the "Description|patterns|Description|patterns" form; empty result = cancelled.
    virtual QString openFileName(const QString& title, const QString& startDir,
                                 const QString& filter) = 0;
    virtual QString saveFileName(const QString& title, const QString& startDir,
                                 const QString& filter) = 0;
    virtual std::optional<QFont> font(const QFont& initial) = 0;
    virtual std::optional<QColor> color(const QColor& initial) = 0;
};

// "Images (*.gif; *.jpg)|*.gif; *.jpg;|All Files (*.*)|*.*" -> "Images (*.gif; *.jpg) (*.gif
// *.jpg);;..."
QString qtFileFilter(const QString& pipeFilter);
