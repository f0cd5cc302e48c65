#pragma once

#include <QIcon>
#include <QStringList>

#include <base/tv_string.h>
#include <ui/theme.h>

namespace ui {

/// The picture of that name (a file of resources/icons without its ending), in the colours of the
/// theme in force whenever it is painted, sharp at any size and scale. A null icon for an unknown
/// or empty name.
QIcon icon(const QString& name);
QIcon icon(const TvString& name);

/// The same in the colours of one theme, whatever is in force.
QIcon icon(const QString& name, Theme theme);

/// All names there are, sorted.
QStringList iconNames();

} // namespace ui
