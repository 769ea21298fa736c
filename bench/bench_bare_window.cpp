// The reference for a program's launch: a Qt program with one main window holding one label.
#include <QApplication>
#include <QLabel>
#include <QMainWindow>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QMainWindow window;
    window.setCentralWidget(new QLabel(QStringLiteral("Item 1 of 1"), &window));
    window.resize(630, 600);
    window.show();
    return app.exec();
}
