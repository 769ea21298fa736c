// Work started beside the window's thread: it runs once, and the thread is left free to use
// every core its starter may.
#include "platform/SideThread.h"

#include <QtTest>

#include <future>
#include <sched.h>

namespace {

cpu_set_t coresOfThisThread()
{
    cpu_set_t cores;
    CPU_ZERO(&cores);
    sched_getaffinity(0, sizeof cores, &cores);
    return cores;
}

} // namespace

class TestSideThread : public QObject
{
    Q_OBJECT
private slots:
    void runsOnceFreeToMove_data()
    {
        QTest::addColumn<bool>("oneCore");  // the starter may use its own core alone
        QTest::addColumn<bool>("moveOnly"); // the work holds a promise
        QTest::newRow("every core, copyable work") << false << false;
        QTest::newRow("every core, work that can only be moved") << false << true;
        QTest::newRow("one core") << true << false;
    }
    void runsOnceFreeToMove()
    {
        QFETCH(bool, oneCore);
        QFETCH(bool, moveOnly);
        const cpu_set_t before = coresOfThisThread();
        if (oneCore) {
            cpu_set_t one;
            CPU_ZERO(&one);
            CPU_SET(sched_getcpu(), &one);
            QCOMPARE(sched_setaffinity(0, sizeof one, &one), 0);
        }
        const cpu_set_t starter = coresOfThisThread();
        auto restore = qScopeGuard([&] { sched_setaffinity(0, sizeof before, &before); });

        std::atomic<int> runs = 0;
        cpu_set_t seen;
        CPU_ZERO(&seen);
        const auto body = [&] {
            ++runs;
            seen = coresOfThisThread();
        };
        std::thread thread;
        if (moveOnly) {
            std::promise<void> done;
            std::future<void> finished = done.get_future();
            thread = startSideThread([body, done = std::move(done)]() mutable {
                body();
                done.set_value();
            });
            QCOMPARE(finished.wait_for(std::chrono::seconds(10)), std::future_status::ready);
        } else {
            thread = startSideThread(body);
        }
        thread.join();
        QCOMPARE(runs.load(), 1);
        QVERIFY(CPU_EQUAL(&seen, &starter));
    }
};

QTEST_GUILESS_MAIN(TestSideThread)
#include "tst_sidethread.moc"
