#include "steps/RunVerdict.h"

#include "media/MatroskaPackets.h"
#include "steps/FailureCause.h"
#include "tools/ToolEnvironment.h"

#include <QFileInfo>

#include <csignal>

using namespace Qt::StringLiterals;

namespace steps {

namespace {

/// The reason as a sentence, followed by the tool's own words where there are some.
QString sentenceOf(const QString &reason, const QString &words)
{
    const QString sentence = words.isEmpty() ? reason : reason + u": "_s + words;
    return sentence.endsWith(u'.') ? sentence : sentence + u'.';
}

/// What a signal says of itself, else a line of the tool's that is known.
QString whyEnded(std::optional<int> signal, const FailureCause &cause)
{
    if (signal == SIGKILL)
        return u"The tool was killed."_s;
    return signal == SIGXFSZ ? u"The file may not grow further."_s : cause.known();
}

/// A stretch that is damaged is told by its tool alone, an end that is too early by the check as well.
Outcome outcomeOfWarning(const QString &tool, const QString &warning)
{
    const QString sentence = sentenceOf(u"%1 warned"_s.arg(tool), warning);
    const bool isOfEnd =
        warning == u"The source ends early."_s ||
        (warning.startsWith(u"The source is damaged from "_s) && warning.endsWith(u" on."_s));
    return isOfEnd ? Outcome::damaged(sentence) : Outcome::warnings(sentence);
}

} // namespace

Outcome outcomeOfRun(const tools::ToolProcess *run, const QUrl &tool, const FailureCause &cause)
{
    if (run == nullptr)
        return Outcome::failed(u"The tool of this step was not started."_s);
    const QString name = tool.fileName();
    if (run->end() == tools::ToolProcess::End::NotStarted)
        return Outcome::failed(sentenceOf(u"%1 was not started"_s.arg(name), cause.sentence()));
    if (!run->exitStatus())
        return Outcome::failed(sentenceOf(u"%1 was ended from outside or crashed"_s.arg(name),
                                          whyEnded(run->endingSignal(), cause)));
    const int status = *run->exitStatus();
    if (tools::toolFamily(tool) == tools::ToolFamily::Mkv && status == 1)
        return outcomeOfWarning(name, cause.warning());
    if (status == 0)
        return Outcome::ok();
    return Outcome::failed(
        sentenceOf(u"%1 failed (exit status %2)"_s.arg(name).arg(status), cause.sentence()));
}

QString problemWithOutputs(const QUrl &tool, const QList<QUrl> &outputs, const QUrl &wanted,
                           const std::function<QUrl(const QUrl &)> &fileOf)
{
    const auto lacks = [&](const QString &sentence, const QUrl &file) {
        return sentence.arg(tool.fileName(), file.fileName());
    };
    if (outputs.isEmpty())
        return lacks(u"%1 ended without writing %2."_s, wanted);
    for (const QUrl &file : outputs) {
        const QUrl place = fileOf(file);
        const QFileInfo output(place.toLocalFile());
        if (!output.exists())
            return lacks(u"%1 ended without writing %2."_s, file);
        if (output.size() == 0)
            return lacks(u"%1 wrote nothing into %2."_s, file);
        if (media::isMatroskaWithoutPackets(place))
            return lacks(u"%1 wrote only headers into %2, and nothing of any track."_s, file);
    }
    return {};
}

} // namespace steps
