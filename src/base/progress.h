#pragma once

#include <QString>

namespace marlowen {

/// Long work reports here; the caller decides how that is shown. The default shows nothing
/// and never cancels.
class Progress
{
public:
    virtual ~Progress() = default;
    /// Share of the work that is done, 0..1, never falling.
    virtual void advance(double fraction) { (void)fraction; }
    /// A line about the work as it stands ("12000 facets, error 0.002 in"), when it has one.
    virtual void describe(const QString &state) { (void)state; }
    /// True once the user asked to stop; the work then returns without an effect.
    virtual bool cancelled() const { return false; }
};

/// A step of some longer work: reports its share of the whole.
class ProgressStep : public Progress
{
public:
    /// The step goes from one fraction of the whole to another.
    ProgressStep(Progress &whole, double from, double to)
        : m_whole(whole)
        , m_from(from)
        , m_to(to)
    {
    }
    void advance(double fraction) override { m_whole.advance(m_from + (m_to - m_from) * fraction); }
    void describe(const QString &state) override { m_whole.describe(state); }
    bool cancelled() const override { return m_whole.cancelled(); }

private:
    Progress &m_whole;
    double m_from;
    double m_to;
};

} // namespace marlowen
