#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QString>

#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

class QIODevice;

namespace marlowen {

/// The byte level of a container file: one of two back ends, MD5 digests over what passes through,
/// byte transforms, and the first error.
///
/// Every operation returns whether it succeeded. The first failure since the last open sets the
/// error string, a sentence for the user; later failures do not replace it. Nothing throws except
/// std::bad_alloc.
class FioStream
{
public:
    enum class Mode { Read, Write, Append };
    /// A stateful function from byte to byte, supplied by a format that uses the container.
    using ByteTransform = std::function<quint8(quint8)>;

    FioStream() = default;
    /// Closes a file that was opened by path; a device stays open.
    virtual ~FioStream() = default;
    FioStream(const FioStream &) = delete;
    FioStream &operator=(const FioStream &) = delete;

    /// Opens by a path of Latin-1 characters through stdio, or opens a closed device, which stays
    /// the caller's. Write truncates. Both clear the error string and the reference table first and
    /// fail when something is open.
    bool open(const QString &path, Mode mode);
    bool open(QIODevice *device, Mode mode);
    /// Uses a device that the caller has opened already, from where it stands, and leaves it open.
    bool attach(QIODevice *device);
    /// Closes what open() opened; clears the reference table and the byte transforms.
    bool close();
    /// Absolute offset in bytes. Refused while a digest or a byte transform is active.
    bool seek(qint64 offset);
    /// Succeeds only when no further byte can be read; consumes it on stdio otherwise.
    bool checkEnd();

    /// A count of 0 succeeds without a file; a negative one fails. The caller's bytes are never
    /// changed.
    bool writeData(const void *bytes, int count);
    /// The bytes are undefined after a failure.
    bool readData(void *bytes, int count);
    /// Replaces `bytes` by the next `count` ones. Takes memory only as the data arrives, so that a
    /// damaged count costs nothing; `bytes` is unchanged after a failure.
    bool readBlock(QByteArray &bytes, qint64 count);

    /// Starts an MD5 over every plain byte that passes from now on, in both directions.
    void pushDigest();
    /// Ends the newest digest and returns its 16 bytes; empty when there is none.
    QByteArray popDigest();
    /// Transforms are applied newest first on writing, oldest first on reading.
    void pushTransform(ByteTransform transform);

    /// Logs every byte that passes (before reading transforms, after writing ones).
    void setDebug(bool on) { m_debug = on; }

    /// Empty: no error since the last open.
    QString errorString() const { return m_error; }
    /// Keeps the message if it is the first one; returns false.
    bool fail(const QString &message);
    /// The same with the words for damaged files: "Corrupted or not a recognized format."
    bool failCorrupted(const QString &appendix = {});
    /// The words for files of later versions of the program.
    static QString newerVersionMessage();

protected:
    /// Called when a file is opened or closed.
    virtual void clearReferences() {}

private:
    struct CloseFile
    {
        void operator()(std::FILE *file) const { std::fclose(file); }
    };

    bool _beginOpen();
    bool _isOpen() const { return m_file != nullptr || m_device != nullptr; }
    bool _failIo();
    bool _put(const char *bytes, int count);
    bool _get(char *bytes, int count);
    void _dump(const char *bytes, int count) const;

    std::unique_ptr<std::FILE, CloseFile> m_file;
    QIODevice *m_device = nullptr;
    bool m_attached = false; ///< the device was open before
    QString m_error;
    std::vector<std::unique_ptr<QCryptographicHash>> m_digests;
    std::vector<ByteTransform> m_transforms;
    bool m_debug = false;
};

} // namespace marlowen
