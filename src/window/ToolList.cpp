#include "window/ToolList.h"

#include "window/Controls.h"

#include <QGridLayout>

using namespace Qt::StringLiterals;

namespace window {

ToolList::ToolList(const tools::ToolPlaces &places, QWidget *parent)
    : QWidget(parent)
    , m_places(places)
    , m_grid(new QGridLayout(this))
{
    setObjectName(u"ToolList"_s);
    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setHorizontalSpacing(space::middle);
    m_grid->setVerticalSpacing(space::small);
    m_grid->addWidget(hint(tr("Looking at the tools …")), 0, 0, 1, 4);
}

ToolList::~ToolList()
{
    if (m_looking)
        m_looking->wait();
}

void ToolList::look()
{
    if (m_looking)
        return;
    m_looking.reset(QThread::create([this] { m_reports = prefs::ToolCheck(m_places).checkAll(); }));
    connect(m_looking.get(), &QThread::finished, this, &ToolList::showReports);
    m_looking->start();
}

void ToolList::showReports()
{
    while (QLayoutItem *item = m_grid->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    int row = 0;
    for (const prefs::ToolReport &report : std::as_const(m_reports)) {
        const bool works = report.works();
        auto *place = new ElidedLabel(works ? Qt::ElideMiddle : Qt::ElideRight,
                                      works ? Role::Second : Role::Warn, Type::Second);
        place->setText(works ? report.location.toLocalFile()
                             : prefs::describe(report.state) + u": "_s + report.switchesOff);
        m_grid->addWidget(
            iconLabel(works ? u"emblem-ok"_s : u"dialog-warning"_s, works ? Role::Ok : Role::Warn), row, 0);
        m_grid->addWidget(new InkLabel(report.name), row, 1);
        m_grid->addWidget(
            new InkLabel(report.version.isEmpty() ? u"–"_s : report.version, Role::Second, Type::Second), row,
            2);
        m_grid->addWidget(place, row, 3);
        ++row;
    }
    m_grid->setColumnStretch(3, 1);
    m_grid->setRowStretch(row, 1);
}

} // namespace window
