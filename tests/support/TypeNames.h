#pragma once

#include <VLFolioEventClassifier/VLEventFolderType.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

/// Name that \a type has in texts and reports, written out here: the library's own table of names
/// is itself under test. A combination of flags has none.
[[nodiscard]] inline QString printedTypeName(VLEventFolderTypeEnum type)
{
    switch (type) {
    case VLEventFolderTypeEnum::Unknown:
        return QStringLiteral("Unknown");
    case VLEventFolderTypeEnum::Root:
        return QStringLiteral("Root");
    case VLEventFolderTypeEnum::Year:
        return QStringLiteral("Year");
    case VLEventFolderTypeEnum::Month:
        return QStringLiteral("Month");
    case VLEventFolderTypeEnum::Day:
        return QStringLiteral("Day");
    case VLEventFolderTypeEnum::Event:
        return QStringLiteral("Event");
    case VLEventFolderTypeEnum::ProjectFolder:
        return QStringLiteral("ProjectFolder");
    }
    return {};
}

/// Name of \a type for messages and expected texts. A combination of flags reads as its number.
[[nodiscard]] inline QString typeName(VLEventFolderTypeEnum type)
{
    const QString name = printedTypeName(type);
    return name.isEmpty() ? QString::number(static_cast<qint32>(type)) : name;
}

/// Lets QCOMPARE() print both types when they differ.
[[nodiscard]] inline char* toString(VLEventFolderTypeEnum type)
{
    return qstrdup(typeName(type).toUtf8().constData());
}
