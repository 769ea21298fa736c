#pragma once

#include <QDialog>
#include <QList>
#include <QString>
#include <array>
#include <memory>

struct AppContext;
class QCheckBox;
class QLineEdit;
class QRadioButton;

namespace Ui {
class frmOptions;
}

// The Options dialog: edits every setting of the "Options" section, tidies some fields when
// they lose the focus and tests the FTP and mail connections with the settings last applied.
// Open it modally (exec()); Apply and OK write the store and refresh ctx.state.options.
class frmOptions : public QDialog
{
    Q_OBJECT
public:
    static constexpr int kLinkRows = 10;

    explicit frmOptions(AppContext& ctx, QWidget* parent = nullptr);
    ~frmOptions() override;

    // Writes every field to the settings store and reloads the application-wide copy.
    // Returns false (after telling the user) when the store could not be written.
    bool applySettings();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void loadSettings();
    void fillLists();
    void connectControls();
    void updateProxyControls();
    void updateResizeControls();
    // The tidying a field gets when the focus leaves it; other objects are left alone.
    void normalizeField(QObject* field);

    void onOk();
    void onTestFtp();
    void onTestMail();

    // A text field and the key it is kept under.
    struct TextField
    {
        QLineEdit* edit;
        QString key;
    };
    // A check box kept as 0/1.
    struct CheckField
    {
        QCheckBox* box;
        QString key;
    };
    // Two option buttons for one boolean key: the first one stands for True.
    struct ChoiceField
    {
        QRadioButton* whenTrue;
        QRadioButton* whenFalse;
        QString key;
    };

    AppContext& m_ctx;
    std::unique_ptr<Ui::frmOptions> m_ui;
    std::array<QCheckBox*, 9> m_chkPayment{};
    std::array<QCheckBox*, 4> m_chkShipping{};
    std::array<QLineEdit*, 4> m_txtSendAddress{};
    std::array<QLineEdit*, kLinkRows> m_txtLinkName{};
    std::array<QLineEdit*, kLinkRows> m_txtLinkURL{};
    QList<TextField> m_textFields;
    QList<CheckField> m_checkFields;
    QList<ChoiceField> m_choiceFields;

    // The list choices Apply writes; a stored value outside the lists is kept as it was.
    QString m_pendingCountry, m_pendingCountryNum;
    QString m_pendingRegion, m_pendingRegionNum;
    // A stored mail security setting the list does not know, written back as it was.
    QString m_unknownSmtpSecurity;
    bool m_loading = false;
    bool m_startPageTyped = false;
    bool m_leaveFeedbackTyped = false;
};
