#include "jobs/JobReceipt.h"

#include "steps/KXConverter.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using media::Became;
using media::MeantOutput;
using media::TrackFate;

namespace jobs {

namespace {

TrackFate notWritten(TrackFate fate)
{
    if (fate.became != Became::LeftOut)
        fate.reason = u"The output was not written."_s;
    fate.became = Became::LeftOut;
    fate.told = media::Told::InTheReceipt; // that it failed is told
    fate.to = QString();
    fate.output = QUrl();
    fate.outputIndex = -1;
    return fate;
}

QList<TrackFate> notWritten(QList<TrackFate> fates)
{
    for (TrackFate &fate : fates)
        fate = notWritten(fate);
    return fates;
}

void takeBack(MeantOutput &output)
{
    output.tracks = notWritten(output.tracks);
    output.rest = notWritten(output.rest);
}

QList<MeantOutput> notWritten(QList<MeantOutput> outputs)
{
    for (MeantOutput &output : outputs)
        takeBack(output);
    return outputs;
}

} // namespace

void JobReceipt::add(const KXConverter &converter, steps::Verdict verdict)
{
    if (verdict == steps::Verdict::Failed)
        take(converter, notWritten(converter.meantOutputs()));
    else if (!converter.isTemporaryOutput())
        take(converter, converter.meantOutputs());
}

void JobReceipt::addWanted(const KXConverter &converter)
{
    take(converter, converter.meantOutputs());
}

void JobReceipt::take(const KXConverter &converter, const QList<MeantOutput> &outputs)
{
    for (const MeantOutput &output : outputs)
        m_outputsOfLogs[converter.logFileURL()].append(output.output);
    m_outputs += outputs;
}

void JobReceipt::takeStreams(const QUrl &source, const media::SourceStreams &streams)
{
    m_streams.insert(source, streams);
}

void JobReceipt::takeMeasured(const QList<MeantOutput> &outputs)
{
    for (const MeantOutput &measured : outputs) {
        for (MeantOutput &output : m_outputs) {
            if (output.output == measured.output)
                output = measured;
        }
    }
}

void JobReceipt::rename(const QUrl &from, const QUrl &to)
{
    const auto renamed = [&](const QUrl &name) { return name == from ? to : name; };
    for (MeantOutput &output : m_outputs) {
        output.output = renamed(output.output);
        for (TrackFate &fate : output.tracks)
            fate.output = renamed(fate.output);
    }
    for (QList<QUrl> &outputs : m_outputsOfLogs)
        std::transform(outputs.begin(), outputs.end(), outputs.begin(), renamed);
}

void JobReceipt::keepOnly(const QList<QUrl> &published)
{
    for (MeantOutput &output : m_outputs) {
        if (!published.contains(output.output))
            takeBack(output);
    }
}

void JobReceipt::clear()
{
    m_outputs.clear();
    m_outputsOfLogs.clear();
}

media::Receipt JobReceipt::receipt() const
{
    QList<MeantOutput> complete;
    for (const MeantOutput &output : m_outputs)
        complete.append(media::completed(output, m_streams));
    return media::receiptOf(complete);
}

QStringList JobReceipt::linesFor(const QUrl &log, const media::Receipt &receipt) const
{
    const auto outputs = m_outputsOfLogs.constFind(log);
    if (outputs == m_outputsOfLogs.constEnd())
        return {};
    media::Receipt own;
    for (const TrackFate &fate : receipt.tracks) {
        if (fate.became == Became::LeftOut || outputs->contains(fate.output))
            own.tracks.append(fate);
    }
    return media::linesOf(own);
}

} // namespace jobs
