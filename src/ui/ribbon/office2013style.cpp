#include "ui/ribbon/office2013style.h"

#include "ui/ribbon/office2013drawing.h"
#include "ui/ribbon/ribboncolors.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>
#include <QTabBar>
#include <QWidget>

#include <algorithm>

namespace marlowen {

namespace {

struct ThemeColors
{
    QColor window;
    QColor button;
    QColor base;
    QColor border;
    QColor text;
    QColor disabled;
    QColor toolTip;
};

const ThemeColors lightColors{QColor(0xf1f1f0), QColor(0xfbfbfb), QColor(0xffffff),
                              QColor(0xd2d1cf), QColor(0x262626), QColor(0xa3a3a3),
                              QColor(0xffffff)};
const ThemeColors darkColors{QColor(0x232425), QColor(0x2c2e30), QColor(0x1b1c1d), QColor(0x45484b),
                             QColor(0xe4e4e4), QColor(0x747678), QColor(0x34373a)};

constexpr int choiceRoom = 8; ///< above and below a line of a menu or a list of choices, together

bool isChoiceList(const QWidget *widget)
{
    return widget && widget->inherits("QComboBoxListView");
}

/// The focus itself, or what it is in.
bool movesFocus(const QKeyEvent &key)
{
    constexpr int keys[] = {Qt::Key_Tab,  Qt::Key_Backtab, Qt::Key_Left,   Qt::Key_Right,
                            Qt::Key_Up,   Qt::Key_Down,    Qt::Key_PageUp, Qt::Key_PageDown,
                            Qt::Key_Home, Qt::Key_End,     Qt::Key_Alt,    Qt::Key_F10};
    return std::find(std::begin(keys), std::end(keys), key.key()) != std::end(keys);
}

template <typename Option>
Option copyOf(const QStyleOption *option)
{
    const auto *typed = qstyleoption_cast<const Option *>(option);
    return typed ? *typed : Option();
}

void fillDisabled(QPalette &palette, const ThemeColors &colors)
{
    const QPalette::ColorRole texts[] = {QPalette::WindowText, QPalette::Text,
                                         QPalette::ButtonText};
    for (const QPalette::ColorRole role : texts)
        palette.setColor(QPalette::Disabled, role, colors.disabled);
    palette.setColor(QPalette::Disabled, QPalette::Base, colors.window);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, colors.border);
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, colors.disabled);
}

} // namespace

Office2013Style::Office2013Style()
    : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion")))
{
}

void Office2013Style::setTheme(Theme theme)
{
    m_theme = theme == Dark ? Dark : Light;
    _apply();
}

void Office2013Style::setAccentColor(const QColor &accent)
{
    if (!accent.isValid())
        return;
    m_accent = accent;
    _apply();
}

/// The application's palette follows the style once the style is in force.
void Office2013Style::_apply()
{
    if (qApp && QApplication::style() == this)
        QApplication::setPalette(standardPalette());
}

QPalette Office2013Style::standardPalette() const
{
    const ThemeColors &colors = m_theme == Dark ? darkColors : lightColors;
    QPalette palette(colors.text, colors.button, mixedColor(colors.button, Qt::white, 0.6),
                     mixedColor(colors.border, Qt::black, 0.4), colors.border, colors.text,
                     Qt::white, colors.base, colors.window);
    palette.setColor(QPalette::ButtonText, colors.text);
    palette.setColor(QPalette::Midlight, mixedColor(colors.button, colors.border, 0.5));
    palette.setColor(QPalette::Shadow, mixedColor(colors.window, Qt::black, 0.5));
    palette.setColor(QPalette::AlternateBase, mixedColor(colors.base, colors.window, 0.6));
    palette.setColor(QPalette::Highlight, m_accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, mixedColor(m_accent, Qt::white, m_theme == Dark ? 0.4 : 0.0));
    palette.setColor(QPalette::LinkVisited, palette.color(QPalette::Link));
    palette.setColor(QPalette::ToolTipBase, colors.toolTip);
    palette.setColor(QPalette::ToolTipText, colors.text);
    palette.setColor(QPalette::PlaceholderText, mixedColor(colors.text, colors.base, 0.3));
    fillDisabled(palette, colors);
    return palette;
}

