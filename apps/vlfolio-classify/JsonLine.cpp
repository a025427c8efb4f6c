#include "JsonLine.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

using namespace Qt::StringLiterals;

namespace {

QString nameOf(const VLEventFolderType& type)
{
    return type.name();
}

QJsonArray occasionsOf(const VLEventFolderClassificationResult& result)
{
    QJsonArray array;
    const VLOccasionInfoList occasions = result.occasionInformation();
    for (const VLOccasionInfo& info : occasions) {
        array.append(QJsonObject { { u"occasion"_s, info.occasion() },
                                   { u"source"_s, info.source() },
                                   { u"confidence"_s, info.confidence() } });
    }
    return array;
}

// Unlike the sentences, each name once, whatever the system's reasons were.
QJsonArray incompleteNames(const QList<IncompleteListing>& listings)
{
    QStringList names;
    for (const IncompleteListing& listing : listings)
        names.append(incompleteName(listing));
    names.removeDuplicates();
    return QJsonArray::fromStringList(names);
}

} // namespace

QString jsonLine(const JsonFolder& folder, int prefix)
{
    const QString path = folder.result.directory().absoluteFilePath();
    const VLEventFolderType type = folder.result.classification();
    // clang-format off
    QJsonObject object {
        { u"path"_s, path },
        { u"relativePath"_s, path.mid(prefix) },
        { u"type"_s, nameOf(type) },
        { u"value"_s, static_cast<int>(type.value()) },
        { u"ownType"_s, nameOf(folder.reason.ownType) },
        { u"tests"_s, QJsonArray::fromStringList(folder.reason.tests) },
        { u"files"_s, folder.fileCount },
        { u"occasions"_s, occasionsOf(folder.result) },
    };
    // clang-format on
    // Only what is incomplete says so: that is what a reader looks for.
    if (!folder.incomplete.isEmpty())
        object.insert(u"incomplete"_s, incompleteNames(folder.incomplete));
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}
