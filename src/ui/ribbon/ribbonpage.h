#pragma once

#include <QWidget>

#include <vector>

namespace marlowen {

class RibbonGroup;

/// One tab of the ribbon: groups from left to right, the rest of the width empty. Groups give way
/// when the page is narrower than they are.
class RibbonPage : public QWidget
{
    Q_OBJECT

public:
    explicit RibbonPage(const QString &title, QWidget *parent = nullptr);

    QString title() const { return m_title; }
    RibbonGroup *addGroup(const QString &title);
    const std::vector<RibbonGroup *> &groups() const { return m_groups; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {1, sizeHint().height()}; }

protected:
    void resizeEvent(QResizeEvent *event) override;
    bool event(QEvent *event) override;

private:
    void _arrange();
    RibbonGroup *_nextToGiveWay(int state) const;

    QString m_title;
    bool m_arranging = false;
    std::vector<RibbonGroup *> m_groups;
};

} // namespace marlowen
