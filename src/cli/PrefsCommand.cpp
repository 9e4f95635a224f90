#include "cli/PrefsCommand.h"

#include "cli/Session.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

const QString watchFolderKey = u"watchFolder"_s;
const QString whenDoneKey = u"whenQueueIsDone"_s;

QStringList keysOf(const KXPreferences &preferences)
{
    return preferences.preferencePanelPropertiesList() + QStringList{watchFolderKey};
}

QVariant valueOf(const KXPreferences &preferences, const QString &key)
{
    return key == watchFolderKey ? QVariant(preferences.watchFolderPath())
                                 : preferences.preferencePanelDictionary().value(key);
}

bool isFlag(const QString &key)
{
    return key.endsWith(u"Flag"_s);
}

void show(Console &console, const KXPreferences &preferences, const QString &key)
{
    const QVariant value = valueOf(preferences, key);
    console.object({{u"key"_s, key}, {u"value"_s, QJsonValue::fromVariant(value)}});
    console.result(key + u" = "_s + value.toString());
}

/// The value as it is stored; an invalid one with a sentence when it does not fit the key.
QVariant readValue(const QString &key, const QString &text, QString &error)
{
    if (isFlag(key)) {
        if (text == u"true"_s || text == u"false"_s)
            return text == u"true"_s;
        error = u"%1 takes true or false, not \"%2\"."_s.arg(key, text);
        return {};
    }
    if (key == whenDoneKey) {
        if (QStringList{u"nothing"_s, u"sleep"_s, u"quit"_s}.contains(text))
            return text;
        error = u"%1 takes nothing, sleep or quit, not \"%2\"."_s.arg(key, text);
        return {};
    }
    if (text.isEmpty())
        return u""_s;
    const QString path = absolutePath(text);
    const QFileInfo info(path);
    const bool isThere = key == u"lintwickPath"_s ? info.exists() : info.isDir();
    if (!isThere)
        error = u"%1 does not exist, so %2 was left as it is."_s.arg(path, key);
    return path;
}

} // namespace

ExitStatus PrefsCommand::execute(Session &session) const
{
    const QStringList words = session.line().arguments();
    const QString verb = words.value(0);
    if (verb == u"list"_s && words.size() == 1)
        return list(session);
    if (verb == u"get"_s && words.size() == 2)
        return get(session, words.at(1));
    if (verb == u"set"_s && words.size() == 3)
        return set(session, words.at(1), words.at(2));
    return session.wrongUsage(u"Usage: tessaray-cli prefs "_s + arguments());
}

ExitStatus PrefsCommand::list(Session &session) const
{
    const KXPreferences &preferences = session.program().preferences();
    for (const QString &key : keysOf(preferences))
        show(session.console(), preferences, key);
    return ExitStatus::AllWell;
}

ExitStatus PrefsCommand::get(Session &session, const QString &key) const
{
    const KXPreferences &preferences = session.program().preferences();
    if (!keysOf(preferences).contains(key))
        return session.wrongUsage(u"There is no key \"%1\"."_s.arg(key));
    const QVariant value = valueOf(preferences, key);
    session.console().object({{u"key"_s, key}, {u"value"_s, QJsonValue::fromVariant(value)}});
    session.console().result(value.toString());
    return ExitStatus::AllWell;
}

ExitStatus PrefsCommand::set(Session &session, const QString &key, const QString &value) const
{
    KXPreferences &preferences = session.program().preferences();
    if (!keysOf(preferences).contains(key))
        return session.wrongUsage(u"There is no key \"%1\"."_s.arg(key));
    QString error;
    const QVariant read = readValue(key, value, error);
    if (!error.isNull())
        return session.wrongUsage(error);
    if (key == watchFolderKey) {
        preferences.setWatchFolderPath(read.toString());
    } else {
        QVariantMap panel = preferences.preferencePanelDictionary();
        panel.insert(key, read);
        preferences.setPreferencePanelDictionary(panel);
    }
    const QString problem = preferences.savePreferencesToDefaults();
    if (!problem.isNull())
        return session.failed(problem);
    show(session.console(), preferences, key);
    return ExitStatus::AllWell;
}

} // namespace cli
