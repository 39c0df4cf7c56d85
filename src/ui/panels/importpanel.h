#pragma once

#include "import/importsession.h"
#include "ui/ribbon/sliderfield.h"

#include <QTimer>
#include <QWidget>

#include <vector>

class QCheckBox;
class QLabel;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

namespace marlowen {

class NoticeBar;
class NumberField;

/// The import controls of a session: changes reach the session once in each iteration of the
/// event loop, with the latest values, so that a dragged slider keeps up on large pictures.
///
/// Without an open import everything is disabled.
class ImportPanel : public QWidget
{
    Q_OBJECT

public:
    /// The session outlives the panel; its `changed` hook is the owner's, who calls refresh().
    explicit ImportPanel(ImportSession *session, QWidget *parent = nullptr);

    /// Shows the session's settings and what can be done: after an import was opened, changed or
    /// accepted. Emits nothing.
    void refresh();
    /// Passes pending changes to the session now: before the session is read or the import
    /// is accepted.
    void flush();
    /// Asks at the top whether the picture shall be flipped, or no longer asks.
    void askToFlip(bool ask);
    void scrollToTop();
    /// Index in lengthUnits of the unit that the depth is shown in.
    void setUnit(int unit);

signals:
    /// The user chose a depth, in cells.
    void DepthChosen(double cells);
    /// "Update": the owner runs the session's update with its progress. Changes are flushed.
    void UpdateClicked();
    /// "Accept": the owner ends the import. Changes are flushed.
    void AcceptClicked();
    /// The question of askToFlip() was answered, in the notice or by the check box "Flip Y".
    void FlipAnswered();

private:
    using SettingField = Field<ImportSettings>;
    struct CheckControl
    {
        const SettingField *field;
        QCheckBox *box;
    };
    struct NumberControl
    {
        const SettingField *field;
        SliderField *slider;
    };

    QCheckBox *_makeCheck(bool ImportSettings::*member);
    template <typename Value>
    void _makeNumber(Value ImportSettings::*member)
    {
        _makeSlider(fieldOf(importFields(), member));
    }
    void _makeSlider(const Field<ImportSettings> &field);
    /// Why the control of a field cannot be used; empty when it can.
    QString _reason(const SettingField &field) const;
    /// The same for "Update".
    QString _updateReason() const;
    void _makeDepth();
    void _showDepth();
    void _makeButtons();
    void _makeNotice();
    void _arrange();
    void _addBasRelief(QVBoxLayout &column);
    void _answerFlip(bool flip);
    void _changed();
    void _enable();

    ImportSession *m_session;
    /// What the controls show; handed over by flush().
    ImportSettings m_wanted;
    QTimer m_handOver;
    std::vector<CheckControl> m_checks;
    std::vector<NumberControl> m_numbers;
    QWidget *m_content = nullptr; ///< all but "Accept"
    QScrollArea *m_area = nullptr;
    NoticeBar *m_notice = nullptr;
    QLabel *m_depthLabel = nullptr;
    NumberField *m_depth = nullptr;
    int m_unit = 0;
    QPushButton *m_update = nullptr;
    QPushButton *m_compare = nullptr;
    QPushButton *m_accept = nullptr;
};

} // namespace marlowen
