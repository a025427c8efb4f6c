#include "LiteralRules.h"
#include "NamesUnderTest.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtTest/QTest>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

constexpr auto systemLocaleOption = "--system-locale-of-this-process";
constexpr auto allOption = "--all";

QList<QLocale> allLocales()
{
    return QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript,
                                    QLocale::AnyTerritory);
}

// What is said of a name, as one text for messages.
QString answers(bool date, bool month, bool year, bool project, VLEventFolderTypeEnum type)
{
    return u"date %1, month %2, year %3, project %4, type %5"_s.arg(date)
        .arg(month)
        .arg(year)
        .arg(project)
        .arg(qint32(type));
}

// How the library and the reference implementation answer for the locales of the process as they
// are.
class Comparison
{
public:
    explicit Comparison(const QStringList& months)
        : m_months(months)
    {
    }

    void compare(const QStringList& names)
    {
        const LiteralRules::Locales locales = LiteralRules::Locales::current();
        for (const QString& name : names) {
            const auto type = LiteralRules::typeOfName(name, locales, m_months);
            const bool date = type == VLEventFolderTypeEnum::Day
                || (type == VLEventFolderTypeEnum::ProjectFolder
                    && LiteralRules::matchesDate(name, locales));
            ++(date ? m_dayCount : m_otherCount);
            note(name,
                 answers(m_classifier.matchesDate(name), m_classifier.matchesMonth(name),
                         m_classifier.matchesYear(name), m_classifier.matchesProject(name),
                         m_classifier.eventFolderType(name).value()),
                 answers(date, LiteralRules::matchesMonth(name, m_months),
                         LiteralRules::matchesYear(name), LiteralRules::matchesProject(name),
                         type));
        }
    }

    // The first name that was answered differently, or an empty string.
    [[nodiscard]] QString difference() const { return m_difference; }
    [[nodiscard]] int dayCount() const { return m_dayCount; }
    [[nodiscard]] int otherCount() const { return m_otherCount; }

private:
    void note(const QString& name, const QString& answered, const QString& expected)
    {
        if (answered == expected || !m_difference.isEmpty())
            return;
        QDebug(&m_difference).nospace().noquote()
            << "default locale " << NamesUnderTest::fullName(QLocale()) << ", system locale "
            << NamesUnderTest::fullName(QLocale::system()) << ": " << answered << "; expected "
            << expected << "; for " << QDebug::toString(name.left(200));
    }

    VLFolioEventClassifier m_classifier { QFileInfo() };
    QStringList m_months;
    QString m_difference;
    int m_dayCount = 0;
    int m_otherCount = 0;
};

