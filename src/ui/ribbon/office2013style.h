#pragma once

#include <QColor>
#include <QPalette>
#include <QProxyStyle>

namespace marlowen {

/// Flat, quiet chrome over Fusion with one accent colour, light or dark. A ring shows the focus
/// while the keyboard moves it, and none after a click.
/// Install it with QApplication::setStyle; a later setTheme or setAccentColor takes effect at once
/// in every window.
class Office2013Style : public QProxyStyle
{
    Q_OBJECT

public:
    enum Theme { Light = 1, Dark = 2 };

    Office2013Style();

    Theme theme() const { return m_theme; }
    /// Values other than Dark are taken as Light.
    void setTheme(Theme theme);
    QColor accentColor() const { return m_accent; }
    /// An invalid colour is ignored.
    void setAccentColor(const QColor &accent);

    QPalette standardPalette() const override;
    void polish(QWidget *widget) override;
    void polish(QPalette &palette) override;
    void polish(QApplication *application) override;
    void unpolish(QWidget *widget) override;
    void unpolish(QApplication *application) override;

    int pixelMetric(PixelMetric metric, const QStyleOption *option = nullptr,
                    const QWidget *widget = nullptr) const override;
    int styleHint(StyleHint hint, const QStyleOption *option = nullptr,
                  const QWidget *widget = nullptr,
                  QStyleHintReturn *returnData = nullptr) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                           const QWidget *widget = nullptr) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget = nullptr) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                            QPainter *painter, const QWidget *widget = nullptr) const override;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void _apply();

    Theme m_theme = Light;
    bool m_ringShown = true;
    QColor m_accent{46, 117, 182};
};

} // namespace marlowen
