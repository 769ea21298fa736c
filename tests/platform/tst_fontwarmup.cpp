// The font configuration read from before main(): the reading sees the program's environment,
// and the FontWarmUp made in main() takes it over.
#include "platform/FontWarmUp.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QtTest>

#include <cstdlib>

namespace {

bool gEnvironmentSeenInHook = false;

void readFontsBeforeMain(int, char**, char** environment)
{
    FontWarmUp::startBeforeMain(environment);
    gEnvironmentSeenInHook = std::getenv("XDG_CONFIG_HOME") != nullptr;
}
[[gnu::used, gnu::section(".preinit_array")]] FontWarmUp::BeforeMainHook gReadFontsBeforeMain =
    readFontsBeforeMain;

} // namespace

class TestFontWarmUp : public QObject
{
    Q_OBJECT
private slots:
    void readingBeforeMainIsTakenOver()
    {
        // The C library sets its environment only after the hook; the configuration's reading
        // looks up the user's folders in it.
        QVERIFY2(gEnvironmentSeenInHook, "the reading began without the program's environment");

        FontWarmUp fonts;
        int argc = 1;
        char name[] = "tst_fontwarmup";
        char* argv[] = {name, nullptr};
        QGuiApplication app(argc, argv);
        FontWarmUp::prepare();
        // Ready by itself once the work is done, with nobody waiting for it yet.
        QDeadlineTimer deadline(5000);
        while (!FontWarmUp::ready() && !deadline.hasExpired())
            std::this_thread::yield();
        QVERIFY(FontWarmUp::ready());
        FontWarmUp::wait();
        QVERIFY(FontWarmUp::ready());
        QVERIFY(!QFontDatabase::families().isEmpty());
        FontWarmUp::finish(); // before the application object goes
    }
};

QTEST_APPLESS_MAIN(TestFontWarmUp)
#include "tst_fontwarmup.moc"
