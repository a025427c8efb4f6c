#include "NameBenchmarks.h"

#include "LiteralRules.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <benchmark/benchmark.h>

#include <QtCore/QFileInfo>
#include <QtCore/QList>

#include <array>
#include <optional>
#include <string>

using namespace Qt::StringLiterals;

namespace {

enum Language { C, English, German };

struct FolderName
{
    QString name;
    // Its type in each of the languages.
    std::array<VLEventFolderTypeEnum, 3> types;
};

struct NameClass
{
    std::string name;
    QList<FolderName> names;
};

QList<NameClass> nameClasses()
{
    constexpr auto none = VLEventFolderTypeEnum::Unknown;
    constexpr auto year = VLEventFolderTypeEnum::Year;
    constexpr auto month = VLEventFolderTypeEnum::Month;
    constexpr auto day = VLEventFolderTypeEnum::Day;
    constexpr auto project = VLEventFolderTypeEnum::ProjectFolder;

    // clang-format off
    const QList<FolderName> dated {
        { u"2019-07-14 Beach"_s, { day, day, day } },
        { u"2019-07-14"_s, { day, day, day } },
        { u"14.07.2019"_s, { day, day, day } },
        { u"2022,04,17 Ostern"_s, { day, day, day } },
        { u"2019 07 14"_s, { day, day, day } },
        { u"Party 31-12-99"_s, { day, day, day } },
    };
    const QList<FolderName> localised {
        { u"Sunday, 14 July 2019"_s, { day, year, year } },
        { u"Sunday, July 14, 2019"_s, { year, day, year } },
        { u"Sonntag, 14. Juli 2019"_s, { year, year, day } },
        { u"Sun Jul 14 2019"_s, { day, day, day } },
        { u"Monday"_s, { day, day, none } },
        { u"Montag"_s, { none, none, day } },
    };
    const QList<FolderName> words {
        { u"Christmas"_s, { none, none, none } },
        { u"Hiking in the Alps"_s, { none, none, none } },
        { u"Hochzeit J\u00f6rg & Zo\u00eb"_s, { none, none, none } },
        { u"selection"_s, { none, none, none } },
        { u"Urlaub an der Ostsee"_s, { none, none, none } },
        { u"\u041f\u0430\u0441\u0445\u0430"_s, { none, none, none } },
    };
    const QList<FolderName> digits {
        { u"IMG_0123"_s, { none, none, none } },
        { u"100CANON"_s, { none, none, none } },
        { u"7 Zwerge"_s, { none, none, none } },
        { u"Trip 07-14"_s, { none, none, none } },
        { u"50. Geburtstag"_s, { none, none, none } },
        { u"1999"_s, { none, none, none } },
    };
    const QList<FolderName> years {
        { u"2019"_s, { year, year, year } },
        { u"2020 Familie"_s, { year, year, year } },
        { u"Summer 2019 trip"_s, { year, year, year } },
        { u"2019_07_14"_s, { year, year, year } },
    };
    const QList<FolderName> months {
        { u"07"_s, { month, month, month } },
        { u"12"_s, { month, month, month } },
        // In the C locale, the narrow names of days are numbers.
        { u"7"_s, { day, month, month } },
        { u"July"_s, { month, month, none } },
        { u"Juli"_s, { none, none, month } },
    };
    const QList<FolderName> projects {
        { u"Urlaub_vlp-Dateien"_s, { project, project, project } },
        { u"2019-07-14_vlp-Dateien"_s, { project, project, project } },
    };
    // clang-format on
    return {
        { "mixed", dated + localised + words + digits + years + months + projects },
        { "dated", dated },
        { "localised", localised },
        { "words", words },
        { "digits", digits },
        { "years", years },
        { "months", months },
        { "projects", projects },
    };
}

std::optional<Language> languageOf(const QLocale& locale)
{
    switch (locale.language()) {
    case QLocale::C:
        return C;
    case QLocale::English:
        return English;
    case QLocale::German:
        return German;
    default:
        return std::nullopt;
    }
}

// Days are read in the languages of both locales, months in that of the system, which was the first
// default locale of this process.
VLEventFolderTypeEnum expectedType(const FolderName& name, Language system, Language defaultOne)
{
    const VLEventFolderTypeEnum inDefault = name.types.at(defaultOne);
    return inDefault == VLEventFolderTypeEnum::Day ? inDefault : name.types.at(system);
}

QLocale otherThan(Language system)
{
    return system == German ? QLocale(QLocale::English, QLocale::UnitedStates)
                            : QLocale(QLocale::German, QLocale::Germany);
}

template <typename TypeOfName>
void run(benchmark::State& state, const QList<FolderName>& names, bool otherDefault,
         const TypeOfName& typeOfName)
{
    const std::optional<Language> system = languageOf(QLocale::system());
    if (!system) {
        state.SkipWithError("set LC_ALL to C, en_US.UTF-8 or de_DE.UTF-8");
        return;
    }
    QLocale::setDefault(otherDefault ? otherThan(*system) : QLocale::system());
    const Language defaultOne = *languageOf(QLocale());
    for (const FolderName& name : names) {
        if (typeOfName(name.name) != expectedType(name, *system, defaultOne)) {
            state.SkipWithError(("wrong type of " + name.name.toStdString()).c_str());
            break;
        }
    }
    qsizetype index = 0;
    for ([[maybe_unused]] const auto iteration : state) {
        benchmark::DoNotOptimize(typeOfName(names.at(index).name));
        if (++index == names.size())
            index = 0;
    }
    QLocale::setDefault(QLocale::system());
}

void registerClass(const NameClass& names, bool otherDefault, const QStringList& months)
{
    const std::string name = "names/" + names.name + (otherDefault ? "/other/" : "/system/");
    benchmark::RegisterBenchmark(
        (name + "library").c_str(), [names = names.names, otherDefault](benchmark::State& state) {
            const VLFolioEventClassifier classifier { QFileInfo() };
            run(state, names, otherDefault, [&classifier](const QString& folder) {
                return classifier.eventFolderType(folder).value();
            });
        });
    benchmark::RegisterBenchmark(
        (name + "plain").c_str(),
        [names = names.names, otherDefault, months](benchmark::State& state) {
            run(state, names, otherDefault, [&months](const QString& folder) {
                return LiteralRules::typeOfName(folder, LiteralRules::Locales::current(), months);
            });
        });
}

} // namespace

void registerNameBenchmarks()
{
    const QStringList months = LiteralRules::monthNames(QLocale());
    const QList<NameClass> classes = nameClasses();
    for (const NameClass& names : classes) {
        registerClass(names, false, months);
        registerClass(names, true, months);
    }
}
