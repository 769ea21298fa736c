// Loaded into a program the benchmark starts (LD_PRELOAD), so the program itself needs no hook:
// prints the steady clock's nanoseconds at the first paint of a main window and ends the process
// there. The benchmark compares that with its own clock taken just before starting the program.
#include <QApplication>
#include <QEvent>
#include <QMainWindow>

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

class FirstPaintProbe : public QObject
{
public:
    using QObject::QObject;
    bool eventFilter(QObject* receiver, QEvent* event) override
    {
        auto* widget = qobject_cast<QWidget*>(receiver);
        if (event->type() == QEvent::Paint && widget &&
            qobject_cast<QMainWindow*>(widget->window())) {
            const auto now = std::chrono::steady_clock::now().time_since_epoch();
            std::printf("%lld\n",
                        static_cast<long long>(
                            std::chrono::duration_cast<std::chrono::nanoseconds>(now).count()));
            std::fflush(stdout);
            std::_Exit(0); // nothing after the first paint is measured
        }
        return false;
    }
};

void installProbe()
{
    QCoreApplication::instance()->installEventFilter(
        new FirstPaintProbe(QCoreApplication::instance()));
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(installProbe)
