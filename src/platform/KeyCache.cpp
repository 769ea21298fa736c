#include "platform/KeyCache.h"

#include "platform/AtomicFile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstring>
#include <sys/stat.h>

namespace KeyCache {

namespace {

constexpr char kMagic[] = "TBKEYS1\n"; // 8 bytes; a new layout gets a new number

qint64 nanoseconds(const timespec& t)
{
    return qint64(t.tv_sec) * 1000000000 + t.tv_nsec;
}

// FNV-1a over the file's content, so a file cut short or damaged is never taken for keys.
quint64 checksum(const char* data, qsizetype size)
{
    quint64 hash = 14695981039346656037ULL;
    for (qsizetype i = 0; i < size; ++i) {
        hash ^= quint8(data[i]);
        hash *= 1099511628211ULL;
    }
    return hash;
}

template <typename T> void put(QByteArray& out, T value)
{
    out.append(reinterpret_cast<const char*>(&value), sizeof value);
}

// Keys as the differences between neighbours, zigzagged and seven bits a byte: ascending keys
// with few gaps take one byte each.
void putKey(QByteArray& out, qint64 delta)
{
    quint64 v = (quint64(delta) << 1) ^ quint64(delta >> 63);
    while (v >= 0x80) {
        out.append(char(v | 0x80));
        v >>= 7;
    }
    out.append(char(v));
}

class Reader
{
public:
    Reader(const char* data, qsizetype size) : m_data(data), m_end(data + size) {}

