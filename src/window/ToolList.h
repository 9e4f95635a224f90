#pragma once

#include "prefs/ToolCheck.h"

#include <QThread>
#include <QWidget>

#include <memory>

class QGridLayout;

namespace window {

/// The tools that the program calls: whether each is there, its version and place, or what is off without it.
/// It looks when it is asked to, beside the main thread.
class ToolList final : public QWidget
{
    Q_OBJECT

public:
    /// The places must outlive it.
    explicit ToolList(const tools::ToolPlaces &places, QWidget *parent = nullptr);
    ~ToolList() override;

    void look();

private:
    void showReports();

    const tools::ToolPlaces &m_places;
    QGridLayout *m_grid;
    std::unique_ptr<QThread> m_looking;
    QList<prefs::ToolReport> m_reports;
};

} // namespace window
