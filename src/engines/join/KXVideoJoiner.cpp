#include "engines/join/KXVideoJoiner.h"

#include "engines/OutputBase.h"
#include "engines/UpdateNames.h"
#include "engines/ffmpeg/FfmpegOutcome.h"
#include "engines/join/JoinArguments.h"
#include "engines/join/JoinCheck.h"
#include "engines/join/JoinFates.h"
#include "engines/join/JoinFit.h"
#include "engines/mkvtoolnix/MkvArguments.h"
#include "prefs/KXPreferences.h"
#include "prefs/SaveFolder.h"
#include "selection/Refusals.h"
#include "steps/OutputGuard.h"
#include "steps/ToolLog.h"
#include "tools/Numbers.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 wholePercent = 100;

} // namespace

KXVideoJoiner::KXVideoJoiner(const steps::ConverterContext &context)
    : KXConverter(context)
{
    setConverterName(u"videoJoiner"_s);
    setIsTemporaryOutput(false);
    setMonitorCounter(0);
}

QStringList KXVideoJoiner::findMismatchedProperetiesFor(const QList<QUrl> &files)
{
    return engines::mismatchedProperties(
        engines::filmsIn(engines::lookedAt(files, appPreferences(), context().toolsAtOnce)));
}

bool KXVideoJoiner::prepareForSelectionWithSaveDirectoryURL(const SelectionPointer &selection,
                                                            const QUrl &folder)
{
    setConverterSelection(selection);
    const QList<QUrl> files = selection->editFilesURLsList();
    if (files.isEmpty()) {
        refuse(selection::refusalToJoin(0));
        return false;
    }
    setInputFileURL(files.constFirst());
    setSaveDirectoryURL(prefs::SaveFolder(folder).forSource(inputFileURL()));
    setTempFileToDeleteURL(QUrl());
    const QString base = engines::pathInFolder(saveDirectoryURL(), inputFileURL().fileName());
    if (!claimOutput(QUrl::fromLocalFile(u"%1.joined.%2"_s.arg(base, engines::extensionOf(inputFileURL())))))
        return false;
    claimLog(QUrl::fromLocalFile(base + u".joined.log"_s));
    return true;
}

tools::ToolProcessPointer
KXVideoJoiner::startConversionForSelectionWithSaveDirectoryURL(const SelectionPointer &selection,
                                                               const QUrl &folder)
{
    if (!prepareForSelectionWithSaveDirectoryURL(selection, folder))
        return nullptr;
    takeLook(engines::lookedAt(selection->editFilesURLsList(), appPreferences(), context().toolsAtOnce));
    return refusal().isNull() ? startPrepared() : nullptr;
}

void KXVideoJoiner::takeLook(const QList<engines::JoinFile> &files)
{
    const QStringList mismatched = engines::mismatchedProperties(engines::filmsIn(files));
    if (!mismatched.isEmpty())
        warn(engines::mismatchAlert(mismatched));
    const engines::JoinFit fit = engines::joinFitOf(files, joinerName());
    if (!fit.refusal.isNull())
        return refuse(fit.refusal);
    m_toRetime = fit.toRetime;
    m_timescale = fit.timescale;
    for (const engines::JoinFile &file : files) {
        if (!file.words.isEmpty())
            keepDurationAnswer(file.url, file.words);
    }
}

tools::ToolProcessPointer KXVideoJoiner::startPrepared()
{
    m_mkvProgress.clear();
    m_ffmpegProgress.clear();
    if (!isRetiming())
        return startJoining();
    postConversionStarted();
    return startRetiming();
}

tools::ToolProcessPointer KXVideoJoiner::startNext()
{
    m_ffmpegProgress.clear();
    return isRetiming() ? startRetiming() : startJoining();
}

