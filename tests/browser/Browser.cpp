#include "Browser.h"

#include "ReportText.h"

#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QStandardPaths>
#include <QtCore/QUrl>
#include <QtCore/QtEndian>

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 60'000;

// The browser listens on descriptor 3 and answers on descriptor 4.
constexpr auto startScript = R"(exec "$0" "$@" 3<&0 4>&1 </dev/null >/dev/null)";

QStringList arguments(const QString& home)
{
    return {
        u"--headless"_s,
        u"--remote-debugging-pipe"_s,
        u"--user-data-dir="_s + home,
        // Root has no sandbox, nor have most containers. Only files of the test's own are opened.
        u"--no-sandbox"_s,
        u"--disable-gpu"_s,
        u"--disable-dev-shm-usage"_s,
        // Nothing is asked of the network.
        u"--disable-quic"_s,
        u"--disable-background-networking"_s,
        u"--disable-component-update"_s,
        u"--disable-sync"_s,
        u"--no-first-run"_s,
        // A page that nobody looks at would wake its timers once a minute.
        u"--disable-background-timer-throttling"_s,
        u"--disable-renderer-backgrounding"_s,
        u"--disable-backgrounding-occluded-windows"_s,
        u"--hide-scrollbars"_s,
    };
}

} // namespace

QByteArray outputOfProgram(const QStringList& arguments)
{
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral(VLFOLIO_PROGRAM), arguments);
    if (!program.waitForFinished(patience) || program.exitCode() != 0)
        qFatal("The program fails: %s", program.readAllStandardError().constData());
    return program.readAllStandardOutput();
}

QString makeSample(const RawDirectory& tree)
{
    QString sample = tree.path("Pictures");
    if (QProcess::execute(QStringLiteral(VLFOLIO_MAKE_SAMPLE), { sample }) != 0)
        qFatal("The sample cannot be made");
    return sample;
}

QString Browser::program()
{
    const QString path = QStandardPaths::findExecutable(u"chromium"_s);
    // A snap sees neither hidden nor temporary files.
    return QFileInfo(path).canonicalFilePath().endsWith("/snap"_L1) ? QString() : path;
}

Browser::Browser()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // Nothing of the user's own settings is read or changed.
    for (const auto* const name : { "HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME" })
        environment.insert(QString::fromLatin1(name), m_home.path());
    m_process.setProcessEnvironment(environment);
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_process.start(u"/bin/sh"_s,
                    QStringList { u"-c"_s, QString::fromLatin1(startScript), program() }
                        + arguments(m_home.path()));
    const QString target =
        call(u"Target.createTarget"_s, { { u"url"_s, u"about:blank"_s } })[u"targetId"].toString();
    m_page = call(u"Target.attachToTarget"_s,
                  { { u"targetId"_s, target }, { u"flatten"_s, true } })[u"sessionId"]
                 .toString();
}

Browser::~Browser()
{
    m_page.clear();
    call(u"Browser.close"_s);
    if (!m_process.waitForFinished(patience))
        m_process.kill();
}

void Browser::open(const QString& path)
{
    const QString url = QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded);
    const QJsonObject result = call(u"Page.navigate"_s, { { u"url"_s, url } });
    if (result.contains(u"errorText"))
        qFatal("%s", qPrintable(result[u"errorText"].toString()));
    evaluate(u"new Promise(done => document.readyState === 'complete'"
             " ? done(true) : addEventListener('load', () => done(true)))"_s);
}

QJsonValue Browser::evaluate(const QString& expression)
{
    const QJsonObject result = call(u"Runtime.evaluate"_s,
                                    { { u"expression"_s, expression },
                                      { u"returnByValue"_s, true },
                                      { u"awaitPromise"_s, true } });
    if (result.contains(u"exceptionDetails"))
        qFatal("%s", QJsonDocument(result).toJson().constData());
    return result[u"result"][u"value"];
}

void Browser::setMedia(const QString& colourScheme, bool onPaper)
{
    const QJsonObject scheme { { u"name"_s, u"prefers-color-scheme"_s },
                               { u"value"_s, colourScheme } };
    call(u"Emulation.setEmulatedMedia"_s,
         { { u"media"_s, onPaper ? u"print"_s : QString() },
           { u"features"_s, QJsonArray { scheme } } });
}

bool Browser::savePicture(const QString& path, const QSize& size)
{
    call(u"Emulation.setDeviceMetricsOverride"_s,
         { { u"width"_s, size.width() },
           { u"height"_s, size.height() },
           { u"deviceScaleFactor"_s, 1 },
           { u"mobile"_s, false } });
    // What has come into sight is drawn with the next frame.
    evaluate(u"new Promise(done => requestAnimationFrame(() => requestAnimationFrame("
             "() => done(true))))"_s);
    const QJsonObject result = call(u"Page.captureScreenshot"_s);
    call(u"Emulation.clearDeviceMetricsOverride"_s);
    const QByteArray picture = QByteArray::fromBase64(result[u"data"].toString().toLatin1());
    // The width and the height stand behind the signature and the name of the first chunk.
    const QByteArray start = "\x89PNG\r\n\x1a\n\0\0\0\rIHDR"_ba;
    return ReportText::writeFile(path, picture) && picture.startsWith(start)
        && qFromBigEndian<qint32>(picture.constData() + start.size()) == size.width()
        && qFromBigEndian<qint32>(picture.constData() + start.size() + 4) == size.height();
}

QJsonObject Browser::call(const QString& method, const QJsonObject& parameters)
{
    const int number = ++m_lastCall;
    QJsonObject message { { u"id"_s, number },
                          { u"method"_s, method },
                          { u"params"_s, parameters } };
    if (!m_page.isEmpty())
        message[u"sessionId"_s] = m_page;
    m_process.write(QJsonDocument(message).toJson(QJsonDocument::Compact) + '\0');
    QJsonObject answer;
    while (answer[u"id"].toInt() != number)
        answer = nextMessage();
    if (answer.contains(u"error"))
        qFatal("%s: %s", qPrintable(method), qPrintable(answer[u"error"][u"message"].toString()));
    return answer[u"result"].toObject();
}

QJsonObject Browser::nextMessage()
{
    while (!m_received.contains('\0')) {
        if (m_process.bytesAvailable() == 0 && !m_process.waitForReadyRead(patience))
            qFatal("The browser does not answer: %s", qPrintable(m_process.errorString()));
        m_received += m_process.readAllStandardOutput();
    }
    const qsizetype end = m_received.indexOf('\0');
    QJsonObject message = QJsonDocument::fromJson(m_received.first(end)).object();
    m_received.remove(0, end + 1);
    return message;
}
