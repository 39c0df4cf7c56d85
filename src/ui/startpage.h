#pragma once

#include <QList>
#include <QString>
#include <QWidget>

class QCheckBox;
class QGridLayout;
class QLabel;
class QPushButton;
class QToolButton;

namespace marlowen {

class MaterialGallery;

/// The first thing a person sees: new, open, the recent files and the samples with pictures of what
/// is in them.
/// Pictures are read one a turn of the event loop once the page is shown. Files that are gone are
/// disabled and say so.
class StartPage : public QWidget
{
    Q_OBJECT

public:
    explicit StartPage(QWidget *parent = nullptr);

    /// Whether the page is to be shown when the program starts; true unless it was switched off.
    static bool shownAtStartup();

    /// Whether "Back" is offered, which leads to the relief that is open.
    void setBack(bool on);
    /// Whether the materials are offered, as long as none was ever chosen.
    void offerMaterials(bool offer);
    /// The material in use; it is marked among those offered.
    void showMaterial(const QString &name);
    /// Reads the recent files again; done by itself whenever the page is shown.
    void refresh();

signals:
    void NewClicked();
    void OpenClicked();
    void RecentClicked(const QString &path);
    void BackClicked();
    void MaterialClicked(const QString &name);

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void _arrange();
    QWidget *_head();
    QWidget *_materials();
    QToolButton *_card(const QString &path, const QString &name);
    void _placeCards(QGridLayout *grid, const QList<QToolButton *> &cards);
    void _addSamples();
    void _makeThumbnails();

    QGridLayout *m_grid = nullptr;
    QGridLayout *m_sampleGrid = nullptr;
    QLabel *m_nothing = nullptr;
    QLabel *m_samplesHeading = nullptr;
    QCheckBox *m_startup = nullptr;
    QPushButton *m_back = nullptr;
    QWidget *m_materials = nullptr;
    MaterialGallery *m_gallery = nullptr;
    QList<QToolButton *> m_cards; ///< in the order of the recent files
    QList<QToolButton *> m_samples;
    QList<QToolButton *> m_waiting; ///< for their pictures
};

} // namespace marlowen
