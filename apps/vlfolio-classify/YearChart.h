#pragma once

#include "PageFolder.h"

#include <QtCore/QList>
#include <QtCore/QString>

/// Returns the section of the page with a bar for each year, drawn as SVG, or an empty string if
/// there is no year. A bar shows how many folders and files belong to a year folder: the folder
/// itself, and everything below it that is not in a year folder further down.
///
/// \param folders all folders of a walk, in its order.
/// \param prefix how many UTF-16 code units are left out at the start of an absolute path to make
/// the
///     name of a year.
[[nodiscard]] QString yearChart(const QList<PageFolder>& folders, qsizetype prefix);
