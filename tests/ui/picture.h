#pragma once

#include "ui/ribbon/office2013style.h"

#include <QApplication>
#include <QDir>
#include <QString>
#include <QTest>
#include <QWidget>

using namespace marlowen;

/// Wears the program's style in one theme.
inline void wearTheme(bool dark)
{
    auto *style = new Office2013Style;
    style->setTheme(dark ? Office2013Style::Dark : Office2013Style::Light);
    QApplication::setStyle(style);
    QApplication::setPalette(style->standardPalette());
}

/// Saves "<name>-light.png" and "<name>-dark.png" of the shown widget for the eye in the folder
/// that MARLOWEN_PICTURES names; without it nothing is saved.
inline void keepPictures(QWidget &widget, const QString &name)
{
    const QString folder = qEnvironmentVariable("MARLOWEN_PICTURES");
    if (folder.isEmpty())
        return;
    for (const bool dark : {false, true}) {
        wearTheme(dark);
        QTest::qWait(50);
        const QString file = name + (dark ? "-dark.png" : "-light.png");
        QVERIFY(widget.grab().save(QDir(folder).filePath(file)));
    }
    wearTheme(false);
}
