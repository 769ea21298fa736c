#pragma once

#include <QDialog>
#include <QString>
#include <QStringList>

#include <memory>

struct AppContext;
class QCloseEvent;
class QShowEvent;
class QTimer;
class WebClient;

namespace Ui {
class frmLoadWebPage;
}

// The page download window: one GET of ctx.state.pageUrl, listed step by step, with an Abort
// button. Shown modally by FetchPage; a second after it opens it sets up the proxy, waits a
// moment, fetches the page and closes, leaving the page's text (line ends made CR LF) in
// ctx.state.pageText, or "" when the page could not be had or the user aborted.
//
// The window never blocks its event loop: the waits are timers, so Abort (or closing the
// window) works at every moment. An Abort lists "Aborting connection...", waits the pause and
// closes; no transfer starts after it.
class frmLoadWebPage : public QDialog
{
    Q_OBJECT
public:
    static constexpr int kStartDelayMs = 1000;   // from opening to the first tick of Timer1
    static constexpr double kPauseSeconds = 3.0; // before the GET, and after an Abort

    // Test seam: the waits of windows created from now on. Production keeps the defaults;
    // tests shorten them so a fetch takes milliseconds. restoreWaits() puts the defaults back.
    static void setWaits(int startDelayMs, double pauseSeconds);
    static void restoreWaits() { setWaits(kStartDelayMs, kPauseSeconds); }

    explicit frmLoadWebPage(AppContext& ctx, QWidget* parent = nullptr);
    ~frmLoadWebPage() override;

    WebClient& client() { return *WebClient1; }
    QStringList statusLines() const;

    // The download's own state: where the client put the page, whether a transfer is under
    // way, whether the user aborted (or the client reported a cancel).
    QString pageFile() const { return m_pageFile; }
    bool downloadBusy() const { return m_downloadBusy; }
    bool downloadAborted() const { return m_downloadAborted; }

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

private:
    enum class Phase
    {
        Opening,  // until Timer1 ticks
        Pausing,  // connection reset, waiting before the GET
        Fetching, // the GET is under way
        Aborting, // Abort pressed; waiting before closing
        Done
    };

    void addStatus(const QString& line);
    void onTimer1();
    void onPauseOver();
    void onProgress(qint64 bytesRead, qint64 total, int percent);
    void onTransferComplete(const QString& fileName);
    void onDisconnected();
    void onCancelled();
    void endFetchIfIdle();
    void onAbort();

    AppContext& m_ctx;
    std::unique_ptr<Ui::frmLoadWebPage> ui;
    WebClient* WebClient1 = nullptr; // child
    QTimer* Timer1 = nullptr;        // child
    QTimer* TimeoutTimer = nullptr;  // child; kept for its name, its tick does nothing
    QTimer* m_pause = nullptr;       // child
    Phase m_phase = Phase::Opening;
    QString m_pageFile;
    bool m_downloadBusy = false;
    bool m_downloadAborted = false;
};
