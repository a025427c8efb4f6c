#include "JsonLine.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QStringBuilder>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

bool isEscaped(QChar character)
{
    return character < u' ' || character == u'"' || character == u'\\' || character.isSurrogate();
}

QString written(const QJsonArray& array)
{
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

// Most texts need no escaping, only quotes. The others are left to Qt.
QString quoted(const QString& text)
{
    if (std::none_of(text.cbegin(), text.cend(), isEscaped))
        return u'"' % text % u'"';
    const QString array = written({ text });
    return array.mid(1, array.size() - 2);
}

QString quoted(const QStringList& texts)
{
    QStringList all;
    for (const QString& text : texts)
        all.append(quoted(text));
    return u'[' + all.join(u',') + u']';
}

QString occasionsOf(const VLEventFolderClassificationResult& result)
{
    QJsonArray array;
    const VLOccasionInfoList occasions = result.occasionInformation();
    for (const VLOccasionInfo& info : occasions) {
        array.append(QJsonObject { { u"occasion"_s, info.occasion() },
                                   { u"source"_s, info.source() },
                                   { u"confidence"_s, info.confidence() } });
    }
    return occasions.isEmpty() ? u"[]"_s : written(array);
}

// Listings that differ only in the system's reason have the same name, which appears once.
QString incompleteNames(const QList<IncompleteListing>& listings)
{
    QStringList names;
    for (const IncompleteListing& listing : listings)
        names.append(incompleteName(listing));
    names.removeDuplicates();
    return quoted(names);
}

} // namespace

// The line is put together by hand, because a QJsonObject for each folder would take much longer.
QString jsonLine(const JsonFolder& folder, int prefix)
{
    const QString path = folder.result.directory().absoluteFilePath();
    const VLEventFolderType type = folder.result.classification();
    // Only a folder whose listing is incomplete has this member, so that users can search for it.
    const QString incomplete = folder.incomplete.isEmpty()
        ? QString()
        : u",\"incomplete\":"_s + incompleteNames(folder.incomplete);
    return u"{\"files\":"_s % QString::number(folder.fileCount) % incomplete % u",\"occasions\":"_s
        % occasionsOf(folder.result) % u",\"ownType\":"_s % quoted(folder.reason.ownType.name())
        % u",\"path\":"_s % quoted(path) % u",\"relativePath\":"_s % quoted(path.mid(prefix))
        % u",\"tests\":"_s % quoted(folder.reason.tests) % u",\"type\":"_s % quoted(type.name())
        % u",\"value\":"_s % QString::number(static_cast<int>(type.value())) % u'}';
}
