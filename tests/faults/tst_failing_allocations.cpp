#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <algorithm>
#include <array>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

// Callers that stand next to each other, the inner one first.
struct Callers
{
    QLatin1StringView inner;
    QLatin1StringView outer;
};

// Where Qt 6.4.2 and 6.8.2 end the process for want of memory, and the library needs that call.
constexpr std::array deathsInQt {
    // Does not check what malloc() returns when it makes room for a connection.
    Callers { "QObject::connect("_L1, "QTextStream::QTextStream("_L1 },
    // The same connection, half made, is followed when the file is closed.
    Callers { "QIODevice::close("_L1, "QFileDevice::close("_L1 },
    // QHash makes room in a function that is noexcept; only the first use of the names inserts.
    Callers { "VLEnumToStringTable<VLEventFolderTypeEnum>::insert("_L1,
              "VLEventFolderType::fillTable("_L1 },
    // The registry of categories is such a hash; only the first message registers.
    Callers { "__cxa_throw"_L1, "QLoggingCategory::init("_L1 },
    // A list made of an initializer list is not checked; once in a process.
    Callers { "QGregorianCalendar::nameList("_L1, "QCalendar::QCalendar("_L1 },
    // The C library gives up when a thread cannot have a destructor; once in a thread.
    Callers { "abort"_L1, "__libc_fatal"_L1 },
    Callers { "abort"_L1, "__cxa_thread_atexit_impl"_L1 },
};

#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)

// Where Qt 6.8.2 forgets what it holds when an exception passes.
constexpr std::array leaksInQt {
    // What the search works with.
    Callers { "QArrayData::allocate("_L1, "QRegularExpression::match("_L1 },
};

// Where a folder without memory to read it passes for one that cannot be read.
constexpr std::array shortAnswersOfQt {
    Callers { "malloc"_L1, "QDirListing::begin("_L1 },
};

#else

// Where Qt 6.4.2 forgets what it holds when an exception passes.
constexpr std::array leaksInQt {
    // The stream of the directory, with its descriptor.
    Callers { "QArrayData::allocate("_L1, "QDirIterator::QDirIterator("_L1 },
    Callers { "QByteArray::append("_L1, "QDirIterator::QDirIterator("_L1 },
    Callers { "malloc"_L1, "QDirIterator::QDirIterator("_L1 },
    // What the search works with.
    Callers { "QArrayData::allocate("_L1, "QRegularExpression::match("_L1 },
    // The pattern of messages, at the first message.
    Callers { "operator new"_L1, "qFormatLogMessage("_L1 },
    Callers { "QString::toLatin1_helper("_L1, "qFormatLogMessage("_L1 },
};

// Where a folder without memory to read it passes for one that cannot be read.
constexpr std::array shortAnswersOfQt {
    Callers { "malloc"_L1, "QDirIterator::QDirIterator("_L1 },
};

#endif

template <typename Known>
bool isKnown(const Known& known, const QString& where)
{
    const QStringList callers = where.split(u" < "_s);
    return std::any_of(known.cbegin(), known.cend(), [&callers](const Callers& pair) {
        for (qsizetype i = 1; i < callers.size(); ++i) {
            if (callers.at(i - 1).startsWith(pair.inner) && callers.at(i).startsWith(pair.outer))
                return true;
        }
        return false;
    });
}

// One attempt, as the program under test tells of it.
struct Attempt
{
    explicit Attempt(const QString& line)
        : text(line)
        , what(line.section(u" at "_s, 0, 0).split(u' '))
        , where(line.section(u" at "_s, 1))
    {
    }

    [[nodiscard]] QString outcome() const { return what.value(1); }
    [[nodiscard]] qsizetype number(const QString& name) const
    {
        const auto note = std::find_if(what.cbegin(), what.cend(), [&name](const QString& word) {
            return word.startsWith(name + u'=');
        });
        return note == what.cend() ? 0 : note->section(u'=', 1).toLongLong();
    }

    QString text;
    QStringList what;
    QString where;
};

// What is wrong with the attempt, or an empty string. \a blocks are those that remain from a
// call in which nothing fails.
QString problem(const Attempt& attempt, qsizetype blocks)
{
    static const QStringList outcomes { u"bad_alloc"_s, u"completed"_s, u"short"_s, u"died"_s };
    if (!outcomes.contains(attempt.outcome()))
        return u"no such outcome"_s;
    if (attempt.outcome() == u"died"_s)
        return isKnown(deathsInQt, attempt.where) ? QString() : u"the process ended"_s;
    if (attempt.outcome() == u"short"_s && !isKnown(shortAnswersOfQt, attempt.where))
        return u"the answer is not complete"_s;
    // The two numbers are the only notes when nothing has changed.
    if (attempt.what.size() != 4)
        return u"something has changed"_s;
    const bool leaks = attempt.number(u"blocks"_s) > blocks || attempt.number(u"descriptors"_s) > 0;
    return leaks && !isKnown(leaksInQt, attempt.where) ? u"something leaks"_s : QString();
}

bool allAttempts = false;

} // namespace

