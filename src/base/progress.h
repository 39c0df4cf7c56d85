#pragma once

namespace marlowen {

/// Long work reports here; whoever started it decides how that is shown. The default shows nothing
/// and never cancels.
class Progress
{
public:
    virtual ~Progress() = default;
    /// Share of the work that is done, 0..1, never falling.
    virtual void advance(double fraction) { (void)fraction; }
    /// True once the user asked to stop; the work then returns without an effect.
    virtual bool cancelled() const { return false; }
};

} // namespace marlowen
