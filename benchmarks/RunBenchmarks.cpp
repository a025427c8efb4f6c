#include "RunBenchmarks.h"

#include "BareListings.h"
#include "Collection.h"
#include "LiteralRules.h"

#include <VLCore/VLPlatformIndependent.h>
#include <VLFolioEventClassifier/VLClassificationResultsRendererHTML.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <benchmark/benchmark.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <array>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

using Results = QList<VLEventFolderClassificationResult>;

class QuietPlatform : public VLPlatformIndependent
{
public:
    QuietPlatform() { setInstance(this); }
    ~QuietPlatform() override { setInstance(nullptr); }
    Q_DISABLE_COPY_MOVE(QuietPlatform)

    bool openFile(const QString& path, const QStringList& arguments,
                  const QString& application) override
    {
        Q_UNUSED(arguments)
        Q_UNUSED(application)
        openedFile = path;
        return true;
    }

    QString openedFile;
};

// A collection that exists as long as the process.
struct Made
{
    Made(const Collection::Shape& shape, int files)
        : parent(Collection::preferredDirectory() + u"/vlfolio-XXXXXX"_s)
        , root(parent.filePath(u"root"_s))
    {
        if (!parent.isValid() || !QDir().mkdir(root))
            qFatal("cannot make a directory for the collection");
        counts = Collection::make(shape, root, files);
    }

    // Returns a path outside the collection, where the report does not count as a file of the root.
    [[nodiscard]] QString sideReport() const { return parent.filePath(u"report.html"_s); }

    QTemporaryDir parent;
    QString root;
    Collection::Counts counts;
};

const Made& made(const Collection::Shape& shape, int files)
{
    static std::map<std::pair<std::string_view, int>, std::unique_ptr<Made>> collections;
    std::unique_ptr<Made>& collection = collections[{ shape.name, files }];
    if (!collection)
        collection = std::make_unique<Made>(shape, files);
    return *collection;
}

template <typename Folders, typename TypeOf>
bool areRight(const Folders& folders, const TypeOf& typeOf, const Collection::Counts& expected)
{
    std::map<VLEventFolderTypeEnum, int> found;
    for (const auto& folder : folders)
        ++found[typeOf(folder)];
    return folders.size() == expected.folders()
        && found[VLEventFolderTypeEnum::Root] == expected.root
        && found[VLEventFolderTypeEnum::Year] == expected.years
        && found[VLEventFolderTypeEnum::Month] == expected.months
        && found[VLEventFolderTypeEnum::Event] == expected.events
        && found[VLEventFolderTypeEnum::Day] == expected.days
        && found[VLEventFolderTypeEnum::Unknown] == expected.unknown;
}

bool areRight(const Results& results, const Collection::Counts& expected)
{
    const auto typeOf = [](const VLEventFolderClassificationResult& result) {
        return result.classification().value();
    };
    return areRight(results, typeOf, expected);
}

bool isReportRight(const QString& path, const Collection::Counts& expected)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray report = file.readAll();
    return report.count("<tr class=") == expected.folders() && report.endsWith("</html>\n");
}

Results walk(const QString& root)
{
    return VLFolioEventClassifier(QFileInfo(root))
        .eventFolderTypes(QFileInfo(root), VLEventFolderClassificationResult());
}

void reportPerFolder(benchmark::State& state, const Made& collection)
{
    state.counters["folders"] = collection.counts.folders();
    state.counters["perFolder"] = benchmark::Counter(collection.counts.folders(),
                                                     benchmark::Counter::kIsIterationInvariantRate
                                                         | benchmark::Counter::kInvert);
}

void measureFloor(benchmark::State& state, const Made& collection)
{
    const std::string root = QFile::encodeName(collection.root).toStdString();
    for ([[maybe_unused]] const auto iteration : state) {
        if (BareListings::twice(root).folders
            != static_cast<std::size_t>(collection.counts.folders())) {
            state.SkipWithError("wrong number of folders");
            break;
        }
    }
}

void measureWalk(benchmark::State& state, const Made& collection)
{
    Results results;
    for ([[maybe_unused]] const auto iteration : state)
        results = walk(collection.root);
    if (!areRight(results, collection.counts))
        state.SkipWithError("wrong results");
}

void measurePlainWalk(benchmark::State& state, const Made& collection)
{
    const QStringList months = LiteralRules::monthNames(QLocale());
    QList<LiteralRules::Walk::Folder> folders;
    for ([[maybe_unused]] const auto iteration : state) {
        const QFileInfo root(collection.root);
        folders = LiteralRules::Walk(root, months).folders(root, VLEventFolderTypeEnum::Unknown);
    }
    const auto typeOf = [](const LiteralRules::Walk::Folder& folder) { return folder.type; };
    if (!areRight(folders, typeOf, collection.counts))
        state.SkipWithError("wrong results");
}

void measureRender(benchmark::State& state, const Made& collection)
{
    const Results results = walk(collection.root);
    const int prefixLength = static_cast<int>(collection.root.size());
    const QFileInfo report(collection.sideReport());
    for ([[maybe_unused]] const auto iteration : state) {
        VLClassificationResultsRendererHTML renderer(results, prefixLength, { u"*.*"_s });
        renderer.renderToFile(report);
    }
    if (!isReportRight(report.filePath(), collection.counts))
        state.SkipWithError("wrong report");
}

void measureStart(benchmark::State& state, const Made& collection)
{
    QuietPlatform platform;
    for ([[maybe_unused]] const auto iteration : state)
        VLFolioEventClassifier(QFileInfo(collection.root)).start();
    if (!isReportRight(platform.openedFile, collection.counts))
        state.SkipWithError("wrong report");
    QFile::remove(platform.openedFile);
}

using Measure = void (*)(benchmark::State&, const Made&);

struct Step
{
    const char* name;
    Measure measure;
};

constexpr std::array allSteps { Step { "floor", measureFloor }, Step { "walk", measureWalk },
                                Step { "plain", measurePlainWalk },
                                Step { "render", measureRender }, Step { "start", measureStart } };

// The reference implementation would take too long on the deepest chain that there can be.
bool isWorthwhile(const Collection::Shape& shape, const Step& step)
{
    return shape.name != "deep" || step.measure != measurePlainWalk;
}

void registerCollection(std::string_view shapeName, int files)
{
    const Collection::Shape& shape = *Collection::shapeNamed(shapeName);
    for (const Step& step : allSteps) {
        if (!isWorthwhile(shape, step))
            continue;
        const std::string name =
            std::string(shape.name) + '/' + std::to_string(files) + '/' + step.name;
        benchmark::RegisterBenchmark(name.c_str(),
                                     [&shape, files, step](benchmark::State& state) {
                                         const Made& collection = made(shape, files);
                                         step.measure(state, collection);
                                         reportPerFolder(state, collection);
                                     })
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    }
}

} // namespace

void registerRunBenchmarks()
{
    constexpr std::array<std::pair<std::string_view, int>, 11> collections { {
        { "typical", 0 },
        { "typical", 20 },
        { "large", 0 },
        { "small", 0 },
        { "small", 20 },
        { "small", 1000 },
        { "flat", 0 },
        { "flat", 20 },
        { "chain", 0 },
        { "deep", 0 },
        { "deep", 20 },
    } };
    for (const auto& [shape, files] : collections)
        registerCollection(shape, files);
}