tools::ToolProcessPointer KXVideoJoiner::startRetiming()
{
    const qsizetype position = m_toRetime.at(m_retimed);
    const QUrl file = converterSelection()->editFilesURLsList().at(position);
    const auto list = engines::retimeArguments(file, m_timescale, retimedFile(position));
    return runAndMonitorBinaryURLWithOptionsShouldWait(urlOfApp(u"ffmpeg"_s), list, ShouldWait::No);
}

/// Of the kind of the first file, whose tool fixes the units of all but the pictures.
QUrl KXVideoJoiner::retimedFile(qsizetype position) const
{
    const QString extension = engines::extensionOf(inputFileURL()).toLower();
    const QString plain = extension == u"m4v"_s ? u"mp4"_s : extension;
    return QUrl::fromLocalFile(
        u"%1retimed%2.%3"_s.arg(context().temporaryFolder, QString::number(position), plain));
}

QList<QUrl> KXVideoJoiner::filesToJoin() const
{
    QList<QUrl> files = converterSelection()->editFilesURLsList();
    for (const qsizetype position : m_toRetime)
        files[position] = retimedFile(position);
    return files;
}

/// The copies are as large as the films, so they lie where the output is made, and go with that place.
QUrl KXVideoJoiner::placeOf(const QUrl &file) const
{
    const bool isCopy = std::any_of(m_toRetime.begin(), m_toRetime.end(),
                                    [&](qsizetype position) { return retimedFile(position) == file; });
    const QUrl folder = context().guard.workFolder();
    return isCopy && !folder.isEmpty() ? QUrl::fromLocalFile(folder.toLocalFile() + u'/' + file.fileName())
                                       : file;
}

bool KXVideoJoiner::wasRetimed() const
{
    return converterTask() && converterTask()->exitStatus() == 0;
}

tools::OptionList KXVideoJoiner::arguments(const QList<QUrl> &files) const
{
    if (joinerName() == u"ffmpeg"_s)
        return engines::concatArguments(concatList(), outputFileURL());
    if (joinerName() == u"mkvmerge"_s)
        return engines::joinArguments(files, outputFileURL());
    if (joinerName() == u"mp4box"_s)
        return engines::mp4boxJoinArguments(files, saveDirectoryURL(), outputFileURL());
    return {};
}

QList<steps::Launch> KXVideoJoiner::launches()
{
    steps::Launch launch = launchOf(urlOfApp(joinerName()), arguments(filesToJoin()));
    if (joinerName() == u"ffmpeg"_s)
        launch.before = plannedList(filesToJoin());
    return {launch};
}

/// What startJoining() writes, as commands.
QList<steps::Preparation> KXVideoJoiner::plannedList(const QList<QUrl> &files) const
{
    QList<steps::Preparation> before;
    const QList<QUrl> names = listable(files);
    for (qsizetype i = 0; i < files.size(); ++i) {
        if (names.at(i) != files.at(i))
            before.append({{u"ln"_s, u"-s"_s, files.at(i).toLocalFile(), names.at(i).toLocalFile()}, {}});
    }
    const QStringList lines = engines::concatListLaunched(names).split(u'\n', Qt::SkipEmptyParts);
    before.append({QStringList{u"printf"_s, u"%s\\n"_s} + lines, concatList()});
    return before;
}

tools::ToolProcessPointer KXVideoJoiner::startJoining()
{
    const QList<QUrl> files = filesToJoin();
    const tools::OptionList list = arguments(files);
    if (list.isEmpty()) {
        refuse(u"There is no tool \"%1\" to join with, so nothing was started."_s.arg(joinerName()));
        return nullptr;
    }
    if (joinerName() == u"ffmpeg"_s && !writeConcatList(files)) {
        refuse(u"The list of files to join can't be written to %1."_s.arg(concatList().toLocalFile()));
        return nullptr;
    }
    if (m_toRetime.isEmpty())
        postConversionStarted();
    return runAndMonitorBinaryURLWithOptionsShouldWait(urlOfApp(joinerName()), list, ShouldWait::No);
}

