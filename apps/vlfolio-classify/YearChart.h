#pragma once

#include "PageFolder.h"

#include <QtCore/QList>
#include <QtCore/QString>

/// The section of the page with a bar for each year, drawn as SVG: how many folders lie nearest
/// below a year folder, itself included, and how many files. Empty where there is no year.
///
/// \param folders all of a walk, in its order.
/// \param prefix the length of what the names of the years leave out of their absolute paths.
[[nodiscard]] QString yearChart(const QList<PageFolder>& folders, qsizetype prefix);
