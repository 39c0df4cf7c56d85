#include "files/mesh/meshproblems.h"

#include "base/sessionlog.h"

#include <QCoreApplication>

namespace marlowen {

namespace {

constexpr qint64 loggedProblems = 1000;
constexpr size_t longestToken = 200;

} // namespace

void MeshProblems::add(const char *before, std::string_view token, const char *after)
{
    if (++m_count > loggedProblems)
        return;
    const std::string_view shown = token.substr(0, longestToken);
    const QString text = QLatin1String(before) +
                         QString::fromUtf8(shown.data(), static_cast<qsizetype>(shown.size())) +
                         QLatin1String(after);
    if (m_count == 1)
        m_first = text;
    logWarning() << text << "\n";
    if (m_count == loggedProblems)
        logWarning() << "Further problems of this file are not listed\n";
}

QString MeshProblems::sentence() const
{
    if (m_count == 0)
        return {};
    if (m_count == 1)
        return QCoreApplication::translate("MeshProblems", "1 problem in the file: %1")
            .arg(m_first);
    return QCoreApplication::translate("MeshProblems", "%1 problems in the file; the first: %2")
        .arg(m_count)
        .arg(m_first);
}

} // namespace marlowen
