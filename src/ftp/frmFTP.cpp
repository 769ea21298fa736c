#include "ftp/frmFTP.h"

#include "ftp/texts.h"
#include "platform/FtpClient.h"
#include "platform/FtpErrors.h"
#include "platform/WindowFitUi.h"
#include "settings/AppContext.h"
#include "ui_frmFTP.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

namespace {

// Runs work on a thread of its own and waits for it with the window live.
template <class Work> auto runAside(Work work)
{
    decltype(work()) result{};
    QEventLoop loop;
    const std::unique_ptr<QThread> thread(QThread::create([&] { result = work(); }));
    QObject::connect(thread.get(), &QThread::finished, &loop, &QEventLoop::quit);
    thread->start();
    loop.exec();
    thread->wait();
    return result;
}

} // namespace

frmFTP::frmFTP(AppContext& ctx, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), ui(std::make_unique<Ui::frmFTP>())
{
    ui->setupUi(this);
    setWindowTitle(FtpTexts::kCaption);
    m_client = new FtpClient(this);
    m_client->setObjectName(QStringLiteral("FtpClient1"));

    ui->Meter->setAutoFillBackground(true);
    QPalette bar = ui->Meter->palette();
    bar.setColor(QPalette::Window, bar.color(QPalette::Highlight));
    ui->Meter->setPalette(bar);
    ui->Gauge->installEventFilter(this);
    showMeter(false);
    ui->CancelBtn->setVisible(false);
    ui->CancelBtn->setEnabled(false);
    ui->cmdClose->setEnabled(false);

    connect(m_client, &FtpClient::progress, this, &frmFTP::onProgress);
    connect(ui->CancelBtn, &QPushButton::clicked, this, &frmFTP::onAbort);
    connect(ui->cmdClose, &QPushButton::clicked, this, &frmFTP::close);
    fitToScreen(*this);
}

frmFTP::~frmFTP()
{
    setBusyPointer(false);
}

QStringList frmFTP::statusLines() const
{
    QStringList lines;
    for (int i = 0; i < ui->lstStatus->count(); ++i)
        lines << ui->lstStatus->item(i)->text();
    return lines;
}

void frmFTP::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    // Started from the event loop, so the window is painted before the first line appears.
    if (!m_started)
        QTimer::singleShot(0, this, &frmFTP::start);
}

void frmFTP::closeEvent(QCloseEvent* event)
{
    // The session waits inside this window; it ends by logging off, not by closing.
    if (m_running)
        event->ignore();
    else
        QDialog::closeEvent(event);
}

void frmFTP::reject()
{
    if (m_running)
        return;
    // Closing ends this opening; showing the window again runs a new session.
    m_started = false;
    QDialog::reject();
}

void frmFTP::start()
{
    if (m_started)
        return;
    m_started = true;
    m_running = true;
    ui->cmdClose->setEnabled(false);
    // A reopened window starts as a fresh one: no lines, no meter, no Abort.
    ui->lstStatus->clear();
    m_percent = 0;
    showMeter(false);
    ui->CancelBtn->setVisible(false);
    ui->CancelBtn->setEnabled(false);

    const AppState& state = m_ctx.state;
    const OptionsRecord& options = state.options;
    m_errors = FtpErrorState{};

    FtpSessionInput input;
    input.action = state.ftpAction;
    std::copy(std::begin(state.uploadFiles), std::end(state.uploadFiles), input.files.begin());
    input.host = options.remoteHost;
    input.auctionDir = options.auctionDir;
    input.uploadRelative = options.uploadRelative;
    const FtpPlan plan = planFtpSession(input);
    // The copies live as long as the session; the seller's own files are never written.
    std::optional<QTemporaryDir> copies;
    if (m_webCopies && input.action == FtpTexts::kUploadImages)
        copies.emplace(QDir::temp().filePath(QStringLiteral("tallybid-upload-XXXXXX")));

    addLine(ftpConnectingLine(options.remoteHost));
    const FtpClient::Result connected =
        m_client->connectToHost(options.remoteHost, options.remotePort.trimmed().toInt(),
                                options.ftpUserid, options.ftpPassword);
    if (!connected.ok())
        onError(connected.code);

    if (m_errors.errorCode == 0) {
        addLine(FtpTexts::kConnected);
        // Where the directory cannot be entered the files go to the login directory.
        if (!plan.directory.isEmpty())
            m_client->changeDirectory(plan.directory);
        int copyNumber = 0;
        for (const FtpStep& step : plan.steps) {
            addLine(step.statusLine);
            FtpClient::Result r;
            if (step.kind == FtpStep::Kind::Delete) {
                setBusyPointer(true);
                r = m_client->deleteFile(step.remoteName);
                setBusyPointer(false);
            } else {
                // The "Overwrite" choice is kept for the user, but a put always replaces.
                QString sent = step.localPath;
                if (copies && copies->isValid()) {
                    const QString copyPath =
                        copies->filePath(QString::number(++copyNumber) + u'-' + step.remoteName);
                    sent = runAside(
                        [&] { return fileToSend(step.localPath, copyPath, *m_webCopies); });
                }
                m_transferAborted = false;
                r = m_client->putFile(sent, step.remoteName);
            }
            if (!r.ok())
                onError(r.code);
        }
        if (input.action == FtpTexts::kUploadImages)
            m_errors.uploadMode.clear();

        setBusyPointer(true);
        m_client->disconnectFromHost();
        addLine(FtpTexts::kLoggingOff);
    }

    ui->cmdClose->setEnabled(true);
    setBusyPointer(false);
    m_running = false;
    emit finished();
}

void frmFTP::addLine(const QString& line)
{
    ui->lstStatus->addItem(line);
    ui->lstStatus->scrollToBottom();
}

void frmFTP::onError(int code)
{
    if (m_errors.report(code))
        ShowFtpError(m_ctx.prompts, code, m_ctx.state.ftpAction);
}

void frmFTP::onProgress(int percent)
{
    // Reports the client queued before it saw the Abort must not bring the meter back.
    if (m_transferAborted)
        return;
    if (ui->Gauge->isHidden()) {
        showMeter(true);
        ui->CancelBtn->setVisible(true);
        ui->CancelBtn->setEnabled(true);
    }
    m_percent = percent;
    placeMeter();
    ui->Pct->setText(QString::number(percent) + u'%');
    if (percent == 100) {
        ui->CancelBtn->setVisible(false);
        ui->CancelBtn->setEnabled(false);
        showMeter(false);
        setBusyPointer(true); // until the session ends
    }
}

void frmFTP::onAbort()
{
    m_transferAborted = true;
    ui->cmdClose->setEnabled(false);
    setBusyPointer(true);
    m_client->cancel();
    ui->CancelBtn->setVisible(false);
    ui->CancelBtn->setEnabled(false);
    showMeter(false);
}

bool frmFTP::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == ui->Gauge && event->type() == QEvent::Resize)
        placeMeter();
    return QDialog::eventFilter(watched, event);
}

void frmFTP::placeMeter()
{
    const QRect inside = ui->Gauge->contentsRect();
    ui->Meter->setGeometry(inside.x(), inside.y(), m_percent * ui->Gauge->width() / 100,
                           inside.height());
}

void frmFTP::showMeter(bool shown)
{
    ui->Gauge->setVisible(shown);
    ui->Meter->setVisible(shown);
    ui->Pct->setVisible(shown);
}

void frmFTP::setBusyPointer(bool busy)
{
    if (busy == m_busyPointer)
        return;
    m_busyPointer = busy;
    if (busy)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}
