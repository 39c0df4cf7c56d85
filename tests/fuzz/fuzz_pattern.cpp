#include "base/progress.h"
#include "files/patternfile.h"
#include "fuzzinput.h"

#include <QCryptographicHash>

using namespace marlowen;

/// Reads the input as it is and, so that changed bytes reach what follows the digest check, with
/// the digest at its end replaced by the right one.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr qsizetype digestBytes = 16;
    QByteArray bytes = fuzz::bytesOf(data, size);
    Progress progress;
    const QString path = fuzz::fileOf(bytes, patternEnding);
    readPatternInfo(path);
    loadPattern(path, progress);
    if (bytes.size() < digestBytes)
        return 0;
    bytes.chop(digestBytes);
    bytes += QCryptographicHash::hash(bytes, QCryptographicHash::Md5);
    loadPattern(fuzz::fileOf(bytes, patternEnding), progress);
    return 0;
}
