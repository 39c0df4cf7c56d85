#pragma once

#include <QString>

#include <string_view>

namespace marlowen {

/// The problems of a mesh file that could still be read: their number, and the first of
/// them. Each goes to the session log as a warning; from the thousandth on they are only counted.
class MeshProblems
{
public:
    /// One problem: `before`, the piece of the file it is about, `after`. Long pieces are cut.
    void add(const char *before, std::string_view token = {}, const char *after = "");

    qint64 count() const { return m_count; }
    /// Text of the first problem; empty without one.
    const QString &first() const { return m_first; }
    /// "3 problems in the file; the first: ...", for a person; empty without problems.
    QString sentence() const;

private:
    qint64 m_count = 0;
    QString m_first;
};

} // namespace marlowen