QUrl KXVideoJoiner::concatList() const
{
    return privateFile(u"mylist.txt"_s, u".list"_s);
}

/// The concat reader takes its list line by line, whatever is quoted, so a path with a line break in it is
/// given through a plain link.
QList<QUrl> KXVideoJoiner::listable(const QList<QUrl> &files) const
{
    QList<QUrl> names;
    for (const QUrl &file : files) {
        const QString path = file.toLocalFile();
        const bool isPlain = !path.contains(u'\n') && !path.contains(u'\r');
        const QString number = QString::number(names.size());
        names.append(isPlain ? placeOf(file) : privateFile(u"part"_s + number, u".part"_s + number));
    }
    return names;
}

bool KXVideoJoiner::writeConcatList(const QList<QUrl> &files) const
{
    const QList<QUrl> names = listable(files);
    for (qsizetype i = 0; i < files.size(); ++i) {
        if (names.at(i) != placeOf(files.at(i)))
            context().guard.files().link(files.at(i), names.at(i));
    }
    return context().guard.files().write(concatList(), engines::concatListLaunched(names).toUtf8());
}

/// MP4Box reads a meaning into "@", "*", "#" and ":" of a name, so it gets links with plain ones.
QUrl KXVideoJoiner::plainNameOf(const QUrl &file) const
{
    const qsizetype position = filesToJoin().indexOf(file);
    if (file == saveDirectoryURL())
        return context().guard.workFolder();
    if (position < 0)
        return file;
    const QString name =
        context().temporaryFolder + u"source%1.%2"_s.arg(position).arg(engines::extensionOf(file).toLower());
    const QUrl link = QUrl::fromLocalFile(name);
    context().guard.files().link(placeOf(file), link);
    return link;
}

tools::OptionList KXVideoJoiner::workingAside(const tools::OptionList &list) const
{
    tools::OptionList aside = KXConverter::workingAside(list);
    const bool needsPlainNames = joinerName() == u"mp4box"_s && !isRetiming();
    for (tools::OptionItem &item : aside)
        item = item.withFileAt(
            [&](const QUrl &file) { return needsPlainNames ? plainNameOf(file) : placeOf(file); });
    return aside;
}

tools::OptionList KXVideoJoiner::launchForm(const tools::OptionList &meant)
{
    if (isRetiming())
        return meant;
    return joinerName() == u"ffmpeg"_s ? engines::concatLaunchForm(meant) : meant;
}

/// Seconds of all runs together: ffmpeg tells none for its list.
QString KXVideoJoiner::ffmpegPercentage(const QByteArray &bytes)
{
    const steps::FfmpegReading reading = m_ffmpegProgress.feed(bytes);
    takeProgress(reading);
    if (m_lengthIsAssumed && reading.written >= 0)
        return QString::number(steps::percentOfBytes(m_doneBytes + reading.written, m_runBytes));
    if (m_lengthIsAssumed || reading.time.isNull())
        return {};
    const qint64 now = m_doneSeconds + KXHelpers::convertToTimeInSecondsFrom(reading.time);
    return QString::number(std::clamp<qint64>(tools::percentOf(now, m_runSeconds), 0, wholePercent));
}

/// "Appending: |==  | (10/100)"
QString KXVideoJoiner::mp4boxPercentage() const
{
    static const QRegularExpression share(u"\\(([0-9]+)/([0-9]+)\\)"_s);
    QString last;
    for (auto matches = share.globalMatch(monitorOutputString()); matches.hasNext();) {
        const auto match = matches.next();
        last =
            QString::number(tools::percentOf(match.captured(1).toLongLong(), match.captured(2).toLongLong()));
    }
    return last;
}

