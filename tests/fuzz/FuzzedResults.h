#pragma once

#include "TypeNames.h"

#include <VLFolioEventClassifier/VLEventFolderClassificationResult.h>

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <cstddef>
#include <cstdint>

/// Results made of the bytes of an input. Its first line is a number, the length of the prefix that
/// is left out of the paths. Each further line is one result: a character for its type, the path
/// behind it, and then, each behind a tab, occasions of three parts: occasion, source, confidence.
struct FuzzedResults
{
    struct Occasion
    {
        QString occasion;
        QString source;
        double confidence;
    };
    struct Item
    {
        qint32 type;
        QString path;
        QList<Occasion> occasions;
    };

    FuzzedResults(const std::uint8_t* data, std::size_t size)
    {
        const QByteArray input(reinterpret_cast<const char*>(data), qsizetype(size));
        const QByteArrayList lines = input.split('\n');
        prefixLength = lines.constFirst().toInt();
        for (const QByteArray& line : lines.mid(1)) {
            if (!line.isEmpty())
                items.append(itemOf(line.split('\t')));
        }
    }

    [[nodiscard]] static VLEventFolderClassificationResult resultOf(const Item& item)
    {
        VLEventFolderClassificationResult result(QFileInfo(item.path),
                                                 static_cast<VLEventFolderTypeEnum>(item.type));
        VLOccasionInfoList occasions;
        for (const Occasion& one : item.occasions)
            occasions.append(VLOccasionInfo(one.occasion, one.source, one.confidence));
        result.setOccasionInformation(occasions);
        return result;
    }

    /// The name of a type; combinations have none.
    [[nodiscard]] static QString nameOf(qint32 type)
    {
        return printedTypeName(static_cast<VLEventFolderTypeEnum>(type));
    }

    int prefixLength = 0;
    QList<Item> items;

private:
    static Item itemOf(const QByteArrayList& parts)
    {
        // "0" to "6" are the types with a name, everything else stands for itself.
        const char kind = parts.constFirst().isEmpty() ? '\0' : parts.constFirst().at(0);
        const qint32 type = kind >= '1' && kind <= '6' ? 1 << (kind - '1') : kind == '0' ? 0 : kind;
        Item item { type, textOf(parts.constFirst().mid(1)), {} };
        // A path with a NUL is none, as Qt says in a warning.
        item.path.remove(QChar(0));
        if (!item.path.startsWith(u'/'))
            item.path.prepend(u'/');
        for (qsizetype i = 1; i + 2 < parts.size(); i += 3)
            item.occasions.append(
                { textOf(parts.at(i)), textOf(parts.at(i + 1)), parts.at(i + 2).toDouble() });
        return item;
    }

    // UTF-8, but a surrogate in three bytes becomes the lone surrogate that QString admits.
    static QString textOf(const QByteArray& bytes)
    {
        QString text;
        qsizetype start = 0;
        for (qsizetype i = 0; i + 2 < bytes.size(); ++i) {
            const auto second = static_cast<uchar>(bytes.at(i + 1));
            const auto third = static_cast<uchar>(bytes.at(i + 2));
            if (bytes.at(i) == '\xed' && second >= 0xa0 && second <= 0xbf && third >= 0x80
                && third <= 0xbf) {
                text += QString::fromUtf8(bytes.mid(start, i - start));
                text += QChar(0xd000 | (second & 0x3f) << 6 | (third & 0x3f));
                i += 2;
                start = i + 1;
            }
        }
        return text + QString::fromUtf8(bytes.mid(start));
    }
};
