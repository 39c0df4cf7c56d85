#include "ui/recentfilesmenu.h"

#include "base/qevsettings.h"
#include "ui/icons.h"
#include "ui/ribbon/ribbonbutton.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>

namespace marlowen {

RecentFilesMenu::RecentFilesMenu(QObject *parent)
    : QObject(parent)
{
    for (int entry = 0; entry < entryCount; ++entry) {
        auto *action = new QAction(this);
        action->setObjectName(QStringLiteral("recentFile%1").arg(entry));
        action->setIcon(icon(QStringLiteral("openRecent")));
        action->setVisible(false);
        m_actions.append(action);
    }
}

void RecentFilesMenu::refresh()
{
    const QStringList files = QevSettings().recentFiles();
    for (int entry = 0; entry < entryCount; ++entry) {
        QAction *action = m_actions[entry];
        const bool used = entry < files.size() && !files[entry].isEmpty();
        action->setVisible(used);
        if (!used)
            continue;
        action->setText(QFileInfo(files[entry]).fileName());
        action->setData(files[entry]);
        action->setToolTip(QDir::toNativeSeparators(files[entry]));
    }
}

QWidget *RecentFilesMenu::makeList()
{
    constexpr int rowHeight = 36;
    constexpr int nameWidth = 300;
    auto *list = new QWidget;
    auto *grid = new QGridLayout(list);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setVerticalSpacing(4);
    grid->setColumnStretch(1, 1);
    auto *heading = new QLabel(tr("Recent files"));
    heading->setContentsMargins(4, 4, 0, 4);
    grid->addWidget(heading, 0, 0, 1, 2);
    auto *nothing = new QLabel(tr("Files that you open or save are listed here."), list);
    nothing->setContentsMargins(4, 4, 0, 4);
    grid->addWidget(nothing, 1, 0, 1, 2);
    connect(m_actions.first(), &QAction::changed, nothing,
            [nothing, first = m_actions.first()] { nothing->setVisible(!first->isVisible()); });
    for (int entry = 0; entry < entryCount; ++entry) {
        QAction *action = m_actions[entry];
        auto *button = new RibbonButton(action, RibbonButton::Small, list);
        button->setFixedSize(nameWidth, rowHeight);
        auto *folder = new QLabel(list);
        folder->setForegroundRole(QPalette::PlaceholderText);
        folder->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        grid->addWidget(button, entry + 2, 0);
        grid->addWidget(folder, entry + 2, 1);
        const auto show = [button, folder, action] {
            button->setVisible(action->isVisible());
            folder->setVisible(action->isVisible());
            folder->setText(QDir::toNativeSeparators(QFileInfo(action->data().toString()).path()));
        };
        connect(action, &QAction::changed, button, show);
        show();
    }
    grid->setRowStretch(entryCount + 2, 1);
    return list;
}

} // namespace marlowen
