#include "engines/join/KXJoinVideosJob.h"

#include "engines/UpdateNames.h"
#include "engines/join/JoinArguments.h"
#include "engines/join/KXVideoJoiner.h"
#include "prefs/KXPreferences.h"

using namespace Qt::StringLiterals;

KXJoinVideosJob::KXJoinVideosJob(const jobs::JobContext &context)
    : KXJob(context)
    , m_look(context.preferences, toolsAtOnce())
{
    observe(engines::updates::joining);
    connect(&m_look, &engines::JoinLook::answered, this, &KXJoinVideosJob::looked);
    connect(this, &KXJob::outcomeChanged, &m_look, &engines::JoinLook::end);
}

QList<ConverterPointer> KXJoinVideosJob::preparedSteps()
{
    const auto joiner = std::make_shared<KXVideoJoiner>(converterContext());
    m_joiner = joiner;
    connect(joiner.get(), &KXVideoJoiner::anotherToolIsNeeded, this,
            [this] { follow(m_joiner->startNext()); });
    joiner->setStepName(u"Joining Videos"_s);
    joiner->setStopFlag(cancelFlag());
    joiner->setJoinerName(
        engines::joinerFor(jobSelection()->editFilesURLsList(), fileExistsAtURL(urlOfApp(u"mp4box"_s))));
    joiner->prepareForSelectionWithSaveDirectoryURL(jobSelection(), appPreferences().saveDirectoryURL());
    return {joiner};
}

void KXJoinVideosJob::startJob()
{
    const QList<ConverterPointer> steps = preparedSteps();
    if (!m_joiner->refusal().isNull())
        return startSingleStep(m_joiner);
    setStepTaskList({});
    setStepConverterList(steps);
    noteFilesOf(*m_joiner);
    setProgressList({{m_joiner->stepName(), u"Joining"_s}}); // a word until the first number comes
    postProgress(progressList());
    m_look.begin(jobSelection()->editFilesURLsList());
}

void KXJoinVideosJob::looked()
{
    if (jobIsCancelled())
        return;
    m_joiner->takeLook(m_look.files());
    follow(m_joiner->refusal().isNull() ? m_joiner->startPrepared() : nullptr);
}

/// The tool that runs now is the one that a pause and a stop go to.
void KXJoinVideosJob::follow(const tools::ToolProcessPointer &task)
{
    if (jobIsCancelled())
        return;
    setStepTaskList({});
    if (!task) {
        completeStep(0, m_joiner->stepName());
        return requestJobDone();
    }
    addTask(task);
    if (isPaused())
        task->suspend();
}

void KXJoinVideosJob::monitorNotifications(const KXNotification &notification)
{
    followNotification(notification, engines::updates::joining);
}
