#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

#include <optional>

// The two encodings text files of the program are met in: UTF-8, which it writes itself, and
// the 8-bit Windows-1252 code page of files made on older systems. The code page is handled by
// its own table so that every build decodes it the same way, whatever converters Qt carries.
namespace TextCodec {

// True when the bytes are well-formed UTF-8 (no overlong forms, surrogates or cut sequences).
bool isUtf8(QByteArrayView bytes);

// Every byte becomes one character. The five bytes the code page leaves unassigned (0x81, 0x8D,
// 0x8F, 0x90, 0x9D) become the control characters of the same number, so decoding and encoding
// again gives back every byte.
QString fromWindows1252(QByteArrayView bytes);
// Nothing when the text holds a character the code page cannot store.
std::optional<QByteArray> toWindows1252(QStringView text);

// UTF-8 when the bytes are well-formed UTF-8, else Windows-1252: reads any line of either kind
// without losing a byte.
QString decodeUtf8OrWindows1252(QByteArrayView bytes);

} // namespace TextCodec
