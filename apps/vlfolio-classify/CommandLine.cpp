#include "CommandLine.h"

#include "OptionTable.h"

#include <QtCore/QCommandLineOption>
#include <QtCore/QCommandLineParser>
#include <QtCore/QRegularExpression>

#include <algorithm>
#include <array>
#include <iterator>
#include <new>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

struct ActionRow
{
    QLatin1StringView option;
    CommandLine::Action action = CommandLine::Action::Report;
};

// The first two take precedence over everything else. Of the others, only one may be given.
constexpr std::array actionTable {
    ActionRow { "help"_L1, CommandLine::Action::Help },
    ActionRow { "version"_L1, CommandLine::Action::Version },
    ActionRow { "page"_L1, CommandLine::Action::Page },
    ActionRow { "list"_L1, CommandLine::Action::List },
    ActionRow { "json"_L1, CommandLine::Action::Json },
    ActionRow { "summary"_L1, CommandLine::Action::Summary },
    ActionRow { "explain"_L1, CommandLine::Action::Explain },
    ActionRow { "locales"_L1, CommandLine::Action::Locales },
};

void addOptions(QCommandLineParser& parser)
{
    for (const OptionRow& row : optionTable) {
        parser.addOption(
            QCommandLineOption(QString(row.names).split(u' '), row.description, row.valueName));
    }
    parser.setApplicationDescription(
        u"Classifies the folders of a picture collection into years, months, days, events\n"
        "and project folders, writes the outcome as an HTML table into DIRECTORY, and\n"
        "opens it if there is a desktop."_s);
}

std::optional<VLEventFolderType> typeNamed(const QString& name)
{
    const auto* const table = VLEventFolderType().enumToStringTable();
    const VLEventFolderTypeEnum value = table->valueFor(name);
    // A name of no type is read as Unknown, so the names have to be compared.
    if (table->nameFor(value).compare(name, Qt::CaseInsensitive) != 0)
        return std::nullopt;
    return value;
}

bool namesPartOf(const QLocale& locale, const QString& subtag)
{
    return subtag.size() == 4 ? QLocale::codeToScript(subtag) == locale.script()
                              : QLocale::codeToTerritory(subtag) == locale.territory();
}

// QLocale accepts any name and falls back to a locale that it knows. This accepts only names of
// known locales.
std::optional<QLocale> localeNamed(const QString& name)
{
    const QString tag = name.section(u'.', 0, 0).replace(u'-', u'_');
    if (tag == u"C"_s || tag == u"POSIX"_s)
        return QLocale::c();
    const QLocale locale(tag);
    const QStringList subtags = tag.split(u'_');
    const bool known = locale.language() != QLocale::C
        && QLocale::codeToLanguage(subtags.constFirst()) == locale.language()
        && std::all_of(subtags.cbegin() + 1, subtags.cend(),
                       [&locale](const QString& subtag) { return namesPartOf(locale, subtag); });
    return known ? std::optional(locale) : std::nullopt;
}

// Returns the first argument with an option that the parser does not know, as it was typed. Only
// the parser can tell options from values, so it has to parse ever more of the arguments.
QString unknownOption(QCommandLineParser& parser, const QStringList& arguments)
{
    const auto isKnownSoFar = [&](const QString& argument) {
        QStringList argumentsSoFar;
        std::copy(arguments.constData(), &argument + 1, std::back_inserter(argumentsSoFar));
        parser.parse(argumentsSoFar);
        return parser.unknownOptionNames().isEmpty();
    };
    return *std::partition_point(arguments.cbegin(), arguments.cend(), isKnownSoFar);
}

bool worksOnDirectory(CommandLine::Action action)
{
    return action != CommandLine::Action::Explain && action != CommandLine::Action::Locales;
}

// Returns what the parser found wrong, worded like the program's other messages.
QString parserError(QCommandLineParser& parser, const QStringList& arguments)
{
    if (!parser.unknownOptionNames().isEmpty())
        return u"unknown option '%1'"_s.arg(unknownOption(parser, arguments));
    QString text = parser.errorText();
    if (text.endsWith(u'.'))
        text.chop(1);
    return text.at(0).toLower() + text.sliced(1);
}

// Sets the action. Returns what is wrong if two were asked for, or an empty string.
QString readAction(const QCommandLineParser& parser, CommandLine& commandLine)
{
    QString chosen;
    for (const ActionRow& row : actionTable) {
        if (!parser.isSet(row.option))
            continue;
        if (!chosen.isEmpty())
            return u"--%1 and --%2 do not go together"_s.arg(chosen, row.option);
        chosen = row.option;
        commandLine.action = row.action;
        if (row.action == CommandLine::Action::Help || row.action == CommandLine::Action::Version)
            break;
    }
    return {};
}

QString readOpening(const QCommandLineParser& parser, CommandLine& commandLine)
{
    const bool open = parser.isSet(u"open"_s);
    if (open && parser.isSet(u"no-open"_s))
        return u"--open and --no-open do not go together"_s;
    if (open && commandLine.action != CommandLine::Action::Report
        && commandLine.action != CommandLine::Action::Page) {
        return u"--open goes with a report or a page only"_s;
    }
    if (open)
        commandLine.opening = CommandLine::Opening::Always;
    else if (parser.isSet(u"no-open"_s))
        commandLine.opening = CommandLine::Opening::Never;
    return {};
}

QString readOutput(const QCommandLineParser& parser, CommandLine& commandLine)
{
    const QStringList values = parser.values(u"output"_s);
    if (values.isEmpty())
        return {};
    if (values.size() > 1)
        return u"--output is given more than once"_s;
    if (commandLine.action != CommandLine::Action::Report)
        return u"--output goes with a report only"_s;
    commandLine.output = values.constFirst();
    return commandLine.output.isEmpty() ? u"--output needs a path"_s : QString();
}

