// What the user does to the queue: pause, resume, clear, delete a row, stop the running job.
#include "jobs/KXQueueController.h"

#include <QPointer>

using namespace Qt::StringLiterals;

namespace {

constexpr int deleteColumn = 0;

} // namespace

void KXQueueController::setPauseButtonTitle(const QString &title)
{
    if (m_pauseButtonTitle == title)
        return;
    m_pauseButtonTitle = title;
    Q_EMIT pauseButtonTitleChanged();
}

void KXQueueController::pauseQueueButton(const QString &title)
{
    if (!m_jobIsRunning || !m_currentJob)
        return;
    if (title == u"Pause"_s) {
        setPauseButtonTitle(u"Resume"_s);
        m_currentJob->pauseJob();
    } else if (title == u"Resume"_s) {
        setPauseButtonTitle(u"Pause"_s);
        m_currentJob->resumeJob();
    }
}

void KXQueueController::clearQueueButton()
{
    for (qsizetype row = m_jobList.size() - 1; row >= 0; --row) {
        if (m_jobList.at(row)->jobStatus() == u"Completed"_s)
            removeRow(row);
    }
}

/// Takes a row away; the current job's row stays true when rows above it go.
void KXQueueController::removeRow(qsizetype row)
{
    const JobPointer job = m_jobList.takeAt(row);
    job->unsubscribe();
    if (row < m_currentJobRowIndex)
        --m_currentJobRowIndex;
    Q_EMIT jobRemoved(static_cast<int>(row));
}

void KXQueueController::deleteJobRow(int column, int row)
{
    if (column != deleteColumn || row < 0 || row >= m_jobList.size())
        return;
    if (!m_jobIsRunning)
        return removeRow(row);
    m_currentJob->pauseJob();
    if (row == m_currentJobRowIndex)
        return askToStop();
    removeRow(row);
    m_currentJob->resumeJob();
    setPauseButtonTitle(u"Pause"_s);
}

void KXQueueController::askToStop()
{
    platform::Alert alert;
    alert.message = u"Stop the currently running job?"_s;
    alert.buttons = {u"OK"_s, u"Cancel"_s};
    m_jobAskedAbout = m_currentJob;
    m_context.alerts.show(std::make_shared<const platform::Alert>(alert),
                          [queue = QPointer<KXQueueController>(this)](int returnCode) {
                              if (queue)
                                  queue->quitJobAlertClosedReturnCode(returnCode);
                          });
}

void KXQueueController::quitJobAlertClosedReturnCode(int returnCode)
{
    const JobPointer asked = m_jobAskedAbout.lock();
    m_jobAskedAbout.reset();
    // The job may have ended, or another may run by now: then the answer is about nothing.
    if (!asked || asked != m_currentJob || !m_jobIsRunning)
        return;
    if (returnCode == platform::firstButtonReturn) {
        stopCurrentJob();
        return startNextSoon();
    }
    if (returnCode != platform::secondButtonReturn)
        return;
    m_currentJob->resumeJob();
    setPauseButtonTitle(u"Pause"_s);
}

void KXQueueController::stopCurrentJob()
{
    if (!m_jobIsRunning || !m_currentJob)
        return;
    const JobPointer job = m_currentJob;
    job->stopJob();
    m_jobIsRunning = false;
    setPauseButtonTitle(u"Pause"_s);
    if (m_currentJobRowIndex < m_jobList.size() && m_jobList.at(m_currentJobRowIndex) == job)
        removeRow(m_currentJobRowIndex);
}

void KXQueueController::removeAllJobs()
{
    for (qsizetype row = m_jobList.size() - 1; row >= 0; --row) {
        if (!m_jobIsRunning || m_jobList.at(row) != m_currentJob)
            removeRow(row);
    }
    stopCurrentJob();
}
