#pragma once

#include <QTest>

#include <memory>
#include <utility>

/// A shown view that test functions use one after another, because making a window and its drawing
/// programs takes several times as long as a picture. It comes back as a new one is, but for its
/// counters.
template <typename View>
class KeptView
{
    static constexpr int usualWidth = 480;
    static constexpr int usualHeight = 360;

public:
    static constexpr QSize usualSize{usualWidth, usualHeight};

    explicit KeptView(QSize size)
        : m_view(size == usualSize ? std::move(kept()) : nullptr)
    {
        if (m_view)
            return;
        m_view = std::make_unique<Open>();
        m_view->resize(size);
        m_view->show();
        if (!QTest::qWaitForWindowExposed(m_view.get()))
            qFatal("the view does not show");
    }
    ~KeptView()
    {
        if (m_usedUp || !m_view->isVisible() || m_view->size() != usualSize)
            return;
        m_view->renew();
        kept() = std::move(m_view);
    }

    View &view() { return *m_view; }
    /// Nobody uses the view after this.
    void useUp() { m_usedUp = true; }

    /// The next view is a new one. To be called by the last function of a program, too: the
    /// application must outlive the view.
    static void drop() { kept().reset(); }

private:
    class Open : public View
    {
    public:
        void renew()
        {
            View::setRelief(nullptr);
            View::setEngine(nullptr);
            View::setTool(nullptr);
            View::setChanges(nullptr);
            View::setMode(View::NoMode);
            View::setSelectionModifier({});
            View::setReason({});
            View::setRotation({});
            View::setCamera({});
            View::setLastPos({});
        }
    };
    static std::unique_ptr<Open> &kept()
    {
        static std::unique_ptr<Open> view;
        return view;
    }

    std::unique_ptr<Open> m_view;
    bool m_usedUp = false;
};