    template <typename T> bool get(T& value)
    {
        if (m_end - m_data < qsizetype(sizeof value))
            return false;
        std::memcpy(&value, m_data, sizeof value);
        m_data += sizeof value;
        return true;
    }
    bool getBytes(qsizetype size, QByteArray& out)
    {
        if (size < 0 || m_end - m_data < size)
            return false;
        out = QByteArray(m_data, size);
        m_data += size;
        return true;
    }
    bool getKey(qint64& delta)
    {
        quint64 v = 0;
        for (int shift = 0; shift < 64 && m_data < m_end; shift += 7) {
            const quint8 byte = quint8(*m_data++);
            v |= quint64(byte & 0x7F) << shift;
            if (!(byte & 0x80)) {
                delta = qint64(v >> 1) ^ -qint64(v & 1);
                return true;
            }
        }
        return false;
    }
    bool atEnd() const { return m_data == m_end; }

private:
    const char* m_data;
    const char* m_end;
};

} // namespace

std::optional<FileState> stateOf(const QString& databaseFile)
{
    struct stat file;
    if (::stat(QFile::encodeName(databaseFile).constData(), &file) != 0 || !S_ISREG(file.st_mode))
        return std::nullopt;
    struct stat log;
    if (::stat(QFile::encodeName(databaseFile + QLatin1String("-wal")).constData(), &log) == 0 &&
        log.st_size > 0)
        return std::nullopt;
    // A file system that keeps whole seconds (FAT on a memory stick, some network shares) cannot
    // tell two writes a moment apart.
    if (file.st_mtim.tv_nsec == 0 && file.st_ctim.tv_nsec == 0)
        return std::nullopt;
    return FileState{qint64(file.st_dev), qint64(file.st_ino), qint64(file.st_size),
                     nanoseconds(file.st_mtim), nanoseconds(file.st_ctim)};
}

QString keptFileFor(const QString& folder, const QString& databaseFile)
{
    const QByteArray name = QFile::encodeName(QFileInfo(databaseFile).absoluteFilePath());
    return folder + QLatin1String("/keys-") +
           QString::fromLatin1(
               QCryptographicHash::hash(name, QCryptographicHash::Sha1).toHex().left(16));
}

namespace {

// What leads a kept file: the database file's state and the statement the keys are of.
struct Header
{
    FileState state;
    QByteArray sql;
    quint64 count = 0;
};

std::optional<Header> readHeader(Reader& in)
{
    Header header;
    quint32 sqlSize = 0;
    if (!in.get(header.state.device) || !in.get(header.state.inode) || !in.get(header.state.size) ||
        !in.get(header.state.modifiedNs) || !in.get(header.state.changedNs) || !in.get(sqlSize) ||
        !in.getBytes(sqlSize, header.sql) || !in.get(header.count))
        return std::nullopt;
    return header;
}

bool describes(const Header& header, const QString& databaseFile, const QString& sql)
{
    const std::optional<FileState> now = stateOf(databaseFile);
    return now && header.state == *now && header.sql == sql.toUtf8();
}

constexpr qsizetype kMagicSize = sizeof kMagic - 1;

} // namespace

bool holds(const QString& keptFile, const QString& databaseFile, const QString& sql)
{
    QFile file(keptFile);
    if (keptFile.isEmpty() || !file.open(QIODevice::ReadOnly))
        return false;
    // The fixed fields, the statement and the count: room for a statement that is sql (three
    // bytes a character at most); a longer one is another statement.
    constexpr qsizetype kFixed =
        kMagicSize + 5 * qsizetype(sizeof(qint64)) + qsizetype(sizeof(quint32));
    const QByteArray start = file.read(kFixed + sql.size() * 3 + qsizetype(sizeof(quint64)));
    if (!start.startsWith(QByteArrayView(kMagic, kMagicSize)))
        return false;
    Reader in(start.constData() + kMagicSize, start.size() - kMagicSize);
    const std::optional<Header> header = readHeader(in);
    return header && describes(*header, databaseFile, sql);
}

std::optional<QList<qint64>> load(const QString& keptFile, const QString& databaseFile,
                                  const QString& sql)
{
    QFile file(keptFile);
    if (keptFile.isEmpty() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray content = file.readAll();
    constexpr qsizetype kSumSize = sizeof(quint64);
    if (content.size() < kMagicSize + kSumSize ||
        !content.startsWith(QByteArrayView(kMagic, kMagicSize)))
        return std::nullopt;
    quint64 stored = 0;
    std::memcpy(&stored, content.constData() + content.size() - kSumSize, kSumSize);
    if (stored != checksum(content.constData(), content.size() - kSumSize))
        return std::nullopt;

    Reader in(content.constData() + kMagicSize, content.size() - kMagicSize - kSumSize);
    const std::optional<Header> header = readHeader(in);
    if (!header || !describes(*header, databaseFile, sql) ||
        header->count > quint64(content.size()))
        return std::nullopt;
    QList<qint64> keys;
    keys.resize(qsizetype(header->count));
    qint64 key = 0;
    for (qint64& slot : keys) {
        qint64 delta = 0;
        if (!in.getKey(delta))
            return std::nullopt;
        key = qint64(quint64(key) + quint64(delta));
        slot = key;
    }
    if (!in.atEnd())
        return std::nullopt;
    return keys;
}

bool save(const QString& keptFile, const FileState& state, const QString& sql,
          const QList<qint64>& keys)
{
    if (keptFile.isEmpty() || !QDir().mkpath(QFileInfo(keptFile).absolutePath()))
        return false;
    QByteArray out(kMagic, sizeof kMagic - 1);
    out.reserve(out.size() + 64 + sql.size() + keys.size() + 16);
    for (const qint64 field :
         {state.device, state.inode, state.size, state.modifiedNs, state.changedNs})
        put(out, field);
    const QByteArray sqlText = sql.toUtf8();
    put(out, quint32(sqlText.size()));
    out.append(sqlText);
    put(out, quint64(keys.size()));
    qint64 previous = 0;
    for (const qint64 key : keys) {
        putKey(out, qint64(quint64(key) - quint64(previous))); // wraps, never overflows
        previous = key;
    }
    put(out, checksum(out.constData(), out.size()));
    return !AtomicFile::write(keptFile, out, std::nullopt, AtomicFile::Flush::No);
}

} // namespace KeyCache
