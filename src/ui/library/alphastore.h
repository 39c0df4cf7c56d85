#pragma once

#include "base/result.h"

#include <QImage>
#include <QList>
#include <QString>

namespace marlowen {

/// A picture that can become the alpha brush.
struct AlphaEntry
{
    QString name; ///< as people see it
    QString path; ///< a file, or a resource for a built-in one
    bool builtIn = true;
};

/// The folder "alphas" in the data folder, where the user's pictures lie; created when missing.
QString alphaFolder();

/// The built-in alpha brushes, then the pictures in the user's folder by name.
QList<AlphaEntry> alphaEntries();

/// The picture in grey at most `side` pixels wide and high, keeping its proportions; null when it
/// cannot be read.
QImage alphaThumbnail(const QString &path, int side);

/// Copies the picture into the user's folder, under another name where its own is taken, and
/// returns the copy's path. Fails with "Add Picture Failed" when it is not a picture or cannot be
/// copied.
Result<QString> addAlphaPicture(const QString &path);

/// Moves a picture of the user's folder to the trash. Fails with "Remove Failed".
Outcome removeAlphaPicture(const QString &path);

/// Renames a picture of the user's folder and returns its new path. Fails with "Rename Failed" for
/// an empty name, one with a slash and one that is taken.
Result<QString> renameAlphaPicture(const QString &path, const QString &name);

/// Makes the picture the alpha brush: grey, padded to a square centred on black, at most 1024 cells
/// wide, its top toward the top of the screen. Fails with "Open Failed"; the alpha brush that was
/// there stays.
Outcome chooseAlpha(const QString &path);
/// No alpha brush.
void chooseNoAlpha();

/// How alpha pictures are held: mirrored left to right, then turned clockwise.
struct AlphaOrientation
{
    bool mirrored = false;
    int quarterTurns = 0; ///< 0..3
};
AlphaOrientation alphaOrientation();
/// For the alpha brush that is chosen, too.
void setAlphaOrientation(AlphaOrientation orientation);

} // namespace marlowen