class tst_failing_allocations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { unlink(m_undecodable.constData()); }
    void attempts_data();
    void attempts();

private:
    [[nodiscard]] std::vector<Attempt> run(const QStringList& arguments) const;

    QTemporaryDir m_directory;
    QString m_root;
    QByteArray m_undecodable;
};

void tst_failing_allocations::initTestCase()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
    m_root = QFileInfo(m_directory.path()).canonicalFilePath() + u"/pics"_s;
    const QStringList folders {
        u"14 Jul 2019"_s,       u"2019/05/05"_s,       u"2019/05/14.07.2019"_s,
        u"2019/2020"_s,         u"2019/Sommer/pics"_s, u"2019/Sommer/2019-07-14"_s,
        u"Album_vlp-Dateien"_s, u"Januar"_s,           u"Montag/14.07.19"_s,
        u"Urlaub/Monday"_s,
    };
    for (const QString& folder : folders)
        QVERIFY(QDir().mkpath(m_root + u'/' + folder));
    QVERIFY(QFile::link(u"Urlaub"_s, m_root + u"/Link"_s));
    // Hidden, and so not counted, but it ends the listings of some versions of Qt.
    m_undecodable = QFile::encodeName(m_root) + "/2019/.\xff";
    const int descriptor = open(m_undecodable.constData(), O_CREAT | O_WRONLY, S_IRUSR | S_IWUSR);
    QVERIFY(descriptor >= 0 && close(descriptor) == 0);
    for (const auto name : { "/b.jpg"_L1, "/2019/a.jpg"_L1 }) {
        QFile picture(m_root + name);
        QVERIFY(picture.open(QIODevice::WriteOnly));
    }
}

void tst_failing_allocations::attempts_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("temperature");
    QTest::addColumn<QString>("extent");
    // How many allocations the call makes at the least, with Qt 6.4 and with Qt 6.8.

    const QString walk = u"walk"_s;
    const QString listed = u"listed"_s;
    const QString run = u"run"_s;
    const QString warm = u"warm"_s;
    const QString cold = u"cold"_s;
    const QString once = u"once"_s;
    const QString onwards = u"onwards"_s;
    QTest::newRow("walk_one_failure") << walk << warm << once;
    QTest::newRow("walk_all_later_ones_fail") << walk << warm << onwards;
    QTest::newRow("first_walk_one_failure") << walk << cold << once;
    QTest::newRow("first_walk_all_later_ones_fail") << walk << cold << onwards;
    QTest::newRow("own_listing_one_failure") << listed << warm << once;
    QTest::newRow("own_listing_all_later_ones_fail") << listed << warm << onwards;
    QTest::newRow("run_one_failure") << run << warm << once;
    QTest::newRow("run_all_later_ones_fail") << run << warm << onwards;
    QTest::newRow("first_run_one_failure") << run << cold << once;
    QTest::newRow("first_run_all_later_ones_fail") << run << cold << onwards;
}

std::vector<Attempt> tst_failing_allocations::run(const QStringList& arguments) const
{
    QProcess subject;
    subject.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    subject.start(QStringLiteral(VLFOLIO_ALLOCATION_SUBJECT), QStringList { m_root } + arguments);
    constexpr int mostMilliseconds = 280'000;
    if (!subject.waitForFinished(mostMilliseconds) || subject.exitCode() != 0)
        return {};
    std::vector<Attempt> attempts;
    const QStringList lines =
        QString::fromUtf8(subject.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    for (const QString& line : lines)
        attempts.emplace_back(line);
    return attempts;
}

void tst_failing_allocations::attempts()
{
    QFETCH(const QString, call);
    QFETCH(const QString, temperature);
    QFETCH(const QString, extent);
    // Two primes, so that the short form does not see the same allocation of every folder.
    const QString step = allAttempts ? u"1"_s : temperature == u"cold"_s ? u"41"_s : u"29"_s;

    QFile::remove(m_root + u"/vela.classification.results.html"_s);
    const std::vector<Attempt> attempts = run({ call, temperature, extent, u"1"_s, step });
    QVERIFY(!attempts.empty());
    const Attempt& last = attempts.back();
    QCOMPARE(last.outcome(), u"untouched"_s);
    const qsizetype blocks = last.number(u"blocks"_s);
    if (temperature == u"warm"_s)
        QCOMPARE(blocks, 0);

    qsizetype died = 0;
    for (auto attempt = attempts.cbegin(); attempt + 1 != attempts.cend(); ++attempt) {
        const QString found = problem(*attempt, blocks);
        QVERIFY2(found.isEmpty(), qPrintable(found + u": "_s + attempt->text));
        died += attempt->outcome() == u"died"_s ? 1 : 0;
    }
    qInfo("%zu allocations failed, %lld of them ended the process within Qt", attempts.size() - 1,
          static_cast<long long>(died));
}

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments();
    allAttempts = arguments.removeAll(u"--all"_s) > 0;
    tst_failing_allocations test;
    return QTest::qExec(&test, arguments);
}

#include "tst_failing_allocations.moc"
