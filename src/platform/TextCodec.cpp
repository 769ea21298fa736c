#include "platform/TextCodec.h"

namespace {

// The characters of bytes 0x80..0x9F; the rest of the code page equals Latin-1.
constexpr char16_t kHighControls[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

} // namespace

namespace TextCodec {

bool isUtf8(QByteArrayView bytes)
{
    const qsizetype n = bytes.size();
    qsizetype i = 0;
    while (i < n) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        if (b < 0x80) {
            ++i;
            continue;
        }
        int follow = 0;
        char32_t code = 0;
        char32_t least = 0;
        if ((b & 0xE0) == 0xC0) {
            follow = 1;
            code = b & 0x1F;
            least = 0x80;
        } else if ((b & 0xF0) == 0xE0) {
            follow = 2;
            code = b & 0x0F;
            least = 0x800;
        } else if ((b & 0xF8) == 0xF0) {
            follow = 3;
            code = b & 0x07;
            least = 0x10000;
        } else {
            return false;
        }
        if (i + follow >= n)
            return false;
        for (int k = 1; k <= follow; ++k) {
            const auto c = static_cast<unsigned char>(bytes[i + k]);
            if ((c & 0xC0) != 0x80)
                return false;
            code = (code << 6) | (c & 0x3F);
        }
        if (code < least || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
            return false;
        i += follow + 1;
    }
    return true;
}

QString fromWindows1252(QByteArrayView bytes)
{
    QString text(bytes.size(), Qt::Uninitialized);
    QChar* out = text.data();
    for (const char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        *out++ = QChar(b >= 0x80 && b < 0xA0 ? kHighControls[b - 0x80] : char16_t(b));
    }
    return text;
}

std::optional<QByteArray> toWindows1252(QStringView text)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        if (u < 0x80 || (u >= 0xA0 && u <= 0xFF)) {
            bytes += char(u);
            continue;
        }
        int found = -1;
        for (int i = 0; i < 32 && found < 0; ++i) {
            if (kHighControls[i] == u)
                found = i;
        }
        if (found < 0)
            return std::nullopt;
        bytes += char(0x80 + found);
    }
    return bytes;
}

QString decodeUtf8OrWindows1252(QByteArrayView bytes)
{
    return isUtf8(bytes) ? QString::fromUtf8(bytes) : fromWindows1252(bytes);
}

} // namespace TextCodec
