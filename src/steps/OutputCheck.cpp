#include "steps/OutputCheck.h"

#include <algorithm>

namespace steps {

namespace {

QUrl fileOf(const media::MeantOutput &output)
{
    return output.file.isEmpty() ? output.output : output.file;
}

QList<media::FilmWish> wishesForSources(const QList<media::MeantOutput> &outputs)
{
    QList<media::FilmWish> wishes;
    for (const media::MeantOutput &output : outputs) {
        for (const QUrl &source : output.sources)
            wishes.append(media::wishForSource(source, outputs));
    }
    return wishes;
}

} // namespace

OutputCheck::OutputCheck(const KXPreferences &preferences, int toolsAtOnce)
    : m_reads(preferences, toolsAtOnce)
{
    connect(&m_reads, &FilmReads::answered, this, &OutputCheck::proceed);
}

void OutputCheck::readSources(const QList<media::MeantOutput> &outputs)
{
    m_reads.ask(wishesForSources(outputs));
}

void OutputCheck::begin(const QList<media::MeantOutput> &outputs, const QString &toolLog, Damage damage)
{
    m_outputs = outputs;
    m_figures = media::runFiguresFrom(toolLog);
    m_figures.damageIsTold = damage == Damage::IsTold;
    m_results.clear();
    m_isRunning = true;
    m_readsOutputs = false;
    for (const media::MeantOutput &output : outputs)
        m_reads.forget(fileOf(output));
    readSources(outputs);
    if (!m_reads.isBusy()) // never from within this call
        QMetaObject::invokeMethod(this, &OutputCheck::proceed, Qt::QueuedConnection);
}

/// The sources are known: on to the outputs. Those are known: that is all.
void OutputCheck::proceed()
{
    if (!m_isRunning || m_reads.isBusy())
        return;
    if (!m_readsOutputs) {
        m_readsOutputs = true;
        QList<media::FilmWish> wishes;
        for (const media::MeantOutput &output : std::as_const(m_outputs))
            wishes.append(media::wishForOutput(output, m_reads.facts()));
        m_reads.ask(wishes);
        if (m_reads.isBusy())
            return;
    }
    m_isRunning = false;
    m_results = media::checkedOutputs(m_outputs, m_reads.facts(), m_figures);
    Q_EMIT finished();
}

void OutputCheck::end()
{
    m_isRunning = false;
    m_reads.end();
}

Outcome OutputCheck::outcome() const
{
    Outcome outcome = Outcome::ok();
    QStringList sentences;
    for (const media::CheckedOutput &result : m_results) {
        outcome.verdict = std::max(outcome.verdict, outcomeOf(result).verdict);
        for (const QString &sentence : result.sentences) {
            if (!sentences.contains(sentence))
                sentences.append(sentence);
        }
    }
    outcome.sentence = sentences.join(u' ');
    return outcome;
}

bool OutputCheck::tellsOfEnd() const
{
    return std::any_of(m_results.begin(), m_results.end(),
                       [](const media::CheckedOutput &result) { return result.tellsOfEnd; });
}

Outcome outcomeOf(const media::CheckedOutput &result)
{
    switch (result.result) {
    case media::CheckedOutput::Result::Failed:
        return Outcome::failed(result.sentence());
    case media::CheckedOutput::Result::Warnings:
        return Outcome::warnings(result.sentence());
    case media::CheckedOutput::Result::Ok:
        break;
    }
    return Outcome::ok();
}

} // namespace steps