QString readTypes(const QCommandLineParser& parser, CommandLine& commandLine)
{
    if (!parser.isSet(u"type"_s))
        return {};
    constexpr std::array filtered { CommandLine::Action::List, CommandLine::Action::Json,
                                    CommandLine::Action::Summary };
    if (std::find(filtered.cbegin(), filtered.cend(), commandLine.action) == filtered.cend())
        return u"--type goes with --list, --json or --summary only"_s;
    const QStringList names = parser.values(u"type"_s).join(u',').split(u',');
    for (const QString& name : names) {
        const auto type = typeNamed(name);
        if (!type)
            return u"unknown type '%1'"_s.arg(name);
        commandLine.types.append(*type);
    }
    return {};
}

QString readPage(const QCommandLineParser& parser, CommandLine& commandLine)
{
    const QStringList files = parser.values(u"page"_s);
    if (files.size() > 1)
        return u"--page is given more than once"_s;
    commandLine.page = files.value(0);
    return !files.isEmpty() && commandLine.page.isEmpty() ? u"--page needs a file"_s : QString();
}

QString readWhy(const QCommandLineParser& parser, CommandLine& commandLine)
{
    commandLine.why = parser.isSet(u"why"_s);
    return commandLine.why && commandLine.action != CommandLine::Action::List
        ? u"--why goes with --list only"_s
        : QString();
}

// Returns why this pattern can match no folder's name, or an empty string if it can.
QString patternProblem(const QString& pattern)
{
    if (pattern.isEmpty())
        return u"it is empty"_s;
    if (pattern.contains(u'/'))
        return u"it holds a slash, but is compared with names, not with paths"_s;
    const auto isValid = [&pattern] {
        return QRegularExpression::fromWildcard(pattern, Qt::CaseSensitive).isValid();
    };
    if (isValid())
        return {};
    // There may only have been no memory to compile the pattern.
    if (isValid())
        throw std::bad_alloc();
    return u"it is no valid pattern"_s;
}

QString readExcluded(const QCommandLineParser& parser, CommandLine& commandLine)
{
    commandLine.excluded = parser.values(u"exclude"_s);
    if (!commandLine.excluded.isEmpty() && !worksOnDirectory(commandLine.action))
        return u"--exclude goes with a directory only"_s;
    for (const QString& pattern : std::as_const(commandLine.excluded)) {
        if (const QString problem = patternProblem(pattern); !problem.isEmpty())
            return u"--exclude '%1': %2"_s.arg(pattern, problem);
    }
    return {};
}

QString readLocale(const QCommandLineParser& parser, CommandLine& commandLine)
{
    const QStringList names = parser.values(u"locale"_s);
    if (names.isEmpty())
        return {};
    if (names.size() > 1)
        return u"--locale is given more than once"_s;
    commandLine.locale = localeNamed(names.constFirst());
    if (!commandLine.locale)
        return u"unknown locale '%1'"_s.arg(names.constFirst());
    return {};
}

// Returns why the names cannot be explained, or an empty string if they can.
QString namesProblem(const QStringList& names)
{
    if (names.isEmpty())
        return u"--explain needs a folder name"_s;
    const auto path = std::find_if(names.cbegin(), names.cend(),
                                   [](const QString& name) { return name.contains(u'/'); });
    return path == names.cend()
        ? QString()
        : u"'%1' is a path, --explain takes names only; --list --why explains the folders in a "
          "directory"_s.arg(*path);
}

QString readOperands(const QCommandLineParser& parser, CommandLine& commandLine)
{
    commandLine.operands = parser.positionalArguments();
    if (commandLine.action == CommandLine::Action::Explain)
        return namesProblem(commandLine.operands);
    if (commandLine.action == CommandLine::Action::Locales)
        return commandLine.operands.isEmpty() ? QString() : u"--locales takes no directory"_s;
    if (commandLine.operands.isEmpty() || commandLine.operands.constFirst().isEmpty())
        return u"no directory given"_s;
    if (commandLine.operands.size() > 1) {
        return u"more than one directory given: '%1' (does a path with blanks lack quotes?)"_s.arg(
            commandLine.operands.at(1));
    }
    return {};
}

} // namespace

std::optional<CommandLine> CommandLine::parse(const QStringList& arguments, QString* error)
{
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(arguments)) {
        *error = parserError(parser, arguments);
        return std::nullopt;
    }

    CommandLine commandLine;
    *error = readAction(parser, commandLine);
    if (error->isEmpty()
        && (commandLine.action == Action::Help || commandLine.action == Action::Version)) {
        return commandLine;
    }
    constexpr std::array readers { readOpening, readOutput,   readPage,   readTypes,
                                   readWhy,     readExcluded, readLocale, readOperands };
    for (const auto& read : readers) {
        if (error->isEmpty())
            *error = read(parser, commandLine);
    }
    return error->isEmpty() ? std::optional(commandLine) : std::nullopt;
}

QString CommandLine::helpText()
{
    QCommandLineParser parser;
    addOptions(parser);
    // The parser's own first line names the path by which the program was called.
    const QString generated = parser.helpText();
    return u"Usage: vlfolio-classify [options] DIRECTORY\n"
           "       vlfolio-classify [--locale NAME] --explain NAME...\n"
           "       vlfolio-classify --locales\n\n"_s
        + generated.mid(generated.indexOf(u'\n') + 1).trimmed();
}

QStringList CommandLine::localeNames()
{
    QStringList names;
    const auto locales =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory);
    for (const QLocale& locale : locales) {
        if (localeNamed(locale.name()))
            names.append(locale.name());
    }
    names.removeDuplicates();
    names.sort();
    return names;
}
