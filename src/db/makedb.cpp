// tb_makedb SCHEMA DATABASE: creates DATABASE from SCHEMA unless it exists already, so a
// rebuild never touches a database that holds the seller's items.
#include "platform/Database.h"

#include <QCoreApplication>
#include <QFile>
#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 3) {
        std::fprintf(stderr, "usage: tb_makedb SCHEMA DATABASE\n");
        return 2;
    }
    QFile schema(args.at(1));
    if (!schema.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(args.at(1)));
        return 1;
    }
    const QString error = createDatabaseIfMissing(args.at(2), QString::fromUtf8(schema.readAll()));
    if (!error.isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    return 0;
}
