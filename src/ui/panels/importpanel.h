#pragma once

#include "import/importsession.h"
#include "ui/ribbon/sliderfield.h"

#include <QTimer>
#include <QWidget>

#include <array>

class QCheckBox;
class QPushButton;

namespace marlowen {

/// The import controls, live on a session: every change reaches the session once a turn of the
/// event loop, the latest values winning, so that a dragged slider keeps up on large pictures.
///
/// Without an open import the controls that the next opened file starts with can be set; the others
/// are disabled.
class ImportPanel : public QWidget
{
    Q_OBJECT

public:
    /// The session outlives the panel; its `changed` hook is the owner's, who calls refresh().
    explicit ImportPanel(ImportSession *session, QWidget *parent = nullptr);

    /// Shows the session's settings and what can be done: after an import was opened, changed or
    /// accepted. Emits nothing.
    void refresh();
    /// Hands changes that still wait to the session now: before the session is read or the import
    /// is accepted.
    void flush();

signals:
    /// "Update": the owner runs the session's update with its progress. Changes are flushed.
    void UpdateClicked();
    /// "Accept": the owner ends the import. Changes are flushed.
    void AcceptClicked();

private:
    enum Check { FlipY, Preview, InvertZ, Transparency };
    enum Number { Smoothing, RaiseLower, Trim, TiltVertical, TiltHorizontal };
    static constexpr size_t checkCount = 4;
    static constexpr size_t numberCount = 5;

    /// A check box bound to one truth value of the settings.
    struct CheckRow
    {
        const char *label;
        const char *hint;
        bool ImportSettings::*member;
        bool opening; ///< the next opened file starts with it
    };
    /// A slider bound to one number of the settings.
    struct NumberRow
    {
        const char *label;
        const char *hint;
        SliderField::Range range;
        double (*shown)(const ImportSettings &);
        void (*store)(ImportSettings &, double);
        bool opening;
    };
    static const std::array<CheckRow, checkCount> &_checkRows();
    static const std::array<NumberRow, numberCount> &_numberRows();

    void _makeControls();
    void _makeButtons();
    void _arrange();
    void _changed();
    void _enable();

    ImportSession *m_session;
    /// What the controls show; handed over by flush().
    ImportSettings m_wanted;
    QTimer m_handOver;
    std::array<QCheckBox *, checkCount> m_checks{};
    std::array<SliderField *, numberCount> m_numbers{};
    QPushButton *m_update = nullptr;
    QPushButton *m_accept = nullptr;
};

} // namespace marlowen
