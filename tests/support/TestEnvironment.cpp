#include "TestEnvironment.h"

#include "platform/Database.h"

#include <QFile>
#include <QProcess>
#include <QSqlQuery>
#include <QUuid>
#include <QtTest>

TestEnvironment::TestEnvironment()
{
    QFile schema(QStringLiteral(TB_SCHEMA_FILE));
    schema.open(QIODevice::ReadOnly);
    const QString db = m_dir.filePath(QStringLiteral("tb2.mdb"));
    const QString error = createDatabaseIfMissing(db, QString::fromUtf8(schema.readAll()));
    if (!error.isEmpty())
        qFatal("cannot create test database: %s", qPrintable(error));
    m_store = std::make_unique<SettingsStore>(m_dir.filePath(QStringLiteral("config")));
    m_connection = QUuid::createUuid().toString();
    const DatabaseOpenResult opened = openDatabase(db, m_connection);
    if (!opened.ok())
        qFatal("cannot open test database: %s", qPrintable(opened.description));
    m_context = std::unique_ptr<AppContext>(
        new AppContext{m_prompts, m_shell, *m_store, m_timeZone, opened.database, {}});
    m_context->state.appPath = m_dir.path();
    m_context->state.databasePath = db;
    m_context->state.timeZoneBias = m_timeZone.bias();
    m_context->state.options = OptionsRecord::load(*m_store);
}

TestEnvironment::~TestEnvironment()
{
    m_context->itemDatabase.close();
    m_context.reset();
    QSqlDatabase::removeDatabase(m_connection);
}

QList<qint64> TestEnvironment::addItems(const QList<QVariantMap>& rows)
{
    QList<qint64> ids;
    QSqlDatabase db = m_context->itemDatabase;
    db.transaction();
    for (const QVariantMap& row : rows) {
        QSqlQuery q(db);
        if (row.isEmpty()) {
            q.exec(QStringLiteral("INSERT INTO Items DEFAULT VALUES"));
        } else {
            QStringList marks(row.size(), QStringLiteral("?"));
            q.prepare(QLatin1String("INSERT INTO Items (") + row.keys().join(u',') +
                      QLatin1String(") VALUES (") + marks.join(u',') + u')');
            for (const QVariant& v : row)
                q.addBindValue(v);
            if (!q.exec())
                qFatal("insert failed");
        }
        ids << q.lastInsertId().toLongLong();
    }
    db.commit();
    return ids;
}

QList<qint64> TestEnvironment::addNumberedItems(int n)
{
    QList<QVariantMap> rows;
    for (int i = 1; i <= n; ++i)
        rows << QVariantMap{{QStringLiteral("ShortDescription"), QStringLiteral("Item %1").arg(i)},
                            {QStringLiteral("Active"), i % 3 == 0 ? 0 : 1}};
    return addItems(rows);
}

int TestEnvironment::itemCount() const
{
    QSqlQuery q(m_context->itemDatabase);
    q.exec(QStringLiteral("SELECT count(*) FROM Items"));
    return q.next() ? q.value(0).toInt() : -1;
}

QVariant TestEnvironment::storedValue(qint64 id, const QString& column) const
{
    QSqlQuery q(m_context->itemDatabase);
    q.prepare(QLatin1String("SELECT ") + column + QLatin1String(" FROM Items WHERE ID = ?"));
    q.addBindValue(id);
    return q.exec() && q.next() ? q.value(0) : QVariant();
}

QString TestEnvironment::writeFile(const QString& name, const QByteArray& content)
{
    const QString p = m_dir.filePath(name);
    QFile f(p);
    f.open(QIODevice::WriteOnly);
    f.write(content);
    return p;
}

PythonServer::PythonServer(const QString& script, const QStringList& arguments)
    : m_process(std::make_unique<QProcess>())
{
    const QString python = qEnvironmentVariable("TB_PYTHON", QStringLiteral("/usr/bin/python3"));
    m_process->setProcessChannelMode(QProcess::SeparateChannels);
    m_process->start(python,
                     QStringList{QStringLiteral(TB_TEST_SUPPORT_DIR) + u'/' + script} + arguments);
    if (!m_process->waitForStarted(10000))
        return;
    if (!m_process->canReadLine())
        m_process->waitForReadyRead(15000);
    while (!m_process->canReadLine() && m_process->waitForReadyRead(15000)) {
    }
    m_port = QString::fromUtf8(m_process->readLine()).trimmed().toInt();
}

PythonServer::~PythonServer()
{
    if (m_process->state() != QProcess::NotRunning) {
        m_process->kill();
        m_process->waitForFinished(5000);
    }
}

QString PythonServer::output() const
{
    return QString::fromUtf8(m_process->readAllStandardError());
}
