#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariant>

#include <atomic>
#include <memory>

namespace platform {
class AlertPresenter;
struct Alert;
using AlertPointer = std::shared_ptr<const Alert>;
} // namespace platform

namespace tools {
class Literal;
class OptionItem;
class ToolPlaces;
enum class Waiting;
using OptionList = QList<OptionItem>;
using StopFlag = std::shared_ptr<std::atomic_bool>;
} // namespace tools

/// The common base of the model and controller classes, by name and operations: each does its work in a piece
/// of its own (ShellRunner, Processes, ToolPlaces, Languages, Times, Values). It owns nothing but its name;
/// places and presenter belong to the program and may be absent in records that run no tool. It never
/// decides what a tool's answer means.
class KXHelpers : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QStringList languageList READ languageList CONSTANT)
    Q_PROPERTY(QStringList languageShortList READ languageShortList WRITE setLanguageShortList)
    Q_PROPERTY(QString appName READ appName WRITE setAppName)

public:
    explicit KXHelpers(const tools::ToolPlaces *places = nullptr,
                       platform::AlertPresenter *presenter = nullptr);

    QString appName() const { return m_appName; }
    void setAppName(const QString &name) { m_appName = name; }
    const QStringList &languageList() const;
    /// Empty unless it is set.
    QStringList languageShortList() const { return m_languageShortList; }
    void setLanguageShortList(const QStringList &names) { m_languageShortList = names; }
    const QList<QStringList> &languageArrayMatrix() const;

    // Running. Both answer standard output after success, else standard error, without one trailing
    // line feed; a null text when that is neither UTF-8 nor ASCII. They return when the shell ends.
    QString doShellScriptForWithOptions(const QUrl &tool, const tools::OptionList &options) const;
    QString doUnixCommandWithOptions(tools::Literal command, const tools::OptionList &options) const;
    /// The location of a tool or archive by name; no check that it is there.
    QUrl urlOfApp(const QString &name) const;
    /// How doShellScriptForWithOptions() waits on the main thread; by default with an event loop.
    void setWaiting(tools::Waiting waiting) { m_waiting = waiting; }
    /// Another thread can end the waits of this object by it. May be null.
    void setStopFlag(const tools::StopFlag &flag) { m_stop = flag; }

    static QString doubleQuotedFormOf(const QString &text);
    static QString singleQuotedFormOf(const QString &text);

    /// False for texts that are no process id, and for zombies.
    bool processIsRunningWithPID(const QString &pid) const;
    /// Kills at once; false and nothing done when the id is no whole number or 0.
    enum class Wait { No, UntilTerminated };
    bool terminatePIDWaitUntilTerminated(const QString &pid, Wait wait) const;
    /// Sends "stop" or "cont" to a background tool.
    void suspendPID(const QString &pid) const;
    void resumePID(const QString &pid) const;

    static bool fileExistsAtURL(const QUrl &location);
    static bool directoryPathExistsFor(const QString &path);
    static bool directoryPathIsNotEmptyFor(const QString &path);
    /// True for what is absent or empty: no value, an empty text, list or dictionary, and a file
    /// location without a path. A number is never empty.
    static bool isEmpty(const QVariant &value);
    static bool theStringContainsString(const QVariant &text, const QVariant &part);
    /// Lax on purpose: "12abc" counts, "abc" does not.
    static bool isStringInteger(const QString &text);

    // Languages: whole texts, case-sensitive, against every column; the first row wins.
    static QString language2CodeFor(const QString &nameOrCode);
    static QString language3CodeFor(const QString &nameOrCode);
    static QString languageForCode3(const QString &nameOrCode);
    static QString standardizedLanguage3CodeFor(const QString &code);

    /// Whole seconds of an H:M:S text (the fraction is dropped); 0 for anything but three pieces.
    static qint64 convertToTimeInSecondsFrom(const QString &time);

    void openAlertSheet(const platform::AlertPointer &alert) const;
    void alertTimedOut(const platform::AlertPointer &alert) const;

    // Empty on purpose: callers log freely, nothing is written. Virtual so that a test can listen.
    virtual void logString(const QString &text) const;
    virtual void logObjectWithString(const QVariant &object, const QString &label) const;
    virtual void logIntegerWithString(qint64 number, const QString &label) const;

protected:
    const tools::ToolPlaces *places() const { return m_places; }
    platform::AlertPresenter *presenter() const { return m_presenter; }
    tools::Waiting waiting() const { return m_waiting; }
    const tools::StopFlag &stopFlag() const { return m_stop; }
    /// Whether the stop flag is set: what a run answered then is no answer.
    bool isStopped() const { return m_stop && *m_stop; }

private:
    QString m_appName = QStringLiteral("Tessaray");
    QStringList m_languageShortList;
    const tools::ToolPlaces *m_places;
    platform::AlertPresenter *m_presenter;
    tools::StopFlag m_stop;
    tools::Waiting m_waiting;
};
