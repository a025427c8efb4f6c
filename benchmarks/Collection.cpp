#include "Collection.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <climits>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

QString twoDigits(int number)
{
    return QString::number(number).rightJustified(2, u'0');
}

void makeFolder(const QString& path, int files)
{
    const QByteArray name = QFile::encodeName(path);
    if (mkdir(name.constData(), 0777) != 0)
        qFatal("cannot make the folder %s", name.constData());
    for (int number = 1; number <= files; ++number) {
        const QByteArray file = name + "/IMG_" + QByteArray::number(number) + ".jpg";
        const int descriptor = open(file.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
        if (descriptor < 0)
            qFatal("cannot make the file %s", file.constData());
        close(descriptor);
    }
}

QString eventName(int event, int month, int year)
{
    const QString number = QString::number(event / 8 + 1);
    switch (event % 8) {
    case 0:
        return u"%1-%2-0%3 Beach"_s.arg(QString::number(year), twoDigits(month), number);
    case 1:
        return u"Hiking in the Alps "_s + number;
    case 2:
        return u"0%1.%2.%3"_s.arg(number, twoDigits(month), QString::number(year));
    case 3:
        return u"Hochzeit J\u00f6rg & Zo\u00eb "_s + number;
    case 4:
        return u"Sunday, July %1, %2"_s.arg(number, QString::number(year));
    case 5:
        return u"Sommerfest %1 Teil %2"_s.arg(QString::number(year), number);
    case 6:
        return u"IMG_01"_s + number;
    default:
        return u"7 Zwerge "_s + number;
    }
}

void makeBelowEvent(const QString& path, int event, Collection::Counts& counts)
{
    switch (event % 5) {
    case 0:
        makeFolder(path + u"/2019-07-15"_s, 0);
        ++counts.days;
        return;
    case 1:
        makeFolder(path + u"/16.07.2019"_s, 0);
        ++counts.days;
        return;
    case 2:
        makeFolder(path + u"/selection"_s, 0);
        ++counts.unknown;
        return;
    default:
        return;
    }
}

void makeMonth(const QString& path, int month, int year, int events, int files,
               Collection::Counts& counts)
{
    makeFolder(path, 0);
    ++counts.months;
    for (int event = 0; event < events; ++event) {
        const QString eventPath = path + u'/' + eventName(event, month, year);
        makeFolder(eventPath, files);
        ++counts.events;
        makeBelowEvent(eventPath, event, counts);
    }
}

Collection::Counts makeCalendar(const QString& root, int years, int events, int files)
{
    Collection::Counts counts;
    for (int year = 2000; year < 2000 + years; ++year) {
        const QString path = root + u'/' + QString::number(year);
        makeFolder(path, 0);
        ++counts.years;
        for (int month = 1; month <= 12; ++month)
            makeMonth(path + u'/' + twoDigits(month), month, year, events, files, counts);
    }
    return counts;
}

Collection::Counts makeFlat(const QString& root, int folders, int files)
{
    Collection::Counts counts;
    for (int folder = 0; folder < folders; ++folder) {
        // Without the hyphen, four digits that begin with 2 would be a year.
        const QString number = twoDigits(folder / 100) + u'-' + twoDigits(folder % 100);
        const bool dated = folder % 2 == 0;
        makeFolder(root + (dated ? u"/2019-07-14 No "_s : u"/Trip "_s) + number, files);
        ++(dated ? counts.events : counts.unknown);
    }
    return counts;
}

Collection::Counts makeChain(const QString& root, int levels, int files)
{
    // This leaves room for the names of the files in the last folder.
    constexpr int longestPath = PATH_MAX - 32;
    Collection::Counts counts;
    QString path = root;
    while (levels == 0 ? path.size() + 2 <= longestPath : counts.unknown < levels) {
        path += u"/a"_s;
        makeFolder(path, files);
        ++counts.unknown;
    }
    return counts;
}

} // namespace

const Collection::Shape* Collection::shapeNamed(std::string_view name)
{
    const auto* const shape =
        std::find_if(shapes.cbegin(), shapes.cend(),
                     [name](const Shape& candidate) { return candidate.name == name; });
    return shape == shapes.cend() ? nullptr : shape;
}

Collection::Counts Collection::make(const Shape& shape, const QString& root, int files)
{
    switch (shape.layout) {
    case Layout::Calendar:
        return makeCalendar(root, shape.size, shape.events, files);
    case Layout::Flat:
        return makeFlat(root, shape.size, files);
    case Layout::Chain:
        return makeChain(root, shape.size, files);
    }
    return {};
}

QString Collection::preferredDirectory()
{
    const QFileInfo memory(u"/dev/shm"_s);
    return memory.isDir() && memory.isWritable() ? memory.filePath() : QDir::tempPath();
}
