// The first window's memory: blocks the size of a backing store come from the heap, in the part
// laid out for large pages.
#include "platform/StartupHeap.h"

#include <QFile>
#include <QtTest>

#include <cstdint>
#include <memory>
#include <unistd.h>

namespace {

// The VmFlags of the mapping that holds this address, from the process's own map.
QByteArray mappingFlags(std::uintptr_t address)
{
    QFile smaps(QStringLiteral("/proc/self/smaps"));
    if (!smaps.open(QIODevice::ReadOnly))
        return {};
    bool inside = false;
    for (const QByteArray& line : smaps.readAll().split('\n')) {
        const int dash = line.indexOf('-');
        const int space = line.indexOf(' ');
        if (dash > 0 && space > dash && !line.startsWith("VmFlags")) {
            bool ok = false;
            const auto from = line.left(dash).toULongLong(&ok, 16);
            const auto to = line.mid(dash + 1, space - dash - 1).toULongLong(&ok, 16);
            if (ok)
                inside = address >= from && address < to;
        } else if (inside && line.startsWith("VmFlags:")) {
            return line.mid(8).simplified();
        }
    }
    return {};
}

} // namespace

class TestStartupHeap : public QObject
{
    Q_OBJECT
private slots:
    void windowSizedBlocksComeFromLargePages()
    {
#if !defined(__linux__) || !defined(__GLIBC__) || defined(__SANITIZE_ADDRESS__)
        QSKIP("only the C library's own allocator on Linux is laid out");
#else
        reserveStartupHeap();
        reserveStartupHeap(); // a second call leaves the layout as the first made it

        // About what the first window's backing store asks for.
        constexpr std::size_t kBlock = std::size_t(3) << 20;
        const auto block = std::make_unique<char[]>(kBlock);
        const auto last = reinterpret_cast<std::uintptr_t>(block.get()) + kBlock - 1;
        QVERIFY2(last < reinterpret_cast<std::uintptr_t>(sbrk(0)),
                 "the block has a mapping of its own instead of coming from the heap");

        if (!QFile::exists(QStringLiteral("/sys/kernel/mm/transparent_hugepage")))
            QSKIP("this system has no large pages to offer");
        const QByteArray flags = mappingFlags(last);
        QVERIFY2(flags.split(' ').contains("hg"), flags.constData());
#endif
    }
};

QTEST_APPLESS_MAIN(TestStartupHeap)
#include "tst_startupheap.moc"
