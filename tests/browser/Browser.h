#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QJsonObject>
#include <QtCore/QJsonValue>
#include <QtCore/QProcess>
#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

/// Chromium without a window, with one page, steered through its own debugging protocol. What it
/// cannot do ends the test program.
class Browser
{
public:
    /// Path of the browser's program; empty where there is none.
    [[nodiscard]] static QString program();

    Browser();
    ~Browser();
    Q_DISABLE_COPY_MOVE(Browser)

    /// Shows the file \a path, and returns once it is loaded.
    void open(const QString& path);

    /// What the script \a expression comes to in the page.
    [[nodiscard]] QJsonValue evaluate(const QString& expression);

    /// The page in a window of this size, as a PNG file.
    [[nodiscard]] QByteArray picture(const QSize& size);

private:
    QJsonObject call(const QString& method, const QJsonObject& parameters = {});
    QJsonObject nextMessage();

    QTemporaryDir m_home;
    QProcess m_process;
    QByteArray m_received;
    QString m_page;
    int m_lastCall = 0;
};
