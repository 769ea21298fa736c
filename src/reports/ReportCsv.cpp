#include "reports/ReportCsv.h"

#include "db/ItemCsv.h"
#include "reports/ReportModel.h"

#include <QSaveFile>

namespace ReportCsv {

namespace {

QString days(const std::optional<int>& d)
{
    return d ? QString::number(*d) : QString();
}

} // namespace

QString text(const QList<SaleRow>& rows)
{
    QStringList header;
    for (int c = 0; c < ReportColumns::Count; ++c)
        header << ReportColumns::header(c);
    QString out = ItemCsv::formatRecord(header);
    for (const SaleRow& r : rows)
        out += ItemCsv::formatRecord(
            {r.ebayId, r.title, r.ended.toString(Qt::ISODate), r.salePrice.toPlainText(),
             r.cost.toPlainText(), r.shipping.toPlainText(), r.insurance.toPlainText(),
             r.net().toPlainText(), days(r.daysToPaid), days(r.daysToShipped)});
    return out;
}

QString write(const QList<SaleRow>& rows, const QString& path)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    const QByteArray bytes = text(rows).toUtf8();
    if (file.write(bytes) != bytes.size() || !file.commit())
        return file.errorString();
    return {};
}

} // namespace ReportCsv
