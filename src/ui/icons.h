#pragma once

#include <QIcon>
#include <QString>
#include <QStringList>

namespace marlowen {

/// The icon ":/marlowen2/<name>" (an SVG of src/ui/resources/make_icons.py). It is drawn at the
/// size and pixel ratio asked for, its lines in the application palette's button text colour, its
/// accent lightened on dark themes, and pale when disabled. The palette is read at every drawing:
/// icons follow a change of theme without being set again.
///
/// An unknown name gives a null icon and a debug message.
QIcon icon(const QString &name);

/// Every name that icon() accepts.
QStringList iconNames();

} // namespace marlowen
