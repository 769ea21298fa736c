// One copy per user: who holds the lock file, and what a second copy sees.
#include "platform/InstanceLock.h"

#include <QLockFile>
#include <QtTest>

class TestInstanceLock : public QObject
{
    Q_OBJECT
private slots:
    void secondCopy_data()
    {
        QTest::addColumn<QString>("before"); // what holds or left the file first
        QTest::addColumn<int>("outcome");
        QTest::newRow("nothing") << "" << int(InstanceLock::Outcome::Taken);
        QTest::newRow("a running copy") << "copy" << int(InstanceLock::Outcome::HeldByAnother);
        QTest::newRow("a copy locking with QLockFile")
            << "qlockfile" << int(InstanceLock::Outcome::HeldByAnother);
        QTest::newRow("a file a crashed copy left") << "left" << int(InstanceLock::Outcome::Taken);
        QTest::newRow("a folder that cannot hold files")
            << "nofolder" << int(InstanceLock::Outcome::Failed);
    }
    void secondCopy()
    {
        QFETCH(QString, before);
        QTemporaryDir dir;
        QString path = dir.filePath(QStringLiteral("tallybid.lock"));
        InstanceLock running(path);
        QLockFile other(path);
        if (before == QLatin1String("copy")) {
            QCOMPARE(running.tryLock(), InstanceLock::Outcome::Taken);
        } else if (before == QLatin1String("qlockfile")) {
            QVERIFY(other.tryLock(0));
        } else if (before == QLatin1String("left")) {
            QFile left(path);
            QVERIFY(left.open(QIODevice::WriteOnly));
            left.write("999999\nTallybid\nelsewhere\n");
        } else if (before == QLatin1String("nofolder")) {
            path = QStringLiteral("/proc/tallybid-runtime/tallybid.lock");
        }
        InstanceLock second(path);
        QTEST(int(second.tryLock()), "outcome");
        if (second.tryLock() == InstanceLock::Outcome::Taken) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadOnly));
            QCOMPARE(file.readLine().trimmed(),
                     QByteArray::number(QCoreApplication::applicationPid()));
        } else if (second.tryLock() == InstanceLock::Outcome::Failed) {
            QVERIFY(!second.errorString().isEmpty());
        }
    }

    // A copy that ends removes the file and lets the next one in.
    void endOfACopy()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("tallybid.lock"));
        InstanceLock next(path);
        {
            InstanceLock first(path);
            QCOMPARE(first.tryLock(), InstanceLock::Outcome::Taken);
            QCOMPARE(next.tryLock(), InstanceLock::Outcome::HeldByAnother);
        }
        QVERIFY(!QFile::exists(path));
        QCOMPARE(next.tryLock(), InstanceLock::Outcome::Taken);
        QVERIFY(QFile::exists(path));
    }
};

QTEST_GUILESS_MAIN(TestInstanceLock)
#include "tst_instancelock.moc"
