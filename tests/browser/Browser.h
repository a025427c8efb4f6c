#pragma once

#include "RawDirectory.h"

#include <QtCore/QByteArray>
#include <QtCore/QJsonObject>
#include <QtCore/QJsonValue>
#include <QtCore/QProcess>
#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

/// What the program that is tested prints, run with \a arguments in the locale C.UTF-8. Ends the
/// test program when it fails.
[[nodiscard]] QByteArray outputOfProgram(const QStringList& arguments);

/// Makes the sample collection in \a tree, with the name "Pictures", and returns its path.
[[nodiscard]] QString makeSample(const RawDirectory& tree);

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

    /// What the script \a expression comes to in the page; a promise, once it is settled.
    QJsonValue evaluate(const QString& expression);

    /// Shows pages as on a screen in that colour scheme, "light" or "dark", or as on paper.
    void setMedia(const QString& colourScheme, bool onPaper = false);

    /// Writes the page in a window of this size to the PNG file \a path. Returns false if it cannot
    /// be written or has another size.
    [[nodiscard]] bool savePicture(const QString& path, const QSize& size);

private:
    QJsonObject call(const QString& method, const QJsonObject& parameters = {});
    QJsonObject nextMessage();

    QTemporaryDir m_home;
    QProcess m_process;
    QByteArray m_received;
    QString m_page;
    int m_lastCall = 0;
};
