#pragma once

#include "ftp/FtpSession.h"

#include <QDialog>

#include <memory>
#include <optional>

struct AppContext;
class FtpClient;
class QCloseEvent;
class QShowEvent;

namespace Ui {
class frmFTP;
}

// The FTP window: each opening runs one session with the seller's web space (connect, change
// to the auction directory, put or delete the files of the upload slots, log off) and lists
// every step. It reads the request (ftpAction, uploadFiles) and the settings from the context
// when the session starts. Shown modeless; the session starts once it is on screen.
class frmFTP : public QDialog
{
    Q_OBJECT
public:
    explicit frmFTP(AppContext& ctx, QWidget* parent = nullptr);
    ~frmFTP() override;

    // Item pictures go as upright copies no larger than the options allow, made in a
    // temporary folder for the session. Call before the window is shown.
    void sendWebCopies(const PictureTools::WebCopyOptions& options) { m_webCopies = options; }

    // Runs the session; returns when it has logged off (windows stay live meanwhile). Called
    // when the window is shown; calling it again before the window is closed does nothing.
    void start();
    bool isRunning() const { return m_running; }
    const FtpErrorState& errorState() const { return m_errors; }
    FtpClient& client() { return *m_client; }
    QStringList statusLines() const;

signals:
    void finished();

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void reject() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void addLine(const QString& line);
    void onError(int code);
    void onProgress(int percent);
    void onAbort();
    void showMeter(bool shown);
    void placeMeter();
    void setBusyPointer(bool busy);

    AppContext& m_ctx;
    std::unique_ptr<Ui::frmFTP> ui;
    FtpClient* m_client = nullptr; // child
    FtpErrorState m_errors;
    std::optional<PictureTools::WebCopyOptions> m_webCopies;
    bool m_started = false;
    bool m_running = false;
    bool m_busyPointer = false;
    bool m_transferAborted = false; // the running put was aborted; its late reports are stale
    int m_percent = 0;
};
