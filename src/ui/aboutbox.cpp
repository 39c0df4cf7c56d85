#include "ui/aboutbox.h"

#include "base/version.h"
#include "ui/icons.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

namespace marlowen {

AboutBox::AboutBox(QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(tr("About %1").arg(QLatin1String{productName}));
    auto *logo = new QLabel;
    logo->setPixmap(icon(QStringLiteral("logo")).pixmap(QSize(64, 64), devicePixelRatioF()));
    auto *name = new QLabel(QLatin1String{productName});
    QFont font = name->font();
    font.setPointSizeF(font.pointSizeF() * 1.4);
    name->setFont(font);
    auto *details = new QLabel(tr("Version %1\nSculpts reliefs for carving machines.\n\n"
                                  "Built with Qt %2, running on Qt %3.")
                                   .arg(QLatin1String{versionText}, QLatin1String{QT_VERSION_STR},
                                        QLatin1String{qVersion()}));
    details->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    buttons->button(QDialogButtonBox::Close)->setFocus();

    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(24, 24, 24, 16);
    grid->setHorizontalSpacing(20);
    grid->setVerticalSpacing(12);
    grid->setSizeConstraint(QLayout::SetFixedSize);
    grid->addWidget(logo, 0, 0, 2, 1, Qt::AlignTop);
    grid->addWidget(name, 0, 1);
    grid->addWidget(details, 1, 1);
    grid->addWidget(buttons, 2, 0, 1, 2);
}

} // namespace marlowen
