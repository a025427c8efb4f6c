#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/qlogging.h>

#include <functional>
#include <utility>

/// Keeps every message of Qt's log, with its context, for as long as it lives. One at a time.
class MessageRecorder
{
public:
    struct Message
    {
        QtMsgType type;
        QByteArray category;
        QByteArray file;
        int line;
        QByteArray function;
        QString text;
    };

    /// \a observer, if any, is called with each message as it comes.
    explicit MessageRecorder(std::function<void(const Message&)> observer = {})
        : m_previous(qInstallMessageHandler(&MessageRecorder::record))
    {
        s_messages.clear();
        s_observer = std::move(observer);
    }
    ~MessageRecorder()
    {
        qInstallMessageHandler(m_previous);
        s_observer = {};
    }
    Q_DISABLE_COPY_MOVE(MessageRecorder)

    [[nodiscard]] QList<Message> messages() const { return s_messages; }
    [[nodiscard]] QStringList texts() const
    {
        QStringList all;
        for (const Message& message : std::as_const(s_messages))
            all.append(message.text);
        return all;
    }

private:
    static void record(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        s_messages.append(
            { type, context.category, context.file, context.line, context.function, text });
        if (s_observer)
            s_observer(s_messages.constLast());
    }

    static inline QList<Message> s_messages; // clazy:exclude=non-pod-global-static
    static inline std::function<void(const Message&)> s_observer;
    QtMessageHandler m_previous;
};