void Office2013Style::polish(QPalette &palette)
{
    palette = standardPalette();
}

void Office2013Style::polish(QWidget *widget)
{
    QProxyStyle::polish(widget);
    if (qobject_cast<QAbstractButton *>(widget) || qobject_cast<QComboBox *>(widget) ||
        qobject_cast<QTabBar *>(widget) || widget->inherits("QAbstractSlider") ||
        widget->inherits("QLineEdit") || widget->inherits("QAbstractSpinBox"))
        widget->setAttribute(Qt::WA_Hover);
}

void Office2013Style::unpolish(QWidget *widget)
{
    QProxyStyle::unpolish(widget);
}

void Office2013Style::polish(QApplication *application)
{
    QProxyStyle::polish(application);
    application->installEventFilter(this);
}

void Office2013Style::unpolish(QApplication *application)
{
    application->removeEventFilter(this);
    QProxyStyle::unpolish(application);
}

bool Office2013Style::eventFilter(QObject *, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress)
        m_ringShown = false;
    else if (event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride)
        m_ringShown = m_ringShown || movesFocus(*static_cast<QKeyEvent *>(event));
    return false;
}

int Office2013Style::pixelMetric(PixelMetric metric, const QStyleOption *option,
                                 const QWidget *widget) const
{
    switch (metric) {
    case PM_ScrollBarExtent:
        return 12;
    case PM_SliderLength:
    case PM_SliderThickness:
    case PM_SliderControlThickness:
        return 18;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
        return 0;
    case PM_SplitterWidth:
    case PM_DockWidgetSeparatorExtent:
        return 5;
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return 15;
    case PM_ToolTipLabelFrameWidth:
        return 4;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int Office2013Style::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                               QStyleHintReturn *returnData) const
{
    switch (hint) {
    case SH_Slider_AbsoluteSetButtons: // a click on the groove goes there
        return Qt::LeftButton;
    case SH_ToolTip_WakeUpDelay:
        return 500;
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
    case SH_ScrollBar_Transient:
    case SH_ComboBox_Popup:
    case SH_DialogButtonBox_ButtonsHaveIcons: // Fusion's are black on dark chrome
        return 0;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
}

void Office2013Style::drawPrimitive(PrimitiveElement element, const QStyleOption *option,
                                    QPainter *painter, const QWidget *widget) const
{
    switch (element) {
    case PE_PanelButtonTool:
        return Office2013Drawing::button(*option, *painter, true);
    case PE_PanelButtonCommand: {
        const auto *typed = qstyleoption_cast<const QStyleOptionButton *>(option);
        const bool flat = typed && typed->features.testFlag(QStyleOptionButton::Flat);
        return Office2013Drawing::button(*option, *painter, flat);
    }
    case PE_PanelLineEdit: {
        const auto *frame = qstyleoption_cast<const QStyleOptionFrame *>(option);
        if (frame && frame->lineWidth > 0)
            Office2013Drawing::field(*option, *painter);
        return;
    }
    case PE_FrameLineEdit:
        return; // drawn with the panel
    case PE_FrameFocusRect:
        if (m_ringShown)
            Office2013Drawing::focusRing(*option, *painter);
        return;
    case PE_IndicatorCheckBox:
        return Office2013Drawing::checkBox(*option, *painter);
    case PE_IndicatorRadioButton:
        return Office2013Drawing::radioButton(*option, *painter);
    case PE_FrameTabBarBase:
    case PE_FrameStatusBarItem:
    case PE_PanelStatusBar:
        return;
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void Office2013Style::drawControl(ControlElement element, const QStyleOption *option,
                                  QPainter *painter, const QWidget *widget) const
{
    const RibbonColors colors = RibbonColors::of(option->palette);
    switch (element) {
    case CE_ItemViewItem:
        if (isChoiceList(widget)) {
            // The filled row shows where the keyboard is.
            auto item = copyOf<QStyleOptionViewItem>(option);
            item.state.setFlag(State_HasFocus, false);
            return QProxyStyle::drawControl(element, &item, painter, widget);
        }
        break;
    case CE_Splitter:
        painter->fillRect(option->rect, option->state.testFlag(State_MouseOver)
                                            ? mixedColor(colors.chrome, colors.accent, 0.5)
                                            : colors.chrome);
        return;
    case CE_DockWidgetTitle: {
        const auto dock = copyOf<QStyleOptionDockWidget>(option);
        const QRect text = subElementRect(SE_DockWidgetTitleBarText, option, widget);
        painter->fillRect(option->rect, colors.chrome);
        drawItemText(painter, text.adjusted(4, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                     option->palette, true,
                     option->fontMetrics.elidedText(dock.title, Qt::ElideRight, text.width() - 4),
                     QPalette::WindowText);
        return;
    }
    case CE_ProgressBarGroove:
        return Office2013Drawing::field(*option, *painter);
    case CE_ProgressBarContents:
        if (const auto *bar = qstyleoption_cast<const QStyleOptionProgressBar *>(option);
            bar && bar->maximum > bar->minimum)
            return Office2013Drawing::progress(*bar, *painter);
        break;
    case CE_TabBarTabShape: {
        const bool chosen = option->state.testFlag(State_Selected);
        const bool hovered = option->state.testFlag(State_MouseOver);
        if (hovered && !chosen)
            painter->fillRect(option->rect, colors.hover);
        if (chosen)
            painter->fillRect(QRect(option->rect.left() + 4, option->rect.bottom() - 1,
                                    option->rect.width() - 8, 2),
                              colors.accent);
        return;
    }
    default:
        break;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

QSize Office2013Style::sizeFromContents(ContentsType type, const QStyleOption *option,
                                        const QSize &contents, const QWidget *widget) const
{
    const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    const bool line = item && item->menuItemType != QStyleOptionMenuItem::Separator;
    if (!(type == CT_MenuItem && line) && !(type == CT_ItemViewItem && isChoiceList(widget)))
        return size;
    return size.expandedTo({0, option->fontMetrics.height() + choiceRoom});
}

void Office2013Style::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                                         QPainter *painter, const QWidget *widget) const
{
    const RibbonColors colors = RibbonColors::of(option->palette);
    const bool enabled = option->state.testFlag(State_Enabled);
    const QColor mark = enabled ? colors.text : colors.disabledText;
    const auto part = [&](SubControl sub) { return subControlRect(control, option, sub, widget); };
    switch (control) {
    case CC_Slider:
        if (const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
            bar && bar->tickPosition == QSlider::NoTicks)
            return Office2013Drawing::slider(*bar, part(SC_SliderHandle), *painter);
        break;
    case CC_ScrollBar:
        if (const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option))
            return Office2013Drawing::scrollBar(*bar, part(SC_ScrollBarSlider), *painter);
        break;
    case CC_ComboBox:
        Office2013Drawing::field(*option, *painter);
        return Office2013Drawing::arrow(part(SC_ComboBoxArrow), mark, false, *painter);
    case CC_SpinBox: {
        const auto box = copyOf<QStyleOptionSpinBox>(option);
        Office2013Drawing::field(*option, *painter);
        if (box.buttonSymbols == QAbstractSpinBox::NoButtons)
            return;
        const bool canUp = box.stepEnabled.testFlag(QAbstractSpinBox::StepUpEnabled);
        const bool canDown = box.stepEnabled.testFlag(QAbstractSpinBox::StepDownEnabled);
        Office2013Drawing::arrow(part(SC_SpinBoxUp), canUp ? mark : colors.disabledText, true,
                                 *painter);
        Office2013Drawing::arrow(part(SC_SpinBoxDown), canDown ? mark : colors.disabledText, false,
                                 *painter);
        return;
    }
    default:
        break;
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

} // namespace marlowen
