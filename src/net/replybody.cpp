#include "net/replybody.h"

#include <QRegularExpression>
#include <QUrl>

#include <zlib.h>

#include <algorithm>
#include <limits>

namespace marlowen {

namespace {

constexpr int gzipWindow = 16 + MAX_WBITS;
constexpr qint64 stepBytes = 1 << 18;

/// An inflating zlib stream of gzip members.
class GzipStream
{
public:
    explicit GzipStream(const QByteArray &packed)
    {
        m_stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(packed.constData()));
        m_stream.avail_in = static_cast<uInt>(packed.size());
        m_ready = inflateInit2(&m_stream, gzipWindow) == Z_OK;
    }
    ~GzipStream()
    {
        if (m_ready)
            inflateEnd(&m_stream);
    }
    GzipStream(const GzipStream &) = delete;
    GzipStream &operator=(const GzipStream &) = delete;

    /// Fills part of the buffer and returns how much; nothing when the stream is damaged or ends in
    /// the middle of a member.
    std::optional<qint64> read(char *buffer, qint64 count)
    {
        m_stream.next_out = reinterpret_cast<Bytef *>(buffer);
        m_stream.avail_out = static_cast<uInt>(count);
        const int state = m_ready ? inflate(&m_stream, Z_NO_FLUSH) : Z_STREAM_ERROR;
        if (state != Z_OK && state != Z_STREAM_END)
            return {};
        if (state == Z_STREAM_END) {
            m_ended = m_stream.avail_in == 0;
            if (!m_ended)
                inflateReset(&m_stream);
        }
        return count - static_cast<qint64>(m_stream.avail_out);
    }
    bool ended() const { return m_ended; }

private:
    z_stream m_stream{};
    bool m_ready = false;
    bool m_ended = false;
};

/// The value of a parameter, without its quotes; empty when it is not there.
QString parameterOf(const QString &header, const QString &name)
{
    const QRegularExpression form(
        QStringLiteral(R"re((?:^|;)\s*%1\s*=\s*(?:"((?:[^"\\]|\\.)*)"|([^;]*)))re")
            .arg(QRegularExpression::escape(name)),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(header);
    const QString value = match.captured(1).isEmpty() ? match.captured(2) : match.captured(1);
    return value.trimmed();
}

/// The text of an extended parameter value: charset, language and percent-encoded text, separated
/// by apostrophes.
QString extendedText(const QString &value)
{
    const QString text = value.section(QLatin1Char('\''), 2);
    return QUrl::fromPercentEncoding(text.toUtf8());
}

} // namespace

std::optional<QByteArray> inflateGzip(const QByteArray &packed, qint64 limit)
{
    if (packed.size() > std::numeric_limits<int>::max())
        return {};
    GzipStream stream(packed);
    QByteArray plain;
    while (!stream.ended()) {
        const qint64 old = plain.size();
        plain.resize(old + stepBytes);
        const std::optional<qint64> got = stream.read(plain.data() + old, stepBytes);
        if (!got || old + *got > limit)
            return {};
        plain.truncate(old + *got);
    }
    return plain;
}

bool isJsonType(const QString &contentType)
{
    const QString type = contentType.section(QLatin1Char(';'), 0, 0).trimmed();
    return type.compare(QLatin1String("application/json"), Qt::CaseInsensitive) == 0;
}

QString fileNameOf(const QString &contentDisposition)
{
    QString name = extendedText(parameterOf(contentDisposition, QStringLiteral("filename*")));
    if (name.isEmpty())
        name = parameterOf(contentDisposition, QStringLiteral("filename"));
    name.replace(QLatin1Char('\\'), QLatin1Char('/'));
    name = name.section(QLatin1Char('/'), -1).section(QLatin1Char(':'), -1);
    name.removeIf([](QChar c) { return !c.isPrint(); });
    const auto letter =
        std::find_if(name.cbegin(), name.cend(), [](QChar c) { return c != u'.' && c != u' '; });
    return name.mid(letter - name.cbegin()).trimmed();
}

} // namespace marlowen
