#include "MessageRecorder.h"
#include "OriginalFunction.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QFileInfo>
#include <QtTest/QTest>

#include <cstddef>
#include <cstdint>
#include <new>

using namespace Qt::StringLiterals;

namespace {

bool compileFails = false;
bool searchFails = false;
int compileCount = 0;

VLFolioEventClassifier& classifier()
{
    static VLFolioEventClassifier instance(QFileInfo(u"/pictures"_s));
    return instance;
}

} // namespace

// The functions that Qt compiles and searches with. The program comes first when Qt looks for them,
// and says for them that memory is short.
extern "C" {

void* pcre2_compile_16(const char16_t* pattern, std::size_t length, std::uint32_t options,
                       int* error, std::size_t* offset, void* context)
{
    static const auto function = original<decltype(&pcre2_compile_16)>("pcre2_compile_16");
    ++compileCount;
    if (!compileFails)
        return function(pattern, length, options, error, offset, context);
    constexpr int heapFailed = 121;
    *error = heapFailed;
    *offset = 0;
    return nullptr;
}

int pcre2_match_16(const void* code, const char16_t* subject, std::size_t length, std::size_t start,
                   std::uint32_t options, void* data, void* context)
{
    static const auto function = original<decltype(&pcre2_match_16)>("pcre2_match_16");
    constexpr int noMemory = -48;
    return searchFails ? noMemory : function(code, subject, length, start, options, data, context);
}

} // extern "C"

class tst_failing_expressions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void yearThatCannotBeCompiledIsTriedAgain();
    void datesThatCannotBeCompiledAreTriedAgain();
    void compiledOnceWhenThatWorked();
    void searchWithoutMemoryThrows_data();
    void searchWithoutMemoryThrows();
    void loneSurrogateIsNoLackOfMemory();
};

void tst_failing_expressions::initTestCase()
{
    static_cast<void>(QRegularExpression(u"a"_s).match(u"a"_s));
    if (compileCount == 0)
        QSKIP("This Qt brings the functions along");
}

void tst_failing_expressions::cleanup()
{
    compileFails = searchFails = false;
}

void tst_failing_expressions::yearThatCannotBeCompiledIsTriedAgain()
{
    compileFails = true;
    QVERIFY_THROWS_EXCEPTION(std::bad_alloc,
                             static_cast<void>(classifier().matchesYear(u"2019"_s)));
    compileFails = false;
    QVERIFY(classifier().matchesYear(u"2019"_s));
}

void tst_failing_expressions::datesThatCannotBeCompiledAreTriedAgain()
{
    {
        // Qt warns of a search with such an expression.
        const MessageRecorder recorder;
        compileFails = true;
        QVERIFY_THROWS_EXCEPTION(std::bad_alloc,
                                 static_cast<void>(classifier().matchesDate(u"99.99.99"_s)));
    }
    compileFails = false;
    QVERIFY(classifier().matchesDate(u"99.99.99"_s));
}

void tst_failing_expressions::compiledOnceWhenThatWorked()
{
    QVERIFY(classifier().matchesDate(u"99.99.99"_s));
    QVERIFY(classifier().matchesYear(u"2019"_s));
    const int before = compileCount;
    QVERIFY(classifier().matchesDate(u"98.99.99"_s));
    QVERIFY(classifier().matchesYear(u"2018"_s));
    QCOMPARE(compileCount, before);
}

void tst_failing_expressions::searchWithoutMemoryThrows_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("year") << u"2019"_s;
    QTest::newRow("year_in_text") << u"Summer 2019"_s;
    QTest::newRow("date") << u"99.99.99"_s;
    QTest::newRow("six_digits_and_no_date") << u"123456"_s;
}

void tst_failing_expressions::searchWithoutMemoryThrows()
{
    QFETCH(const QString, name);

    const auto type = classifier().eventFolderType(name);
    searchFails = true;
    QVERIFY_THROWS_EXCEPTION(std::bad_alloc, static_cast<void>(classifier().eventFolderType(name)));
    searchFails = false;
    QVERIFY(classifier().eventFolderType(name) == type);
}

void tst_failing_expressions::loneSurrogateIsNoLackOfMemory()
{
    searchFails = true;
    const QChar half(0xd83d);
    QVERIFY(!classifier().matchesYear(u"2019"_s + half));
    QVERIFY(!classifier().matchesDate(u"99.99.99"_s + half));
}

QTEST_GUILESS_MAIN(tst_failing_expressions)
#include "tst_failing_expressions.moc"
