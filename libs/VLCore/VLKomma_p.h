#pragma once

#include <QtCore/QString>

/// A comma. Every source file of the libraries has this constant for itself.
[[maybe_unused]] const QString KOMMA(QStringLiteral(",")); // clazy:exclude=non-pod-global-static