// What a process does whose environment names a system locale: compares with this as the default
// locale, as in most programs, and then with some others as the default.
int compareUnderSystemLocale(NamesUnderTest::Extent extent)
{
    const QLocale system = QLocale::system();
    Comparison comparison(LiteralRules::monthNames(QLocale()));
    comparison.compare(NamesUnderTest::ofLocale(system, extent));

    const QStringList names = NamesUnderTest::ofLocale(system, NamesUnderTest::Extent::Sample);
    const QList<QLocale> locales = allLocales();
    const qsizetype step = extent == NamesUnderTest::Extent::All ? 97 : 311;
    for (qsizetype index = system.language() % step; index < locales.size(); index += step) {
        QLocale::setDefault(locales.at(index));
        comparison.compare(names);
        comparison.compare(
            NamesUnderTest::ofLocale(locales.at(index), NamesUnderTest::Extent::Sample));
    }
    // Equal in all that it says, but no longer the system's.
    QLocale::setDefault(QLocale(system.language(), system.script(), system.territory()));
    comparison.compare(names);

    std::puts(qUtf8Printable(u"%1 %2 %3 %4"_s.arg(
        NamesUnderTest::fullName(system), QString::number(comparison.dayCount()),
        QString::number(comparison.otherCount()), comparison.difference())));
    return comparison.difference().isEmpty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

/// Compares the library with the reference implementation of its rules.
class tst_equivalence : public QObject
{
    Q_OBJECT

public:
    explicit tst_equivalence(NamesUnderTest::Extent extent)
        : m_extent(extent)
    {
    }

private Q_SLOTS:
    void initTestCase();
    void init() { QTest::failOnWarning(QRegularExpression(u".?"_s)); }
    void defaultLocale_data();
    void defaultLocale();
    void systemLocale_data();
    void systemLocale();

private:
    NamesUnderTest::Extent m_extent;
    QStringList m_months;
};

void tst_equivalence::initTestCase()
{
    // The months of a process are those of the first default locale that it asks for.
    const QLocale german(QLocale::German, QLocale::Germany);
    QLocale::setDefault(german);
    m_months = LiteralRules::monthNames(german);
    QVERIFY(VLFolioEventClassifier(QFileInfo()).matchesMonth(u"Juli"_s));
}

void tst_equivalence::defaultLocale_data()
{
    QTest::addColumn<QLocale>("locale");

    const QList<QLocale> locales = allLocales();
    QVERIFY(locales.size() > 500);
    for (const QLocale& locale : locales)
        QTest::newRow(qUtf8Printable(NamesUnderTest::fullName(locale))) << locale;
}

void tst_equivalence::defaultLocale()
{
    QFETCH(const QLocale, locale);

    QLocale::setDefault(locale);
    Comparison comparison(m_months);
    comparison.compare(NamesUnderTest::ofLocale(locale, m_extent));
    QVERIFY2(comparison.difference().isEmpty(), qUtf8Printable(comparison.difference()));
    QVERIFY(comparison.dayCount() > 10);
    QVERIFY(comparison.otherCount() > 10);
}

void tst_equivalence::systemLocale_data()
{
    QTest::addColumn<QString>("all");
    QTest::addColumn<QString>("time");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("systemName");

    QTest::newRow("dates_in_another_language_than_messages")
        << u""_s << u"fr_FR.UTF-8"_s << u"de_DE.UTF-8"_s << u"de_Latn_DE"_s;
    QTest::newRow("dates_of_no_language") << u""_s << u"C"_s << u"de_DE.UTF-8"_s << u"de_Latn_DE"_s;
    QTest::newRow("messages_of_no_language") << u""_s << u"ar_EG.UTF-8"_s << u"C"_s << u"C"_s;
    QTest::newRow("digits_beyond_the_basic_plane_in_dates_only")
        << u""_s << u"ff_Adlm_GN"_s << u"en_US.UTF-8"_s << u"en_Latn_US"_s;

    const QList<QLocale> locales = allLocales();
    const qsizetype step = m_extent == NamesUnderTest::Extent::All ? 1 : 13;
    for (qsizetype index = 0; index < locales.size(); index += step) {
        const QString name = NamesUnderTest::fullName(locales.at(index));
        QTest::newRow(qUtf8Printable(name)) << name << u""_s << u""_s << name;
    }
}

void tst_equivalence::systemLocale()
{
#if defined(Q_OS_MACOS)
    QSKIP("The language is a setting of macOS, which the environment does not change");
#endif
    QFETCH(const QString, all);
    QFETCH(const QString, time);
    QFETCH(const QString, language);
    QFETCH(const QString, systemName);

    // Qt reads the environment once in a process.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"LANGUAGE"_s, u""_s);
    environment.insert(u"LC_ALL"_s, all);
    environment.insert(u"LC_TIME"_s, time);
    environment.insert(u"LANG"_s, language);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QStringList arguments { QString::fromLatin1(systemLocaleOption) };
    if (m_extent == NamesUnderTest::Extent::All)
        arguments.append(QString::fromLatin1(allOption));
    process.start(QCoreApplication::applicationFilePath(), arguments);
    QVERIFY(process.waitForFinished(-1));

    const QString output = QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == EXIT_SUCCESS,
             qUtf8Printable(output));
    const QStringList words = output.split(u' ');
    QCOMPARE(words.size(), 3);
    QCOMPARE(words.at(0), systemName);
    QVERIFY(words.at(1).toInt() > 30);
    QVERIFY(words.at(2).toInt() > 30);
}

// Without an option a sample is compared, with --all everything.
int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments();
    const auto extent = arguments.removeAll(QString::fromLatin1(allOption)) > 0
        ? NamesUnderTest::Extent::All
        : NamesUnderTest::Extent::Sample;
    if (arguments.contains(QString::fromLatin1(systemLocaleOption)))
        return compareUnderSystemLocale(extent);
    tst_equivalence test(extent);
    return QTest::qExec(&test, arguments);
}

#include "tst_equivalence.moc"
