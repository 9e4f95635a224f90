#pragma once

#include "steps/StepLauncher.h"

namespace steps {

/// A launcher that starts nothing and changes nothing: it keeps what would have been started.
class DryRun final : public StepLauncher
{
public:
    struct Entry
    {
        Launch launch;
        bool isShellLine = false;
        tools::ShellLine line; ///< of a shell line
    };

    tools::ToolProcessPointer startProcess(const Launch &launch,
                                           const tools::ToolProcess::Request &request) override;
    tools::ToolProcessPointer startLine(const Launch &launch, const tools::ShellLine &line,
                                        const tools::ToolProcess::Request &request) override;
    bool copyFile(OutputGuard &guard, const QUrl &from, const QUrl &to) override;
    QString makeWay(OutputGuard &guard, const QUrl &output) override;
    QString makeLog(OutputGuard &guard, const QUrl &log) override;
    bool isDryRun() const override { return true; }

    const QList<Entry> &entries() const { return m_entries; }
    void clear() { m_entries.clear(); }

private:
    QList<Entry> m_entries;
};

} // namespace steps
