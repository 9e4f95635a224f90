#include "window/JobDelegate.h"

#include "summary/Figures.h"
#include "window/Icons.h"
#include "window/JobModel.h"

#include <QAbstractItemView>
#include <QMouseEvent>
#include <QPainter>

#include <array>

using namespace Qt::StringLiterals;
using summary::JobState;

namespace window {

namespace {

constexpr int air = 10;
constexpr int markSide = 16;
constexpr int bodyLeft = 24; // behind the mark
constexpr int stepHeight = 22;
constexpr int buttonHeight = 24;
constexpr int sentenceLines = 2;

struct StateLook
{
    QString icon;
    Role ink;
};

StateLook lookOf(JobState state)
{
    switch (state) {
    case JobState::Queued:
        return {u"clock"_s, Role::Second};
    case JobState::Running:
        return {u"media-playback-start"_s, Role::Link};
    case JobState::Paused:
        return {u"media-playback-pause"_s, Role::Second};
    case JobState::Completed:
        return {u"emblem-ok"_s, Role::Ok};
    case JobState::Warnings:
        return {u"dialog-warning"_s, Role::Warn};
    case JobState::Failed:
        return {u"dialog-error"_s, Role::Bad};
    case JobState::Interrupted:
        break;
    }
    return {u"clock"_s, Role::Warn};
}

JobState stateAt(const QModelIndex &index)
{
    return static_cast<JobState>(index.data(JobModel::StateRole).toInt());
}

bool isActive(JobState state)
{
    return state == JobState::Running || state == JobState::Paused;
}

int lineHeight(Type type)
{
    return QFontMetrics(fontOf(type)).height();
}

/// The sentence of the outcome, in at most two lines.
int sentenceHeight(const QModelIndex &index, int width)
{
    const QString sentence = index.data(JobModel::SentenceRole).toString();
    if (sentence.isEmpty())
        return 0;
    const QFontMetrics metrics(fontOf(Type::Second));
    const int asked = metrics.boundingRect(QRect(0, 0, width, 1000), Qt::TextWordWrap, sentence).height();
    return std::min(asked, sentenceLines * metrics.lineSpacing());
}

/// The third line of a row that has ended: time taken and size.
QString resultText(const QModelIndex &index)
{
    qint64 bytes = 0;
    const auto outputs = index.data(JobModel::OutputsRole).value<QList<QUrl>>();
    for (const QUrl &output : outputs)
        bytes += QFileInfo(output.toLocalFile()).size();
    QStringList parts{summary::elapsedText(index.data(JobModel::ElapsedRole).toLongLong()),
                      outputs.size() > 1 ? JobDelegate::tr("%1 files").arg(outputs.size()) : QString(),
                      summary::sizeText(bytes)};
    parts.removeAll(QString());
    return parts.join(u" · "_s);
}

QString secondLine(const QModelIndex &index)
{
    const QModelIndex job = index.siblingAtColumn(JobModel::Type);
    QString text =
        u"%1 · %2"_s.arg(job.data().toString(), index.siblingAtColumn(JobModel::Status).data().toString());
    const auto outputs = index.data(JobModel::OutputsRole).value<QList<QUrl>>();
    if (!outputs.isEmpty())
        text = outputs.constFirst().fileName() + u" · "_s + text;
    return text;
}

QRect bodyOf(const QRect &row)
{
    return row.adjusted(bodyLeft, air, -space::middle, -air);
}

/// Where the buttons of a row stand, in their order.
QList<QRect> buttonPlaces(const QRect &row, const QList<JobDelegate::Verb> &verbs)
{
    const QFontMetrics metrics(fontOf(Type::Second));
    QList<QRect> places;
    int x = bodyOf(row).x() - space::tiny;
    for (const JobDelegate::Verb verb : verbs) {
        const int width = metrics.horizontalAdvance(JobDelegate::titleOf(verb)) + 14 + 3 * space::tiny + 2;
        places.append({x, row.bottom() - air - buttonHeight + 2, width, buttonHeight});
        x += width + space::tiny;
    }
    return places;
}

void drawLine(QPainter *painter, QRect &rest, const QString &text, Type type, Role ink,
              Qt::TextElideMode mode = Qt::ElideRight)
{
    painter->setFont(fontOf(type));
    painter->setPen(color(ink));
    const int height = lineHeight(type);
    painter->drawText(QRect(rest.x(), rest.y(), rest.width(), height), Qt::AlignVCenter,
                      painter->fontMetrics().elidedText(text, mode, rest.width()));
    rest.setTop(rest.y() + height);
}

void drawProgress(QPainter *painter, QRect &rest, const QModelIndex &index, JobState state)
{
    constexpr int barHeight = 6;
    constexpr int numberWidth = 40;
    const int percent = index.data(JobModel::PercentRole).toInt();
    rest.setTop(rest.y() + space::tiny);
    QRect bar(rest.x(), rest.y() + 6, rest.width() - numberWidth, barHeight);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(color(Role::Groove));
    painter->drawRoundedRect(bar, 3, 3);
    bar.setWidth(bar.width() * percent / 100);
    painter->setBrush(color(state == JobState::Paused ? Role::Edge : Role::Bar));
    if (bar.width() > 0)
        painter->drawRoundedRect(bar, 3, 3);
    painter->restore();
    painter->setFont(fontOf(Type::Badge));
    painter->setPen(color(Role::Text));
    painter->drawText(QRect(rest.right() - numberWidth, rest.y(), numberWidth, 18),
                      Qt::AlignRight | Qt::AlignVCenter, u"%1%"_s.arg(percent));
    rest.setTop(rest.y() + 20);
    const QString text = state == JobState::Paused
                             ? JobDelegate::tr("Paused at %1%").arg(percent)
                             : summary::runningText(index.data(JobModel::ElapsedRole).toLongLong(), percent);
    drawLine(painter, rest, text, Type::Second, Role::Second);
}

void drawEnd(QPainter *painter, QRect &rest, const QModelIndex &index, JobState state)
{
    const QString sentence = index.data(JobModel::SentenceRole).toString();
    if (sentence.isEmpty())
        return drawLine(painter, rest, resultText(index), Type::Second, Role::Second);
    const int height = sentenceHeight(index, rest.width());
    painter->setFont(fontOf(Type::Second));
    painter->setPen(color(state == JobState::Failed ? Role::Bad : Role::Warn));
    painter->drawText(QRect(rest.x(), rest.y(), rest.width(), height), Qt::TextWordWrap, sentence);
    rest.setTop(rest.y() + height);
}

void drawButtons(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const QList<JobDelegate::Verb> verbs = JobDelegate::verbsOf(index);
    const QList<QRect> places = buttonPlaces(option.rect, verbs);
    painter->setFont(fontOf(Type::Second));
    for (qsizetype i = 0; i < verbs.size(); ++i) {
        const QRect place = places.at(i);
        paintIcon(*painter, {place.x() + space::tiny, place.y() + 5, 14, 14},
                  JobDelegate::iconOf(verbs.at(i)), color(Role::Link));
        painter->setPen(color(Role::Link));
        painter->drawText(place.adjusted(14 + 2 * space::tiny, 0, 0, 0), Qt::AlignVCenter,
                          JobDelegate::titleOf(verbs.at(i)));
    }
}

void drawJob(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const JobState state = stateAt(index);
    const StateLook look = lookOf(state);
    const QRect mark(option.rect.x(), option.rect.y() + air + 1, markSide, markSide);
    paintIcon(*painter, mark, look.icon, color(look.ink));
    QRect rest = bodyOf(option.rect);
    drawLine(painter, rest, index.data().toString(), Type::Head, Role::Text, Qt::ElideMiddle);
    drawLine(painter, rest, secondLine(index), Type::Second, Role::Second, Qt::ElideMiddle);
    if (isActive(state))
        drawProgress(painter, rest, index, state);
    else if (summary::hasEnded(state))
        drawEnd(painter, rest, index, state);
    drawButtons(painter, option, index);
}

void drawStep(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const QModelIndex step = index.siblingAtColumn(0);
    const QString progress = index.siblingAtColumn(1).data().toString();
    const bool isComplete = progress == u"Complete"_s;
    const QRect place = option.rect.adjusted(bodyLeft + space::small, 0, -space::middle, 0);
    paintIcon(*painter, {place.x(), place.center().y() - 6, 12, 12},
              isComplete ? u"dialog-ok"_s : u"media-playback-start"_s,
              color(isComplete ? Role::Ok : Role::Link));
    painter->setFont(fontOf(Type::Second));
    painter->setPen(color(Role::Text));
    const QRect words = place.adjusted(18, 0, 0, 0);
    painter->drawText(words, Qt::AlignRight | Qt::AlignVCenter, progress);
    const int free = words.width() - painter->fontMetrics().horizontalAdvance(progress) - space::small;
    painter->drawText(words, Qt::AlignVCenter,
                      painter->fontMetrics().elidedText(step.data().toString(), Qt::ElideRight, free));
}

} // namespace

QString JobDelegate::titleOf(Verb verb)
{
    static const std::array<QString, 4> titles{tr("Retry"), tr("Reveal"), tr("Log"), tr("Details")};
    return titles.at(static_cast<size_t>(verb));
}

QString JobDelegate::iconOf(Verb verb)
{
    static const std::array<QString, 4> icons{u"view-refresh"_s, u"folder-open"_s, u"text-x-generic"_s,
                                              u"dialog-information"_s};
    return icons.at(static_cast<size_t>(verb));
}

QList<JobDelegate::Verb> JobDelegate::verbsOf(const QModelIndex &index)
{
    QList<Verb> verbs;
    const JobState state = stateAt(index);
    const bool hasOutput = !index.data(JobModel::OutputsRole).value<QList<QUrl>>().isEmpty();
    const bool hasLog = !index.data(JobModel::LogRole).toUrl().isEmpty();
    if (state == JobState::Failed || state == JobState::Interrupted)
        verbs.append(Verb::Retry);
    if (hasOutput && summary::hasEnded(state))
        verbs.append(Verb::Reveal);
    if (hasLog && (summary::hasEnded(state) || isActive(state)))
        verbs.append(Verb::Log);
    if (hasOutput && summary::hasEnded(state))
        verbs.append(Verb::Details);
    return verbs;
}

QSize JobDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    if (JobModel::isStep(index))
        return {0, std::max(stepHeight, lineHeight(Type::Second) + space::tiny)};
    if (index.column() != JobModel::File)
        return {0, 0};
    const JobState state = stateAt(index);
    int height = 2 * air + lineHeight(Type::Head) + lineHeight(Type::Second);
    const auto *view = qobject_cast<const QAbstractItemView *>(option.widget);
    const int width = (view == nullptr ? 300 : view->viewport()->width() - 32) - bodyLeft - space::middle;
    if (isActive(state))
        height += space::large + space::small + lineHeight(Type::Second);
    else if (summary::hasEnded(state))
        height += std::max(sentenceHeight(index, width), lineHeight(Type::Second));
    if (!verbsOf(index).isEmpty())
        height += buttonHeight + space::tiny;
    return {0, height};
}

void JobDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const bool isStep = JobModel::isStep(index);
    const QModelIndex owner = isStep ? index.parent() : index;
    painter->save();
    painter->setClipRect(option.rect);
    const bool isLit = isActive(stateAt(owner)) || option.state.testFlag(QStyle::State_Selected);
    painter->fillRect(option.rect, color(isLit ? Role::Soft : Role::Base));
    if (!isStep) {
        painter->setPen(color(Role::Line));
        painter->drawLine(option.rect.topLeft(), option.rect.topRight());
    }
    if (index.column() == JobModel::Delete && !isStep)
        paintIcon(*painter, {option.rect.center().x() - 7, option.rect.y() + air + 1, 14, 14},
                  u"window-close"_s, color(Role::Second));
    else if (index.column() == JobModel::File && isStep)
        drawStep(painter, option, index);
    else if (index.column() == JobModel::File)
        drawJob(painter, option, index);
    if (option.state.testFlag(QStyle::State_HasFocus) && index.column() == JobModel::File) {
        painter->setPen(QPen(color(Role::Accent), 2));
        painter->drawRect(option.rect.adjusted(1, 1, -1, -1));
    }
    painter->restore();
}

bool JobDelegate::editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                              const QModelIndex &index)
{
    if (event->type() != QEvent::MouseButtonRelease || index.column() != JobModel::File ||
        JobModel::isStep(index))
        return QStyledItemDelegate::editorEvent(event, model, option, index);
    const QPoint place = static_cast<QMouseEvent *>(event)->position().toPoint(); // NOLINT
    const QList<Verb> verbs = verbsOf(index);
    const QList<QRect> places = buttonPlaces(option.rect, verbs);
    for (qsizetype i = 0; i < verbs.size(); ++i) {
        if (places.at(i).contains(place)) {
            Q_EMIT pressed(index.row(), verbs.at(i));
            return true;
        }
    }
    return false;
}

} // namespace window
