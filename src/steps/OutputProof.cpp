#include "steps/OutputProof.h"

#include "prefs/KXPreferences.h"
#include "tools/ToolEnvironment.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using tools::ToolProcess;

namespace steps {

namespace {

/// Hashes are short, and one line names what does not decode.
constexpr qsizetype mostPrinted = 64 * 1024;

} // namespace

/// One run of ffmpeg, before it is started, while it runs and when it has ended.
struct OutputProof::Run
{
    enum class State { Waiting, Running, Ended };

    explicit Run(const media::FilmRun &of)
        : what(of)
    {
    }

    media::FilmRun what;
    State state = State::Waiting;
    tools::ToolProcessPointer task;
    QByteArray printed;
    QByteArray errors;
    int openChannels = 0;
};

struct OutputProof::Work
{
    media::ProofRuns pair;
    const Run *ofSource = nullptr;
    const Run *ofOutput = nullptr;
    const Run *ofKeyFrames = nullptr; ///< alone, without a pair
    qsizetype output = 0;             ///< of key frames
};

OutputProof::OutputProof(const KXPreferences &preferences, int toolsAtOnce)
    : m_preferences(preferences)
    , m_toolsAtOnce(std::max(toolsAtOnce, 1))
{
}

OutputProof::~OutputProof()
{
    end();
}

void OutputProof::begin(const QList<media::MeantOutput> &outputs, const media::Films &films)
{
    m_outputs = outputs;
    m_works.clear();
    m_runs.clear();
    m_outcome = Outcome::ok();
    m_isRunning = true;
    for (const media::ProofRuns &pair : media::proofRuns(outputs, films)) {
        const Run *ofSource = add(pair.source);
        m_works.push_back(std::make_unique<Work>(Work{pair, ofSource, add(pair.output), nullptr, 0}));
    }
    for (qsizetype i = 0; i < outputs.size(); ++i) {
        if (const auto keyFrames = media::keyFrameRun(outputs.at(i)))
            m_works.push_back(std::make_unique<Work>(Work{{}, nullptr, nullptr, add(*keyFrames), i}));
    }
    startWaiting();
    if (m_runs.empty()) // never from within this call
        QMetaObject::invokeMethod(this, &OutputProof::conclude, Qt::QueuedConnection);
}

OutputProof::Run *OutputProof::add(const media::FilmRun &what)
{
    m_runs.push_back(std::make_unique<Run>(what));
    return m_runs.back().get();
}

void OutputProof::startWaiting()
{
    const auto isIn = [](Run::State state) {
        return [state](const auto &run) { return run->state == state; };
    };
    while (!m_isPaused &&
           std::count_if(m_runs.begin(), m_runs.end(), isIn(Run::State::Running)) < m_toolsAtOnce) {
        const auto next = std::find_if(m_runs.begin(), m_runs.end(), isIn(Run::State::Waiting));
        if (next == m_runs.end())
            return;
        start(**next);
    }
}

void OutputProof::start(Run &run)
{
    const QUrl tool = m_preferences.urlOfApp(u"ffmpeg"_s);
    ToolProcess::Request request;
    request.program = tool.toLocalFile();
    request.arguments = run.what.arguments;
    request.environment = tools::processEnvironment(tool, run.what.arguments, m_preferences);
    request.workingFolder = m_preferences.workingFolder();
    run.state = Run::State::Running;
    run.openChannels = 2;
    run.task = ToolProcess::start(request);
    connect(run.task.get(), &ToolProcess::chunkRead, this,
            [&run](ToolProcess::Channel channel, const QByteArray &bytes) {
                QByteArray &kept = channel == ToolProcess::Channel::Output ? run.printed : run.errors;
                kept += bytes.first(std::min(bytes.size(), mostPrinted - kept.size()));
            });
    connect(run.task.get(), &ToolProcess::channelEnded, this, [this, &run] {
        if (--run.openChannels == 0)
            finish(run);
    });
}

void OutputProof::finish(Run &run)
{
    run.state = Run::State::Ended;
    disconnect(run.task.get(), nullptr, this, nullptr);
    startWaiting();
    if (std::all_of(m_runs.begin(), m_runs.end(),
                    [](const auto &one) { return one->state == Run::State::Ended; }))
        conclude();
}

void OutputProof::conclude()
{
    if (!m_isRunning)
        return;
    QStringList sentences;
    for (const auto &work : m_works) {
        if (const Run *keyFrames = work->ofKeyFrames)
            sentences << media::takeKeyFrames(m_outputs[work->output], keyFrames->errors,
                                              keyFrames->task->exitStatus() == 0);
        else
            sentences << media::proveBits(m_outputs, work->pair, work->ofSource->printed,
                                          work->ofOutput->printed);
    }
    sentences.removeAll(QString());
    for (media::MeantOutput &output : m_outputs)
        media::markUnproven(output);
    if (!sentences.isEmpty())
        m_outcome = Outcome::failed(sentences.join(u' '));
    end();
    Q_EMIT finished();
}

void OutputProof::pause()
{
    m_isPaused = true;
    for (const auto &run : m_runs) {
        if (run->state == Run::State::Running)
            run->task->suspend();
    }
}

void OutputProof::resume()
{
    m_isPaused = false;
    for (const auto &run : m_runs) {
        if (run->state == Run::State::Running)
            run->task->resume();
    }
    startWaiting();
}

void OutputProof::end()
{
    m_isRunning = false;
    for (const auto &run : m_runs) {
        if (run->task)
            disconnect(run->task.get(), nullptr, this, nullptr);
    }
    m_works.clear();
    m_runs.clear(); // with the tools, which end
}

} // namespace steps
