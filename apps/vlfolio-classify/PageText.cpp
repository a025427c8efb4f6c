#include "PageText.h"

#include "Terminal.h"

#include <QtCore/QFileInfo>
#include <QtCore/QLocale>

using namespace Qt::StringLiterals;

namespace {

QString counted(qsizetype number, QLatin1StringView one, QLatin1StringView several)
{
    return PageText::grouped(number) + u' ' + (number == 1 ? one : several);
}

} // namespace

QString PageText::shown(const QString& name)
{
    return Terminal::escaped(name).toHtmlEscaped();
}

QString PageText::grouped(qsizetype number)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(number);
}

QString PageText::folderCount(qsizetype number)
{
    return counted(number, "folder"_L1, "folders"_L1);
}

QString PageText::fileCount(qsizetype number)
{
    return counted(number, "file"_L1, "files"_L1);
}

QString PageText::nameOf(const VLEventFolderType& type)
{
    return type.enumToStringTable()->nameFor(type.value());
}

QString PageText::nameOfRoot(const QString& rootPath)
{
    const QString name = QFileInfo(rootPath).fileName();
    return name.isEmpty() ? rootPath : name;
}
