#include "NameBenchmarks.h"
#include "RunBenchmarks.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <benchmark/benchmark.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QLoggingCategory>

#include <clocale>

using namespace Qt::StringLiterals;

// Qt reads the language of the system from the environment once. Each language therefore takes a
// run of its own:
//
//     LC_ALL=de_DE.UTF-8 vlfolio-benchmarks --benchmark_filter=names
int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    // Qt has set the C library's locale, but numbers in options and results need a decimal point.
    std::setlocale(LC_NUMERIC, "C");
    QLoggingCategory::setFilterRules(u"default.debug=false\nvl.folio.service.info=false"_s);
    // This makes the months those of the system locale, whatever is measured first.
    if (!VLFolioEventClassifier(QFileInfo()).matchesMonth(u"7"_s))
        return 1;

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    registerNameBenchmarks();
    registerRunBenchmarks();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
