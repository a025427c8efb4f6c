// Random paths, types and occasions into the line of JSON that the program prints for a result. It
// must be JSON to the letter, on one line, and read back as what went in.

#include "FuzzedResults.h"
#include "Fuzzing.h"

#include "JsonLine.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

using Item = FuzzedResults::Item;

// As RFC 8259 has it. Nothing is tried twice, so that long texts need no more steps than short
// ones.
bool isStrictJson(const QByteArray& text)
{
    static const QRegularExpression grammar(uR"((?x)(?(DEFINE)
        (?<blanks> [\x20\t\r\n]*+ )
        (?<number> -?+ (?: 0 | [1-9][0-9]*+ ) (?: \.[0-9]++ )?+ (?: [eE][+-]?+[0-9]++ )?+ )
        (?<string> " (?: [^"\\\x00-\x1f]++ | \\ (?: ["\\/bfnrt] | u[0-9A-Fa-f]{4} ) )*+ " )
        (?<member> (?&blanks) (?&string) (?&blanks) : (?&value) )
        (?<object> \{ (?: (?&member) (?: , (?&member) )*+ | (?&blanks) ) \} )
        (?<array> \[ (?: (?&value) (?: , (?&value) )*+ | (?&blanks) ) \] )
        (?<value> (?&blanks)
            (?: (?&object) | (?&array) | (?&string) | (?&number) | true | false | null )
            (?&blanks) )
        ) \A (?&value) \z)"_s);
    return grammar.match(QString::fromUtf8(text)).hasMatch();
}

using Problem = VLPlatformIndependent::ListingProblem;

struct ProblemName
{
    Problem problem = Problem::Unreadable;
    QLatin1StringView name;
};

constexpr std::array problemNames {
    ProblemName { Problem::Unreadable, "unreadable"_L1 },
    ProblemName { Problem::Unsearchable, "unsearchable"_L1 },
    ProblemName { Problem::UnknownEntry, "unknownEntries"_L1 },
    ProblemName { Problem::UndecodableName, "undecodableNames"_L1 },
};

// Each bit of the path's length stands for one of the problems, which two reasons of the system
// make.
bool hasProblem(const Item& item, std::size_t index)
{
    return (item.path.size() >> index & 1) != 0;
}

// As many files as the path is long. Any text is a reason here.
JsonFolder folderOf(const Item& item)
{
    const VLEventFolderClassificationResult result = FuzzedResults::resultOf(item);
    JsonFolder folder {
        result, item.path.size(), { result.classification(), { item.path }, {} }, {}
    };
    for (std::size_t i = 0; i < problemNames.size(); ++i) {
        if (hasProblem(item, i))
            folder.incomplete.append(
                { { problemNames[i].problem, 1 }, { problemNames[i].problem, 2 } });
    }
    return folder;
}

QJsonArray expectedReasons(const Item& item)
{
    QJsonArray names;
    for (std::size_t i = 0; i < problemNames.size(); ++i) {
        if (hasProblem(item, i))
            names.append(QString(problemNames[i].name));
    }
    return names;
}

// Qt's parser drops a byte order mark at the start of some texts, so that none takes part in the
// comparison of what is read back.
QString readBack(QString text)
{
    return text.remove(u'\ufeff');
}

QByteArray withoutByteOrderMarks(QByteArray line)
{
    return line.replace("\xef\xbb\xbf", "");
}

QJsonObject expectedObject(const Item& item, int prefixLength)
{
    const QString path = QFileInfo(item.path).absoluteFilePath();
    QJsonArray occasions;
    for (const FuzzedResults::Occasion& one : item.occasions) {
        occasions.append(QJsonObject {
            { u"occasion"_s, readBack(one.occasion) },
            { u"source"_s, readBack(one.source) },
            // JSON has no infinities and nothing that is no number.
            { u"confidence"_s,
              std::isfinite(one.confidence) ? QJsonValue(one.confidence) : QJsonValue() } });
    }
    const auto cut = std::clamp<qsizetype>(prefixLength, 0, path.size());
    QJsonObject object { { u"path"_s, readBack(path) },
                         { u"relativePath"_s, readBack(path.sliced(cut)) },
                         { u"type"_s, FuzzedResults::nameOf(item.type) },
                         { u"value"_s, item.type },
                         { u"ownType"_s, FuzzedResults::nameOf(item.type) },
                         { u"tests"_s, QJsonArray { readBack(item.path) } },
                         { u"files"_s, item.path.size() },
                         { u"occasions"_s, occasions } };
    if (const QJsonArray reasons = expectedReasons(item); !reasons.isEmpty())
        object.insert(u"incomplete"_s, reasons);
    return object;
}

} // namespace

int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    Q_UNUSED(argc)
    Q_UNUSED(argv)
    Fuzzing::endOnMessages();
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString inputText =
        QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const FuzzedResults input(data, size);
    for (const Item& item : input.items) {
        const QByteArray line = jsonLine(folderOf(item), input.prefixLength).toUtf8();
        Fuzzing::compare("is JSON to the letter", isStrictJson(line), true, inputText);
        Fuzzing::compare("is one line", line.contains('\n'), false, inputText);
        QJsonParseError error {};
        const QJsonDocument document = QJsonDocument::fromJson(withoutByteOrderMarks(line), &error);
        Fuzzing::compare("parse error", int(error.error), int(QJsonParseError::NoError), inputText);
        Fuzzing::compare("object", document.object(), expectedObject(item, input.prefixLength),
                         inputText);
    }
    return 0;
}
