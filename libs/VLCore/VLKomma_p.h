#pragma once

#include <QtCore/QString>

/// A comma, the separator of joined texts. Every source file of the libraries has a constant of its
/// own.
[[maybe_unused]] const QString KOMMA(QStringLiteral(",")); // clazy:exclude=non-pod-global-static
