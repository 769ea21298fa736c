#include "web/frmLoadWebPage.h"

#include "platform/SettingsStore.h"
#include "platform/TextRoutines.h"
#include "platform/WebClient.h"
#include "platform/WindowFitUi.h"
#include "settings/AppContext.h"
#include "settings/SettingsCatalogue.h"
#include "ui_frmLoadWebPage.h"
#include "web/texts.h"

#include <QCloseEvent>
#include <QFile>
#include <QTimer>

namespace {

namespace Texts = LoadPageTexts;

int s_startDelayMs = frmLoadWebPage::kStartDelayMs;
double s_pauseSeconds = frmLoadWebPage::kPauseSeconds;

int pauseMs()
{
    return qMax(0, qRound(s_pauseSeconds * 1000));
}

QString option(const AppContext& ctx, const char* key)
{
    return readSetting(ctx.store, Settings::kOptions, QString::fromLatin1(key));
}

// The opening "( " without its closing parenthesis is how the line has always read.
QString progressText(qint64 bytesRead, qint64 total, int percent)
{
    if (total == 0)
        return Texts::kRetrieving + QString::number(bytesRead) + u')';
    return Texts::kRetrieving + QString::number(bytesRead) + QLatin1String(" of ") +
           QString::number(total) + QLatin1String(" (") + QString::number(percent) +
           QLatin1String("%)");
}

} // namespace

void frmLoadWebPage::setWaits(int startDelayMs, double pauseSeconds)
{
    s_startDelayMs = qMax(0, startDelayMs);
    s_pauseSeconds = qMax(0.0, pauseSeconds);
}

frmLoadWebPage::frmLoadWebPage(AppContext& ctx, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), ui(std::make_unique<Ui::frmLoadWebPage>())
{
    ui->setupUi(this);
    m_ctx.state.pageText.clear();

    WebClient1 = new WebClient(this);
    WebClient1->setObjectName(QStringLiteral("WebClient1"));
    const bool newCat = SettingsStore::toBool(option(m_ctx, "NewCat"), true);
    WebClient1->setAgent(newCat ? Texts::kAgent : QString());

    Timer1 = new QTimer(this);
    Timer1->setObjectName(QStringLiteral("Timer1"));
    Timer1->setSingleShot(true);
    Timer1->setInterval(s_startDelayMs);
    TimeoutTimer = new QTimer(this);
    TimeoutTimer->setObjectName(QStringLiteral("TimeoutTimer"));
    m_pause = new QTimer(this);
    m_pause->setSingleShot(true);
    m_pause->setTimerType(Qt::PreciseTimer); // a coarse timer may end a pause early

    connect(Timer1, &QTimer::timeout, this, &frmLoadWebPage::onTimer1);
    connect(m_pause, &QTimer::timeout, this, &frmLoadWebPage::onPauseOver);
    connect(ui->cmdAbort, &QPushButton::clicked, this, &frmLoadWebPage::onAbort);
    connect(WebClient1, &WebClient::connecting, this, [this] { addStatus(Texts::kConnecting); });
    connect(WebClient1, &WebClient::progress, this, &frmLoadWebPage::onProgress);
    connect(WebClient1, &WebClient::transferComplete, this, &frmLoadWebPage::onTransferComplete);
    connect(WebClient1, &WebClient::disconnected, this, &frmLoadWebPage::onDisconnected);
    connect(WebClient1, &WebClient::cancelled, this, &frmLoadWebPage::onCancelled);
    fitToScreen(*this);
}

frmLoadWebPage::~frmLoadWebPage() = default;

QStringList frmLoadWebPage::statusLines() const
{
    QStringList lines;
    for (int i = 0; i < ui->lstStatus->count(); ++i)
        lines << ui->lstStatus->item(i)->text();
    return lines;
}

void frmLoadWebPage::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (m_phase == Phase::Opening && !Timer1->isActive())
        Timer1->start();
}

void frmLoadWebPage::closeEvent(QCloseEvent* event)
{
    // Closing from the title bar is an Abort; the window goes once the abort has run its course.
    if (m_phase == Phase::Done) {
        QDialog::closeEvent(event);
        return;
    }
    event->ignore();
    onAbort();
}

void frmLoadWebPage::reject()
{
    if (m_phase == Phase::Done)
        QDialog::reject();
    else
        onAbort();
}

void frmLoadWebPage::addStatus(const QString& line)
{
    if (line.isEmpty())
        return;
    ui->lstStatus->addItem(line);
    ui->lstStatus->setCurrentRow(ui->lstStatus->count() - 1); // keeps the newest line in view
}

void frmLoadWebPage::onTimer1()
{
    Timer1->stop();
    if (m_phase != Phase::Opening)
        return;
    if (option(m_ctx, "UseProxy").trimmed().toInt() == 1) {
        bool ok = false;
        int port = option(m_ctx, "ProxyPort").trimmed().toInt(&ok);
        if (!ok)
            port = settingDefault(Settings::kOptions, QStringLiteral("ProxyPort")).toInt();
        WebClient1->setProxy(true, option(m_ctx, "ProxyServer"), port);
        addStatus(Texts::kUsingProxy + WebClient1->proxyHost() + Texts::kUsingProxyEnd);
    } else {
        WebClient1->setProxy(false, QString(), 80);
    }
    addStatus(Texts::kAttempting);
    WebClient1->resetConnection();
    m_phase = Phase::Pausing;
    m_pause->start(pauseMs());
}

void frmLoadWebPage::onPauseOver()
{
    if (m_phase == Phase::Pausing) {
        m_pageFile.clear();
        m_downloadBusy = true;
        m_phase = Phase::Fetching;
        WebClient1->get(m_ctx.state.pageUrl);
        m_downloadAborted = false;
    } else if (m_phase == Phase::Aborting) {
        m_phase = Phase::Done;
        done(QDialog::Rejected);
    }
}

void frmLoadWebPage::onProgress(qint64 bytesRead, qint64 total, int percent)
{
    addStatus(progressText(bytesRead, total, percent));
}

void frmLoadWebPage::onTransferComplete(const QString& fileName)
{
    addStatus(Texts::kDone);
    m_pageFile = fileName;
    m_downloadBusy = false;
    // After an Abort the page is not wanted any more.
    if (m_phase != Phase::Fetching)
        QFile::remove(fileName);
    endFetchIfIdle();
}

void frmLoadWebPage::onDisconnected()
{
    addStatus(Texts::kDisconnected);
    m_downloadBusy = false;
    endFetchIfIdle();
}

void frmLoadWebPage::onCancelled()
{
    addStatus(Texts::kCancelled);
    m_downloadBusy = false;
    m_downloadAborted = true;
    endFetchIfIdle();
}

void frmLoadWebPage::endFetchIfIdle()
{
    if (m_phase != Phase::Fetching || m_downloadBusy)
        return;
    m_phase = Phase::Done;
    m_ctx.state.pageText = m_downloadAborted ? QString() : ReadTextFile(m_pageFile);
    if (!m_pageFile.isEmpty())
        QFile::remove(m_pageFile);
    done(QDialog::Accepted);
}

void frmLoadWebPage::onAbort()
{
    // One Abort runs its course; pressing again while it does changes nothing.
    if (m_phase == Phase::Aborting || m_phase == Phase::Done)
        return;
    WebClient1->cancel();
    addStatus(Texts::kAborting);
    m_downloadAborted = true;
    m_downloadBusy = false;
    Timer1->stop();
    m_ctx.state.pageText.clear();
    m_phase = Phase::Aborting;
    m_pause->start(pauseMs());
}