QString KXVideoJoiner::percentageIn(const steps::ReadEvent &event)
{
    if (joinerName() == u"mkvmerge"_s)
        return m_mkvProgress.feed(event.data);
    const bool isError = event.channel == tools::ToolProcess::Channel::Error;
    if (joinerName() == u"ffmpeg"_s)
        return isError ? ffmpegPercentage(event.data) : QString();
    return mp4boxPercentage();
}

QList<media::MeantOutput> KXVideoJoiner::meantOutputs() const
{
    if (!converterSelection() || !refusal().isNull())
        return {};
    return {engines::joinOutput(joinerName(), converterSelection()->editFilesURLsList(), outputFileURL())};
}

QList<QUrl> KXVideoJoiner::timedSources() const
{
    return converterSelection()->editFilesURLsList();
}

qint64 KXVideoJoiner::secondsOf(const QUrl &file)
{
    const QUrl first = inputFileURL();
    setInputFileURL(file);
    takeDurationOf(file);
    setInputFileURL(first);
    m_lengthIsAssumed = m_lengthIsAssumed || durationIsAssumed();
    return tools::leadingInteger(durationInSeconds());
}

void KXVideoJoiner::addDurations()
{
    const QList<QUrl> files = timedSources();
    for (const QUrl &file : files)
        m_wholeSeconds += secondsOf(file);
    m_runSeconds = m_wholeSeconds;
    m_runBytes = sourceBytes();
    for (const qsizetype position : m_toRetime) { // these are written twice
        m_runSeconds += secondsOf(files.at(position));
        m_runBytes += QFileInfo(files.at(position).toLocalFile()).size();
    }
}

void KXVideoJoiner::handleNewTaskResult(const steps::ReadEvent &event)
{
    const bool goesByDuration =
        (isRetiming() || joinerName() == u"ffmpeg"_s) && event.channel == tools::ToolProcess::Channel::Error;
    if (goesByDuration && !event.data.isEmpty() && m_wholeSeconds == 0) {
        if (holdsUntilDurationsAreKnown(event))
            return;
        addDurations();
    }
    KXConverter::handleNewTaskResult(event);
    const QString number = percentageIn(event);
    if (!number.isNull())
        post(engines::updates::joining, number + u'%');
}

void KXVideoJoiner::backgroundReadingCompleted()
{
    KXConverter::backgroundReadingCompleted();
    if (!isRetiming() || !wasRetimed())
        return post(u"taskCompletion"_s, u"Complete"_s);
    m_doneSeconds += m_wholeSeconds > 0 ? secondsOf(timedSources().at(m_toRetime.at(m_retimed))) : 0;
    m_doneBytes += QFileInfo(timedSources().at(m_toRetime.at(m_retimed)).toLocalFile()).size();
    ++m_retimed;
    Q_EMIT anotherToolIsNeeded();
}

/// The concat reader leaves out a file that it can't open, and ends well all the same.
steps::Outcome KXVideoJoiner::outcomeOfConcat(const steps::Outcome &ended) const
{
    const QString missing = steps::ToolLog(toldLog()).firstLineContaining({u"Impossible to open"_s});
    if (!missing.isNull())
        return steps::Outcome::failed(
            u"A file could not be opened, so it is not in the output: %1."_s.arg(missing));
    engines::FfmpegRun run;
    run.output = outputFileURL();
    run.log = toldLog();
    for (const QUrl &file : converterSelection()->editFilesURLsList())
        run.files.append(file.toLocalFile());
    run.files.append(outputFileURL().toLocalFile());
    run.hasVideo = true;
    steps::Outcome said = engines::outcomeOfMessages(run);
    if (said.verdict == steps::Verdict::Failed)
        return said; // tells why, whatever the exit status is
    return ended.verdict == steps::Verdict::Failed ? ended : ended.joinedWith(said);
}

steps::Outcome KXVideoJoiner::outcome() const
{
    const steps::Outcome ended = KXConverter::outcome();
    return joinerName() == u"ffmpeg"_s && refusal().isNull() ? outcomeOfConcat(ended) : ended;
}
