// Folder names into all matchers, compared with the literal rules. The first byte of an input
// chooses the default locale, the rest is the name: UTF-8, or behind a 0 UTF-16 as it stands.

#include "Fuzzing.h"
#include "LiteralRules.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <array>
#include <cstring>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array<const char*, 10> localeNames {
    "en_US", "de_DE", "C", "ar_EG", "fa_IR", "ff_Adlm_GN", "ja_JP", "hu_HU", "zh_TW", "en_ZA",
};

struct Months
{
    QStringList names;
};

// The months of a process are those of the first default locale that it asks for.
const Months& months()
{
    static const Months of { LiteralRules::monthNames(QLocale(u"de_DE"_s)) };
    return of;
}

QString nameIn(const std::uint8_t* data, std::size_t size)
{
    if (size == 0 || data[0] != 0)
        return QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    std::vector<char16_t> units((size - 1) / 2);
    if (!units.empty())
        std::memcpy(units.data(), data + 1, units.size() * sizeof(char16_t));
    return QString::fromUtf16(units.data(), qsizetype(units.size()));
}

} // namespace

int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    Q_UNUSED(argc)
    Q_UNUSED(argv)
    QLocale::setDefault(QLocale(u"de_DE"_s));
    const bool month = VLFolioEventClassifier(QFileInfo()).matchesMonth(u"Juli"_s);
    Fuzzing::compare("matchesMonth", month, true, u"Juli"_s);
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    QLocale::setDefault(QLocale(QString::fromLatin1(localeNames.at(data[0] % localeNames.size()))));
    const QString name = nameIn(data + 1, size - 1);
    const LiteralRules::Locales locales = LiteralRules::Locales::current();
    const VLFolioEventClassifier classifier { QFileInfo() };

    Fuzzing::compare("matchesProject", classifier.matchesProject(name),
                     LiteralRules::matchesProject(name), name);
    Fuzzing::compare("matchesApplePhotos", classifier.matchesApplePhotos(name),
                     name.left(8) == "photokit"_L1, name);
    Fuzzing::compare("matchesDate", classifier.matchesDate(name),
                     LiteralRules::matchesDate(name, locales), name);
    Fuzzing::compare("matchesMonth", classifier.matchesMonth(name),
                     LiteralRules::matchesMonth(name, months().names), name);
    Fuzzing::compare("matchesYear", classifier.matchesYear(name), LiteralRules::matchesYear(name),
                     name);
    Fuzzing::compare("eventFolderType", int(classifier.eventFolderType(name).value()),
                     int(LiteralRules::typeOfName(name, locales, months().names)), name);
    return 0;
}
