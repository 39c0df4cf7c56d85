#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryFile>

#include <cstddef>
#include <cstdint>

/// A fuzz target is one file fuzz_NAME.cpp with this function. libFuzzer calls it with inputs of
/// its own; the ordinary build calls it with the files in corpus/NAME (replay.cpp).
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace fuzz {

inline QByteArray bytesOf(const uint8_t *data, size_t size)
{
    return {reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)};
}

/// Puts the input into a file, for readers that take a name. The file is the same every time.
inline QString fileOf(const QByteArray &bytes, const char *ending)
{
    static QTemporaryFile *file = [ending] {
        auto *made = new QTemporaryFile(QStringLiteral("fuzz.XXXXXX") + QLatin1String(ending));
        made->open();
        return made;
    }();
    file->resize(0);
    file->seek(0);
    file->write(bytes);
    file->flush();
    return file->fileName();
}

} // namespace fuzz
